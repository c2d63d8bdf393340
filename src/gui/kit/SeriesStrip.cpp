// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/SeriesStrip.h"

#include "gui/kit/ToolTipText.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace {

const QColor Ground(24, 24, 24);
const QColor Present(84, 84, 84);
const QColor Held(70, 120, 190);
const QColor Failed(225, 70, 50);
const QColor Behind(150, 150, 150);
constexpr int Groove = 3;       // pixels above and below the line
constexpr int LeastMarker = 3;  // width of the position

bool contains(const SeriesStrip::Runs& runs, int number)
{
    const auto after = std::ranges::upper_bound(runs, number, {}, &SeriesStrip::Run::first);
    return after != runs.begin() && std::prev(after)->last >= number;
}

}  // namespace

SeriesStrip::SeriesStrip(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFixedHeight(FixedHeight);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(QStringLiteral("Position in the series"));
}

void SeriesStrip::setSeries(int first, int last)
{
    if (_first == first && _last == last)
        return;
    _first = first;
    _last = last;
    update();
}

void SeriesStrip::setPosition(int number)
{
    if (std::exchange(_position, number) != number)
        update();
}

void SeriesStrip::setHeld(Runs held)
{
    _held = std::move(held);
    update();
}

void SeriesStrip::setMissing(Runs missing)
{
    _missing = std::move(missing);
    update();
}

void SeriesStrip::setFailed(Failures failed)
{
    _failed = std::move(failed);
    update();
}

int SeriesStrip::numberAt(int x) const
{
    if (count() == 0)
        return _first;
    const long long inside = std::clamp(x, 0, std::max(width() - 1, 0));
    return static_cast<int>(_first + inside * count() / std::max(width(), 1));
}

QRect SeriesStrip::columns(Run run) const
{
    if (count() == 0)
        return {};
    // The first column at which numberAt() gives the number, or a later one.
    const auto column = [this](long long number) {
        const long long place = std::clamp(number - _first, 0LL, count());
        return static_cast<int>((place * width() + count() - 1) / count());
    };
    int left = std::min(column(run.first), width() - 1);
    if (left > 0 && numberAt(left) > run.first)
        --left;  // shared with other numbers
    const int right = std::max(column(static_cast<long long>(run.last) + 1), left + 1);
    return {left, 0, right - left, height()};
}

QString SeriesStrip::textOf(int number) const
{
    QString text = QStringLiteral("Image %1 of %2 to %3").arg(number).arg(_first).arg(_last);
    if (const auto failed = _failed.find(number); failed != _failed.end())
        return text + QStringLiteral(": ") + failed->second;
    if (contains(_missing, number))
        return text + QStringLiteral(" is missing");
    if (contains(_held, number))
        return text + QStringLiteral(", read ahead");
    return text;
}

bool SeriesStrip::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    int number = numberAt(help->x());
    // Many images may share a column: the one that failed is what the mark under the cursor means.
    const int after = numberAt(help->x() + 2);
    const auto failed = _failed.lower_bound(numberAt(help->x() - 2));
    if (failed != _failed.end() && failed->first <= after)
        number = failed->first;
    if (count() > 0)
        QToolTip::showText(help->globalPos(), toolTipText(textOf(number)), this);
    return true;
}

void SeriesStrip::_paintRuns(QPainter& painter, const Runs& runs, const QRect& exposed,
                             const QColor& colour) const
{
    auto each = std::ranges::lower_bound(runs, numberAt(exposed.left()), {}, &Run::last);
    const int last = numberAt(exposed.right());
    int painted = -1;  // many short runs may share a column
    for (; each != runs.end() && each->first <= last; ++each) {
        const QRect place = columns(*each).adjusted(0, Groove, 0, -Groove);
        if (place.right() <= painted)
            continue;
        painter.fillRect(place, colour);
        painted = place.right();
    }
}

void SeriesStrip::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const QRect exposed = event->rect();
    painter.fillRect(exposed, Ground);
    if (count() == 0)
        return;
    painter.fillRect(rect().adjusted(0, Groove, 0, -Groove), Present);
    _paintRuns(painter, _missing, exposed, Ground);
    _paintRuns(painter, _held, exposed, Held);
    for (const auto& [number, message] : _failed)
        painter.fillRect(columns({number, number}).adjusted(0, Groove, 1, -Groove), Failed);

    const auto marker = [&](int number, const QColor& colour) {
        QRect place = columns({number, number});
        if (place.width() < LeastMarker) {
            place.setLeft(place.center().x() - LeastMarker / 2);
            place.setWidth(LeastMarker);
        }
        // At the ends it stays inside.
        place.moveLeft(std::clamp(place.left(), 0, std::max(width() - place.width(), 0)));
        painter.fillRect(place.adjusted(0, 1, 0, -1), colour);
    };
    marker(_position, _hand ? Behind : QColor(Qt::white));
    if (_hand)
        marker(*_hand, Qt::white);
}

void SeriesStrip::_moveHand(int x)
{
    const int number = numberAt(x);
    if (count() == 0 || _hand == number)
        return;
    _hand = number;
    update();
    emit requested(number);
}

void SeriesStrip::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        _moveHand(event->pos().x());
}

void SeriesStrip::mouseMoveEvent(QMouseEvent* event)
{
    if (_hand && event->buttons() & Qt::LeftButton)
        _moveHand(event->pos().x());
}

void SeriesStrip::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    _hand.reset();
    update();
}

void SeriesStrip::wheelEvent(QWheelEvent* event)
{
    event->accept();  // the view below would zoom
    _wheel -= event->angleDelta().y();
    const int notches = _wheel / QWheelEvent::DefaultDeltasPerStep;
    _wheel %= QWheelEvent::DefaultDeltasPerStep;
    if (notches != 0)
        emit stepped(notches);
}

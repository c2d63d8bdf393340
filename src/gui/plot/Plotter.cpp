// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/plot/Plotter.h"

#include "gui/plot/SavedPlot.h"
#include "logic/support/GlobalStyle.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

using plot::Rows;

namespace {

/// The smallest part of the x axis that is shown, of the whole.
constexpr double Smallest = 1e-6;

/// The rows of a range and one on each side, so that the curve reaches the borders.
Rows rowsAround(const Rows& rows, const std::pair<double, double>& range)
{
    const auto before = [](const auto& row, double x) { return row[0] < x; };
    auto begin = std::lower_bound(rows.begin(), rows.end(), range.first, before);
    auto end = std::lower_bound(begin, rows.end(), range.second, before);
    if (begin != rows.begin())
        --begin;
    if (end != rows.end())
        ++end;
    return {begin, end};
}

}  // namespace

Plotter::Plotter(int minimumWidth, int minimumHeight, int margin, QWidget* parent)
    : QWidget(parent)
    , _logBox(new QCheckBox(this))
{
    setMinimumSize(minimumWidth, minimumHeight);
    setMouseTracking(true);
    _picture.frame.left = margin + 35;
    _picture.frame.top = margin;
    _picture.frame.right = margin;
    _picture.frame.bottom = margin + 20;
    _logBox->setToolTip(QStringLiteral("Plot on a logarithmic scale"));
    _logBox->setAccessibleName(QStringLiteral("Log"));
    _logBox->setFocusPolicy(Qt::NoFocus);
    _logBox->setStyleSheet(
        QStringLiteral("QCheckBox{spacing: 0px; background: transparent;}"
                       "QCheckBox::indicator{width: 6px; height: 6px; border: 1px solid "
                       "rgb(200,200,200); background: transparent;}"
                       "QCheckBox::indicator:checked{background: white;}"));
    connect(_logBox, &QCheckBox::toggled, this, &Plotter::_setPlot);
}

void Plotter::setPlot(Rows rows, int topPadding, int bottomPadding, const QString& xLabel,
                      const QString& yLabel)
{
    // A region that is dragged has new rows all the time: what was zoomed into stays, as long as
    // the axis does, also over a clearing between.
    const auto axis = rows.empty() ? std::optional<std::pair<double, double>>()
                                   : std::pair{rows.front()[0], rows.back()[0]};
    if (std::exchange(_axis, axis) != axis)
        _range.reset();
    _data = std::move(rows);
    _picture.frame.topPadding = topPadding;
    _picture.frame.bottomPadding = bottomPadding;
    _picture.xLabel = xLabel;
    _picture.yLabel = yLabel;
    _setPlot(_logBox->isChecked());
}

void Plotter::clearPlot()
{
    _data.clear();
    _picture.rows.clear();
    _picture.arrows.clear();
    _picture.scale.graph.clear();
    _picture.readout.reset();
    _picture.xLabel.clear();
    _picture.yLabel.clear();
    _picture.frame.topPadding = 0;
    _picture.frame.bottomPadding = 0;
    update();
}

void Plotter::addLeftRightArrow(double x1, double x2, const QString& text)
{
    const bool level = _picture.arrows.empty() || !_picture.arrows.back().level;
    _picture.arrows.push_back({x1, x2, text, level});
    update();
}

void Plotter::setWholeX(bool whole)
{
    _picture.frame.wholeX = whole;
    _setPlot(_logBox->isChecked());
}

void Plotter::setMarker(std::optional<double> x)
{
    _picture.marker = x;
    update();
}

void Plotter::showRange(std::optional<std::pair<double, double>> range)
{
    _range = range;
    _setPlot(_logBox->isChecked());
}

QString Plotter::text() const
{
    QString lines = "# " + _picture.xLabel + "     " + _picture.yLabel + '\n';
    for (const auto& row : _data)
        lines +=
            QString::number(row[0]) + ' ' + QString::number(plot::masked(row) ? 0 : row[1]) + '\n';
    return lines;
}

void Plotter::_setPlot(bool logarithmic)
{
    _picture.frame.size = size();
    _picture.frame.logarithmic = logarithmic;
    _picture.rows = _range ? rowsAround(_data, *_range) : _data;
    if (_picture.rows.size() < 2)
        _range.reset();
    if (!_range)
        _picture.rows = _data;
    plot::PlotScale scale(_picture.rows, _picture.frame);
    if (_data.empty()) {
        // The ticks stay as they were, so that a plot between two regions keeps its axes.
        scale.xTicks = _picture.scale.xTicks;
        scale.yTicks = _picture.scale.yTicks;
    }
    _picture.scale = std::move(scale);
    _picture.readout.reset();
    update();
}

void Plotter::paintEvent(QPaintEvent*)
{
    // Here, as the box belongs to what is drawn.
    const plot::PlotFrame& frame = _picture.frame;
    _logBox->setGeometry(width() - frame.right - 40, frame.top - 14, 12, 12);
    QPainter painter(this);
    plot::paint(painter, _picture);
}

void Plotter::resizeEvent(QResizeEvent*) { _setPlot(_logBox->isChecked()); }

void Plotter::mouseMoveEvent(QMouseEvent* event)
{
    const double x = event->position().x();
    if (_dragFrom) {
        const plot::PlotFrame& frame = _picture.frame;
        _picture.dragged.emplace(
            *_dragFrom, std::clamp(x, double(frame.left), double(frame.left + frame.plotWidth())));
    }
    _setCursorInfo(x);
}

void Plotter::mousePressEvent(QMouseEvent* event)
{
    // The left button tears the whole content out of its panel.
    if (event->button() == Qt::RightButton)
        _dragFrom = event->position().x();
    else
        QWidget::mousePressEvent(event);
    if (event->button() == Qt::LeftButton)
        _pressedAt = event->globalPosition().toPoint();
}

void Plotter::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        _clicked(*event);
    if (event->button() != Qt::RightButton || !_dragFrom)
        return QWidget::mouseReleaseEvent(event);
    const double from = *_dragFrom;
    _dragFrom.reset();
    const auto dragged = std::exchange(_picture.dragged, std::nullopt);
    update();
    if (!dragged || std::abs(dragged->second - from) < QApplication::startDragDistance())
        return _openMenu(event->globalPosition().toPoint());
    const auto [left, right] = std::minmax(from, dragged->second);
    showRange({{_picture.scale.valueAt(left), _picture.scale.valueAt(right)}});
}

void Plotter::_clicked(const QMouseEvent& event)
{
    const auto from = std::exchange(_pressedAt, std::nullopt);
    if (!from || !_picture.frame.wholeX || !rect().contains(event.position().toPoint()) ||
        (event.globalPosition().toPoint() - *from).manhattanLength() >=
            QApplication::startDragDistance())
        return;
    if (const auto row = plot::nearestRow(_picture.rows, _picture.scale, event.position().x()))
        emit clickedSignal(row->x);
}

void Plotter::mouseDoubleClickEvent(QMouseEvent*) { showRange({}); }

void Plotter::leaveEvent(QEvent*)
{
    _picture.readout.reset();
    update();
}

void Plotter::wheelEvent(QWheelEvent* event)
{
    if (_data.size() < 2 || event->angleDelta().y() == 0)
        return QWidget::wheelEvent(event);
    _zoom(std::pow(0.8, event->angleDelta().y() / 120.0), event->position().x());
    event->accept();
}

void Plotter::_zoom(double factor, double x)
{
    const double first = _data.front()[0];
    const double last = _data.back()[0];
    const auto [left, right] = _range.value_or(std::pair{first, last});
    const double at = std::clamp(_picture.scale.valueAt(x), left, right);
    const double newLeft = std::max(at - (at - left) * factor, first);
    const double newRight = std::min(at + (right - at) * factor, last);
    if (newLeft == first && newRight == last)
        showRange({});
    else if (newRight - newLeft > Smallest * (last - first))
        showRange({{newLeft, newRight}});
    _setCursorInfo(x);
}

void Plotter::_setCursorInfo(double x)
{
    const auto readout = _picture.frame.wholeX ? plot::nearestRow : plot::readoutAt;
    _picture.readout = readout(_picture.rows, _picture.scale, x);
    update();
}

void Plotter::_openMenu(const QPoint& position)
{
    QMenu menu(this);
    QAction* const all = menu.addAction(QStringLiteral("Show All"), [this] { showRange({}); });
    all->setEnabled(_range.has_value());
    menu.addSeparator();
    menu.addAction(QStringLiteral("Save Plot..."), this, &Plotter::save)
        ->setEnabled(!_data.empty());
    menu.addAction(QStringLiteral("Copy Values"), this, &Plotter::_copy)
        ->setEnabled(!_data.empty());
    menu.exec(position);
}

void Plotter::_copy() { QApplication::clipboard()->setText(_textToSave()); }

void Plotter::save()
{
    plot::Picture picture = _picture;
    picture.readout.reset();
    plot::askAndSave(this, {picture, palette().color(backgroundRole()), _textToSave()});
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/MdiArea.h"

#include "gui/kit/Resources.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <QPointer>
#include <QSignalBlocker>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>
#include <utility>

MdiArea::MdiArea(QWidget* parent)
    : QWidget(parent)
    , _mainSplitter(new MdiSplitter(Qt::Horizontal, this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(_mainSplitter);
    setAutoFillBackground(false);
    setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::MinimumExpanding);
    initResources();
    _rearrange();
}

MdiArea::~MdiArea()
{
    // A deleted frame passes its focus on; the remaining frames must not react to that.
    const QSignalBlocker quiet(qApp);
    for (AbstractSubWindow* frame : std::as_const(_subWindows))
        disconnect(frame, nullptr, this, nullptr);
    qDeleteAll(_subWindows);
}

std::vector<int> MdiArea::columnHeights(int frames)
{
    const int columns = std::max(static_cast<int>(std::ceil(std::sqrt(double(frames)))), 1);
    std::vector<int> heights(static_cast<std::size_t>(columns), frames / columns);
    std::fill_n(heights.begin(), frames % columns, frames / columns + 1);
    return heights;
}

void MdiArea::addSubWindows(const QList<AbstractSubWindow*>& frames)
{
    if (frames.isEmpty())
        return;
    for (AbstractSubWindow* frame : frames) {
        _subWindows.append(frame);
        connect(frame, &AbstractSubWindow::gotActivated, this, &MdiArea::_processGotActivated);
        connect(frame, &AbstractSubWindow::terminated, this, &MdiArea::_removeSlot);
        connect(frame, &QObject::destroyed, this, [this, frame] {
            if (_take(frame))
                _rearrangeSoon();
        });
    }
    _rearrange();
    frames.last()->setActivated(true);
}

void MdiArea::removeSubWindow(AbstractSubWindow* frame)
{
    if (!_take(frame))
        return;
    disconnect(frame, nullptr, this, nullptr);
    {
        // Hiding passes the focus to a neighbour, which must not become active by that.
        const QSignalBlocker quiet(qApp);
        frame->hide();
        frame->setParent(nullptr);
    }
    frame->deleteLater();
    _rearrangeSoon();
}

bool MdiArea::_take(AbstractSubWindow* frame)
{
    if (!_subWindows.removeOne(frame))
        return false;
    if (frame != _activeSubWindow)
        return true;
    _activeSubWindow = nullptr;
    if (!_subWindows.isEmpty())
        _subWindows.first()->setActivated(true);
    return true;
}

void MdiArea::_rearrangeSoon()
{
    // Once for all frames removed in a row, as of files that can't be shown: each time moves every
    // remaining frame.
    if (std::exchange(_rearrangeDue, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            _rearrangeDue = false;
            _rearrange();
        },
        Qt::QueuedConnection);
}

void MdiArea::_closeActiveSubwindow()
{
    if (_activeSubWindow)
        removeSubWindow(_activeSubWindow);
}

void MdiArea::_processGotActivated(AbstractSubWindow* frame)
{
    _activeSubWindow = frame;
    for (AbstractSubWindow* other : std::as_const(_subWindows)) {
        if (other != frame)
            other->setActivated(false);
    }
}

void MdiArea::_removeSlot(AbstractSubWindow* frame) { removeSubWindow(frame); }

MdiSplitter* MdiArea::_column(int index) const
{
    return qobject_cast<MdiSplitter*>(_mainSplitter->widget(index));
}

void MdiArea::_rearrange()
{
    // Moving frames drops the focus; nothing must react to that, and the active frame gets it back.
    const QSignalBlocker quiet(qApp);
    const QPointer<QWidget> focus = QApplication::focusWidget();
    for (AbstractSubWindow* frame : std::as_const(_subWindows))
        frame->setParent(nullptr);

    const std::vector<int> heights = columnHeights(static_cast<int>(_subWindows.size()));
    const int columns = static_cast<int>(heights.size());
    while (_mainSplitter->count() < columns)
        _mainSplitter->addWidget(new MdiSplitter(Qt::Vertical));
    while (_mainSplitter->count() > columns)
        delete _mainSplitter->widget(0);
    update();
    if (_subWindows.isEmpty())
        return;

    auto frame = _subWindows.cbegin();
    for (int column = 0; column < columns; ++column) {
        for (int row = 0; row < heights[static_cast<std::size_t>(column)]; ++row) {
            _column(column)->addWidget(*frame);
            (*frame++)->show();
        }
    }
    _shareOut(heights);
    if (focus && _activeSubWindow && _activeSubWindow->isAncestorOf(focus))
        focus->setFocus(Qt::OtherFocusReason);
    else if (focus && _activeSubWindow == focus)
        _activeSubWindow->setFocus(Qt::OtherFocusReason);
}

void MdiArea::_shareOut(const std::vector<int>& heights)
{
    // Sizes must take effect at once: an image that arrives before the event loop has laid out its
    // view would be centred in a view without extent. Splitters keep limits of their size from when
    // they were empty.
    for (int column = 0; column < _mainSplitter->count(); ++column)
        _column(column)->refresh();
    _mainSplitter->refresh();
    layout()->invalidate();
    layout()->activate();
    _mainSplitter->setGeometry(contentsRect());
    const int columns = static_cast<int>(heights.size());
    _mainSplitter->setSizes(QList<int>(columns, std::max(width() / columns, 1)));
    for (int column = 0; column < columns; ++column) {
        const int rows = heights[static_cast<std::size_t>(column)];
        _column(column)->setSizes(QList<int>(rows, std::max(height() / rows, 1)));
    }
}

void MdiArea::paintEvent(QPaintEvent*)
{
    if (!_subWindows.isEmpty())
        return;
    if (!_logo)
        _logo = std::make_unique<QSvgRenderer>(QStringLiteral(":icons/tarvik256.svg"));
    const QSize logo = _logo->defaultSize();
    const QRect contents = contentsRect();
    if (logo.isEmpty() || contents.isEmpty())
        return;
    // A view box of the proportions of the contents, centred on the logo, keeps the logo in
    // proportion and in the middle.
    const double scale = std::min(double(contents.width()) / logo.width(),
                                  double(contents.height()) / logo.height());
    const int boxWidth = static_cast<int>(contents.width() / scale);
    const int boxHeight = static_cast<int>(contents.height() / scale);
    _logo->setViewBox(QRect((logo.width() - 1 - (boxWidth - 1)) / 2,
                            (logo.height() - 1 - (boxHeight - 1)) / 2, boxWidth, boxHeight));
    QPainter painter(this);
    painter.setRenderHints(QPainter::SmoothPixmapTransform | QPainter::Antialiasing);
    _logo->render(&painter, contents);
}

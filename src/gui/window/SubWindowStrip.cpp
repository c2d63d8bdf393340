// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/SubWindowStrip.h"

#include "gui/kit/AbstractSubWindow.h"
#include "logic/service/TarvikService.h"

#include <QEvent>
#include <QFile>

#include <utility>

namespace {

constexpr int FirstPause = 350;  // ms
/// Nothing more is coming.
constexpr int LastPause = 3000;

SeriesStrip::Runs runsOf(const std::vector<morvend::imglib::NumberRange>& ranges)
{
    SeriesStrip::Runs runs;
    runs.reserve(ranges.size());
    for (const auto& range : ranges)
        runs.push_back({range.first, range.last});
    return runs;
}

/// A reason may hold paths.
QString textOf(const std::string& reason)
{
    return QFile::decodeName(QByteArray::fromStdString(reason));
}

}  // namespace

SubWindowStrip::SubWindowStrip(AbstractSubWindow& frame, TarvikService& service,
                               std::function<int()> step)
    : QObject(&frame)
    , _frame(frame)
    , _service(service)
    , _strip(new SeriesStrip)
{
    _strip->hide();
    frame.addFootWidget(_strip);
    connect(&frame, &AbstractSubWindow::toolButtonsShownSignal, this, &SubWindowStrip::_setVisible);
    connect(_strip, &SeriesStrip::requested, &service, &TarvikService::seekImage);
    connect(_strip, &SeriesStrip::stepped, this, [this, step = std::move(step)](int notches) {
        _service.nextImage(notches * step(), true);
    });
    connect(&service, &TarvikService::newImageSignal, this, &SubWindowStrip::_refresh);
    connect(&service, &TarvikService::imageContainerChangedSignal, this, &SubWindowStrip::_refresh);
    connect(&service, &TarvikService::noticeSignal, this, &SubWindowStrip::_refresh);
    connect(&service, &TarvikService::imageLoadErrorSignal, this, &SubWindowStrip::_refresh);
    connect(&service, &TarvikService::readAheadSignal, this, &SubWindowStrip::_showReadAhead);
    _look.setSingleShot(true);
    connect(&_look, &QTimer::timeout, this, [this] {
        if (_strip->isVisible())
            _service.listReadAhead();
    });
    // A view that was out of sight may have missed all of it.
    _strip->installEventFilter(this);
}

bool SubWindowStrip::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show)
        _lookSoon();
    return QObject::eventFilter(watched, event);
}

void SubWindowStrip::_refresh()
{
    _strip->setPosition(_service.imageIndex());
    _showState(_service.seriesState());
    _setVisible();
    _lookSoon();
}

void SubWindowStrip::_showState(const SeriesState& state)
{
    _strip->setSeries(state.first, state.last);
    if (state.gaps != _shown.gaps)
        _strip->setMissing(state.gaps ? runsOf(*state.gaps) : SeriesStrip::Runs());
    if (state.readAhead != _shown.readAhead)
        _strip->setHeld(state.readAhead ? runsOf(state.readAhead->held) : SeriesStrip::Runs());
    if (state.failed != _shown.failed || state.readAhead != _shown.readAhead) {
        SeriesStrip::Failures failed;
        if (state.readAhead) {
            for (const auto& [number, reason] : state.readAhead->failed)
                failed[number] = textOf(reason);
        }
        if (state.failed) {
            for (const auto& [number, reason] : *state.failed)
                failed[number] = textOf(reason);
        }
        _strip->setFailed(std::move(failed));
    }
    _shown = state;
}

void SubWindowStrip::_showReadAhead()
{
    const SeriesState state = _service.seriesState();
    const bool same = state.readAhead && _shown.readAhead ? *state.readAhead == *_shown.readAhead
                                                          : state.readAhead == _shown.readAhead;
    _showState(state);
    if (!same)
        _pause = FirstPause;
    else if ((_pause *= 2) > LastPause)
        return;
    _look.start(_pause);
}

void SubWindowStrip::_lookSoon()
{
    _pause = FirstPause;
    if (!_look.isActive())
        _look.start(_pause);
}

void SubWindowStrip::_setVisible()
{
    _strip->setVisible(_frame.toolButtonsShown() && _strip->count() > 1);
}

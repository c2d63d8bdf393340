// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "api/UserWait.h"

#include "api/LoadOutcome.h"
#include "api/ViewAnswers.h"
#include "gui/render/ImageDrawerMain.h"
#include "gui/window/SubWindow.h"
#include "logic/service/TarvikService.h"
#include "logic/support/PacedCalls.h"

#include <QApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMouseEvent>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr const char* ForClick = "waitForClick";
constexpr const char* ForRegion = "waitForRegion";
constexpr const char* ForImage = "waitForImage";

}  // namespace

void UserWait::Answer::set(const ApiResult& result)
{
    const std::lock_guard lock(_mutex);
    if (!_result)
        _result = result;
    _changed.notify_all();
}

std::optional<ApiResult> UserWait::Answer::wait(std::chrono::milliseconds timeout,
                                                const std::function<bool()>& givenUp)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds Look{200};
    // A time beyond a day is for ever; it must not overflow the clock.
    const auto end =
        Clock::now() + std::min<std::chrono::milliseconds>(timeout, std::chrono::years(1));
    std::unique_lock lock(_mutex);
    while (!_result && Clock::now() < end && !givenUp())
        _changed.wait_until(lock, std::min(end, Clock::now() + Look));
    return _result;
}

bool UserWait::knows(const QString& command)
{
    return command == QLatin1String(ForClick) || command == QLatin1String(ForRegion) ||
           command == QLatin1String(ForImage);
}

UserWait::UserWait(const QString& command, SubWindow& view, std::shared_ptr<Answer> answer)
    : QObject(&view)
    , _view(view)
    , _answer(std::move(answer))
    , _forRegion(command == QLatin1String(ForRegion))
{
    const TarvikService* service = view.service();
    if (command == QLatin1String(ForImage)) {
        _endIfLoaded();
        return;
    }
    // The surface of the view passes its events on to the view or gets them itself.
    view.imageDrawer()->installEventFilter(this);
    if (!_forRegion)
        return;
    connect(service, &TarvikService::newStatisticsSignal, this,
            [this] { _drawn = _drawn || QApplication::mouseButtons() != Qt::NoButton; });
    connect(service, &TarvikService::regionComputedSignal, this, [this] {
        if (_drawn && QApplication::mouseButtons() == Qt::NoButton)
            _end(ApiResult::of(viewanswers::region(_view)));
    });
}

UserWait::~UserWait() { _answer->set(ApiResult::failure(QStringLiteral("NoObject"))); }

void UserWait::_end(const ApiResult& result)
{
    _answer->set(result);
    deleteLater();
}

void UserWait::_endIfLoaded()
{
    // No signal says that the loader's job has ended, which comes after its image.
    constexpr int Look = 5;
    if (_view.service()->loading())
        return QTimer::singleShot(Look, this, &UserWait::_endIfLoaded);
    // Its image is a queued call by now, and then waits for its turn among those of all views.
    QMetaObject::invokeMethod(
        this, [this] { PacedCalls::ofThisProcess().call(this, [this] { _loaded(); }); },
        Qt::QueuedConnection);
}

void UserWait::_loaded()
{
    const QString failure = LoadOutcome::failure(_view);
    if (_view.service()->loading())
        _endIfLoaded();
    else if (!failure.isNull())
        _end(ApiResult::failure(failure));
    else if (_view.service()->imageLoaded())
        _end(viewanswers::find(QStringLiteral("viewInfo"))(_view).result);
    else
        _end(ApiResult::failure(QStringLiteral("NoImage")));
}

bool UserWait::eventFilter(QObject*, QEvent* event)
{
    const bool press = event->type() == QEvent::MouseButtonPress;
    if (!press && event->type() != QEvent::MouseButtonRelease)
        return false;
    const auto* mouse = static_cast<QMouseEvent*>(event);
    const QPoint at = mouse->position().toPoint();
    if (press) {
        _press = at;
        return false;
    }
    if (_forRegion) {
        if (_drawn && !_view.service()->regionPending())
            _end(ApiResult::of(viewanswers::region(_view)));
        return false;
    }
    // A drag is no click.
    if (!_press ||
        (at - *std::exchange(_press, {})).manhattanLength() > QApplication::startDragDistance())
        return false;
    const ImageDrawerMain& drawer = *_view.imageDrawer();
    const QJsonObject click{{"x", std::floor(drawer.imgX(at.x()))},
                            {"y", std::floor(drawer.imgY(at.y()))},
                            {"button", int(mouse->button())},
                            {"modifiers", int(mouse->modifiers())}};
    _end(ApiResult::of(QString::fromUtf8(QJsonDocument(click).toJson(QJsonDocument::Compact))));
    return false;
}

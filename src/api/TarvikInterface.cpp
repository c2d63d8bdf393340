// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "api/TarvikInterface.h"

#include "api/LoadOutcome.h"
#include "api/SlotCaller.h"
#include "api/UserWait.h"
#include "api/ViewAnswers.h"
#include "gui/window/MainWindow.h"
#include "gui/window/MainWindowGenerator.h"
#include "gui/window/SubWindow.h"
#include "imagelib/image/MException.h"
#include "logic/core/TarvikCore.h"
#include "logic/support/Console.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <exception>
#include <memory>

using namespace std::chrono_literals;

namespace {

/// How often the thread looks whether it is to end.
constexpr auto Look = 500ms;
/// For the image or drawing list that belongs to a request.
constexpr auto MessagePatience = 60s;

/// For a load that is under way when a script sends the next image.
constexpr std::chrono::milliseconds LoadPatience = 5s;

ApiResult timeout() { return ApiResult::failure(QStringLiteral("Timeout")); }

ApiResult noMethod() { return ApiResult::failure(QStringLiteral("NoMethod")); }

ApiResult noObject() { return ApiResult::failure(QStringLiteral("NoObject")); }

ApiResult idOrFailure(const QObject* object)
{
    return object ? ApiResult::of(ObjectTable::id(object)) : noObject();
}

bool flag(const QList<QString>& arguments, qsizetype i) { return arguments.value(i).toInt() != 0; }

/// The window system ends a process that asks for much more than its screens.
QSize largestWindow()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    return QSize(4096, 4096).expandedTo(screen ? screen->virtualSize() : QSize());
}

/// Calls on the object's thread and waits. What the call throws is thrown here.
template <class Call>
void onGui(QObject* object, Call&& call)
{
    std::exception_ptr thrown;
    const auto guarded = [&] {
        try {
            call();
        } catch (...) {
            thrown = std::current_exception();
        }
    };
    QMetaObject::invokeMethod(object, guarded, Qt::BlockingQueuedConnection);
    if (thrown)
        std::rethrow_exception(thrown);
}

/// The time that a request gives to a wait, in milliseconds: its first argument.
std::chrono::milliseconds timeOf(const ApiRequest& request)
{
    constexpr std::chrono::milliseconds NoEnd = 24h * 365;
    if (request.arguments.isEmpty())
        return NoEnd;
    return std::chrono::milliseconds(std::max(0, request.arguments[0].toInt()));
}

}  // namespace

TarvikInterface::TarvikInterface(TarvikCore* core, const QString& queueId)
    : _core(core)
    , _queueId(queueId)
{
    // What slots that a script calls take, for Qt's queued calls.
    qRegisterMetaType<SubWindow**>("SubWindow**");
    qRegisterMetaType<int*>("int*");
    qRegisterMetaType<double*>("double*");
    qRegisterMetaType<QString*>("QString*");
    qRegisterMetaType<QObject**>("QObject**");
    qRegisterMetaType<MImage>("morvend::imglib::MImage");
    qRegisterMetaType<const MImage*>("const morvend::imglib::MImage*");
    qRegisterMetaType<const MImage**>("const morvend::imglib::MImage**");
    qRegisterMetaType<const MDrawingList*>("const morvend::imglib::MDrawingList<>*");
    qRegisterMetaType<const MDrawingList**>("const morvend::imglib::MDrawingList<>**");
}

bool TarvikInterface::stop(std::chrono::milliseconds patience)
{
    _stopping = true;
    QElapsedTimer clock;
    clock.start();
    while (!wait(5)) {
        if (clock.hasExpired(patience.count()))
            return false;
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }
    return true;
}

void TarvikInterface::run()
{
    try {
        MMessageQueue queue(_queueId.toUtf8().constData());
        while (!_stopping)
            if (const MMessageQueue::Peer peer = queue.waitForPeer(Look))
                _serve(queue, peer);
    } catch (const std::exception& error) {
        console::warn(std::string("ERROR: no script can reach this process: ") + error.what() +
                      "\n");
        QCoreApplication::exit(1);
    }
}

void TarvikInterface::_serve(MMessageQueue& queue, MMessageQueue::Peer peer)
{
    _clientGone = [&] { return _stopping || queue.peer() != peer; };
    try {
        while (!_stopping) {
            ApiRequest request;
            try {
                request = ApiRequest::parse(queue.receiveFrom(peer, Look));
            } catch (const morvend::MTimeoutException&) {
                continue;
            }
            ApiResult result;
            _answerImage.reset();
            try {
                _receiveArgument(queue, peer, request);
                result = _sendCommand(request);
            } catch (const morvend::MTimeoutException&) {
                result = ApiResult::failure(QStringLiteral("NoMessage"));
            } catch (const morvend::MPeerGoneException&) {
                throw;
            } catch (const std::exception& error) {
                result = ApiResult::failure(QString::fromUtf8(error.what()));
            }
            if (!request.fault.isEmpty())
                result.reason = request.fault;
            queue.sendTo(peer, apiReply(result));
            if (result.success && _answerImage)
                queue.sendTo(peer, *_answerImage);
        }
    } catch (const morvend::MPeerGoneException&) {
        // The user keeps the windows, and the next client finds them by their numbers.
    } catch (const std::exception& error) {
        console::warn(std::string("WARNING: a script was left: ") + error.what() + "\n");
        queue.disconnect(peer);
    }
    _image = MImage();
    _answerImage.reset();
}

void TarvikInterface::_receiveArgument(MMessageQueue& queue, MMessageQueue::Peer peer,
                                       ApiRequest& request)
{
    const void* address = nullptr;
    if (request.command == QLatin1String("loadImage")) {
        queue.receiveFrom(peer, _image, MessagePatience);
        address = &_image;
    } else if (request.command == QLatin1String("addToPaintList") ||
               request.command == QLatin1String("setPaintList")) {
        queue.receiveFrom(peer, _drawingList, MessagePatience);
        address = &_drawingList;
    }
    if (address)
        request.arguments.prepend(QString::number(reinterpret_cast<quintptr>(address)));
}

ApiResult TarvikInterface::_sendCommand(const ApiRequest& request)
{
    QObject* const object = _objects.find(request.object);
    const auto is = [&](const char* name) { return request.command == QLatin1String(name); };
    if (request.object == 0 && is("quit"))
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    if (request.object == 0 && is("openMainFrame"))
        return _openMainFrame(request.arguments);
    if (is("openSubFrame"))
        return idOrFailure(_openSubFrame(object, flag(request.arguments, 0)));
    if (is("close"))
        return _close(object);
    if (is("waitForClose"))
        return _objects.waitUntilGone(object, timeOf(request), _clientGone) ? ApiResult::of()
                                                                            : timeout();
    if (UserWait::knows(request.command))
        return _waitForUser(request, object);
    if (viewanswers::find(request.command))
        return _askView(request, object);
    if (is("loadImage"))
        _letLoad(object);
    const auto hold = _objects.hold(object);
    return hold ? callSlot(*object, request.command, request.arguments) : noObject();
}

void TarvikInterface::_letLoad(QObject* view)
{
    ApiRequest wait;
    wait.command = QStringLiteral("waitForImage");
    wait.arguments.append(QString::number(LoadPatience.count()));
    _waitForUser(wait, view);
}

ApiResult TarvikInterface::_openMainFrame(const QList<QString>& arguments)
{
    const QSize size =
        arguments.size() >= 2 ? QSize(arguments[0].toInt(), arguments[1].toInt()) : QSize();
    const bool glsl = arguments.size() < 3 || flag(arguments, 2);
    return idOrFailure(_openMainFrame(size, glsl, flag(arguments, 3), flag(arguments, 4)));
}

QObject* TarvikInterface::_openMainFrame(const QSize& size, bool glsl, bool hideToolBar,
                                         bool disableClose)
{
    auto* const window = static_cast<MainWindow*>(MainWindowGenerator(_core, glsl).make());
    if (!window)
        return nullptr;
    onGui(window, [&] {
        connect(window, &MainWindow::newSubWindowSignal, this, &TarvikInterface::_attach,
                Qt::DirectConnection);
        window->resize(size == QSize(-1, -1) ? QSize(1200, 800) : size.boundedTo(largestWindow()));
        if (hideToolBar)
            window->hideToolBar();
        if (disableClose)
            window->disableClose();
        _attachObject(window);
    });
    QMetaObject::invokeMethod(window, &QWidget::show, Qt::QueuedConnection);
    return window;
}

QObject* TarvikInterface::_openSubFrame(QObject* parent, bool hideToolButtons)
{
    const auto hold = _objects.hold(parent);
    auto* const window = hold ? qobject_cast<MainWindow*>(parent) : nullptr;
    SubWindow* view = nullptr;
    if (window)
        onGui(window, [&] {
            window->newSubWindow(&view);  // which puts it into the table
            if (hideToolButtons)
                view->hideToolButtons();
        });
    return view;
}

ApiResult TarvikInterface::_close(QObject* object)
{
    bool called = false;
    _objects.remove(object, [&] {
        disconnect(object, SIGNAL(aboutToTerminate(QObject*)), this, SLOT(_detach(QObject*)));
        called = QMetaObject::invokeMethod(object, "close", Qt::QueuedConnection);
    });
    return called ? ApiResult::of() : ApiResult::failure();
}

ApiResult TarvikInterface::_waitForUser(const ApiRequest& request, QObject* object)
{
    const auto answer = std::make_shared<UserWait::Answer>();
    QPointer<UserWait> wait;
    {
        // Not held while the user thinks: the view may be closed meanwhile.
        const auto hold = _objects.hold(object);
        auto* const view = hold ? qobject_cast<SubWindow*>(object) : nullptr;
        if (!view)
            return hold ? noMethod() : noObject();
        onGui(view, [&] { wait = new UserWait(request.command, *view, answer); });
    }
    const auto result = answer->wait(timeOf(request), _clientGone);
    if (result)
        return *result;
    // Its view may be going right now, which only its own thread can know.
    QMetaObject::invokeMethod(
        _core, [wait] { delete wait.data(); }, Qt::QueuedConnection);
    return timeout();
}

ApiResult TarvikInterface::_askView(const ApiRequest& request, QObject* object)
{
    const auto answerTo = viewanswers::find(request.command);
    for (;;) {
        const auto hold = _objects.hold(object);
        auto* const view = hold ? qobject_cast<SubWindow*>(object) : nullptr;
        if (!view)
            return hold ? noMethod() : noObject();
        std::optional<ApiAnswer> answer;
        onGui(view, [&] {
            if (!viewanswers::pending(request.command, *view))
                answer = answerTo(*view);
        });
        if (answer) {
            _answerImage = std::move(answer->image);
            return answer->result;
        }
        if (_clientGone())
            return noObject();
        msleep(2);
    }
}

void TarvikInterface::_attach(SubWindow* window)
{
    LoadOutcome::follow(*window);
    _attachObject(window);
}

void TarvikInterface::_attachObject(QObject* object)
{
    _objects.attach(object);
    connect(object, SIGNAL(aboutToTerminate(QObject*)), this, SLOT(_detach(QObject*)),
            Qt::ConnectionType(Qt::DirectConnection | Qt::UniqueConnection));
}

void TarvikInterface::_detach(QObject* object) { _objects.detach(object); }

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Serves a script over a message queue.
#pragma once

#include "api/ApiMessages.h"
#include "api/ObjectTable.h"
#include "imagelib/display/MDrawingList.h"
#include "imagelib/image/MImage.h"
#include "imagelib/ipc/MMessageQueue.h"

#include <QSize>
#include <QThread>

#include <atomic>
#include <optional>

class SubWindow;
class TarvikCore;

/// Answers on the queue of the daemon, see docs/protocols/scripting.md. Requests are served
/// one after the other, each on the GUI thread; a client that leaves in the middle of one is
/// followed by the next.
class TarvikInterface : public QThread {
    Q_OBJECT
public:
    /// @param core  outlives this object
    TarvikInterface(TarvikCore* core, const QString& queueId);
    /// Waits for the thread's end, which stop() has requested, and serves its calls meanwhile.
    /// @returns false if it does not end within the time
    bool stop(std::chrono::milliseconds patience);

protected:
    void run() override;

private slots:
    void _attach(SubWindow* window);
    void _detach(QObject* object);

private:
    using MImage = morvend::imglib::MImage;
    using MDrawingList = morvend::imglib::MDrawingList<>;
    using MMessageQueue = morvend::imglib::MMessageQueue;

    /// Serves one client to its end.
    void _serve(MMessageQueue& queue, MMessageQueue::Peer peer);
    /// The message after the text of a command that brings one, as first argument.
    /// @throws MPeerGoneException, MTimeoutException
    void _receiveArgument(MMessageQueue& queue, MMessageQueue::Peer peer, ApiRequest& request);
    ApiResult _sendCommand(const ApiRequest& request);

    ApiResult _openMainFrame(const QList<QString>& arguments);
    QObject* _openMainFrame(const QSize& size, bool glsl, bool hideToolBar, bool disableClose);
    QObject* _openSubFrame(QObject* parent, bool hideToolButtons);
    /// Waits a while until a view is done with the image before: one that is sent faster than it
    /// can be shown must not pile up images.
    void _letLoad(QObject* view);
    ApiResult _close(QObject* object);
    ApiResult _waitForUser(const ApiRequest& request, QObject* object);
    ApiResult _askView(const ApiRequest& request, QObject* object);
    void _attachObject(QObject* object);

    TarvikCore* _core;
    const QString _queueId;
    ObjectTable _objects;
    // What a client has sent last, alive until the next.
    MImage _image;
    MDrawingList _drawingList;
    std::optional<MImage> _answerImage;  // follows the reply
    std::function<bool()> _clientGone;
    std::atomic<bool> _stopping = false;
};

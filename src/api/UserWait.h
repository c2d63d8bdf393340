// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Waits for what the user does in a view.
#pragma once

#include "api/ApiMessages.h"

#include <QObject>
#include <QPoint>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

class SubWindow;

/// Ends with a click into the image, with the end of a drawn region, or when no image is being
/// loaded any more. Lives in the view, on the GUI thread, and fails with it; another thread waits
/// for the end.
class UserWait : public QObject {
    Q_OBJECT
public:
    /// Where the answer arrives.
    class Answer {
    public:
        void set(const ApiResult& result);
        /// Waits until there is an answer or `givenUp`, which is asked several times a second.
        std::optional<ApiResult> wait(std::chrono::milliseconds timeout,
                                      const std::function<bool()>& givenUp);

    private:
        std::mutex _mutex;
        std::condition_variable _changed;
        std::optional<ApiResult> _result;
    };

    /// True for waitForClick, waitForRegion and waitForImage.
    static bool knows(const QString& command);

    UserWait(const QString& command, SubWindow& view, std::shared_ptr<Answer> answer);
    ~UserWait() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void _end(const ApiResult& result);
    /// Ends it if no image is on its way, but not before all that has come is shown.
    void _endIfLoaded();
    void _loaded();

    SubWindow& _view;
    std::shared_ptr<Answer> _answer;
    std::optional<QPoint> _press;
    bool _drawn = false;  // a region has changed under the pressed button
    const bool _forRegion;
};

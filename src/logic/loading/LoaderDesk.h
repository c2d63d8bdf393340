// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where the jobs of a view leave what they have for it.
#pragma once

#include "logic/loading/LoaderData.h"
#include "logic/loading/SeriesSession.h"

#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <string>

class LoaderContext;

/// Holds finished records and the bounds of the series, and forwards signals to the view. Only the
/// jobs of one context count; whatever comes from others is dropped.
/// Thread: any. The mutex is held briefly, and while a signal is emitted.
class LoaderDesk {
public:
    using Bounds = SeriesSession::Bounds;
    /// The signals of the view, emitted on the thread of the job that they come from.
    struct Signals {
        std::function<void()> newImage;
        std::function<void()> scanned;
        std::function<void(const std::string&)> loadError;
        std::function<void(const std::string&)> notice;
        std::function<void()> readAhead;
    };

    explicit LoaderDesk(Signals signals_)
        : _signals(std::move(signals_))
    {}

    // Of the view.
    /// Sets whose jobs count. With null, nothing is signalled after this returns.
    void serve(const LoaderContext* context);
    /// Moves all records to the end of a list, in the order they came.
    void take(std::list<LoaderData>& out);
    /// Of the series when the last job ended, with the read-ahead that was listed last.
    Bounds bounds() const;
    /// The series and the image of the last record.
    SeriesSession::Shown shown() const;

    // Of jobs. Without bounds, those that are known stay.
    /// @param openedAs  the path that the record's series was opened by, empty for one in memory
    void deliver(const LoaderContext& from, const std::optional<Bounds>& bounds,
                 const LoaderData& record, const std::string& openedAs);
    /// @param message  an empty one is not signalled
    void fail(const LoaderContext& from, const std::optional<Bounds>& bounds,
              const std::string& message);
    void notice(const LoaderContext& from, const std::string& message);
    void scanned(const LoaderContext& from, const std::optional<Bounds>& bounds);
    void readAhead(const LoaderContext& from, std::shared_ptr<const ReadAhead> list);

private:
    /// Under the mutex.
    void _setBounds(const std::optional<Bounds>& bounds);
    /// Calls an action, unless another context counts.
    template <class Action>
    void _from(const LoaderContext& context, Action&& action);

    const Signals _signals;
    mutable std::recursive_mutex _mutex;  // who is signalled may take the results at once
    const LoaderContext* _current = nullptr;
    std::list<LoaderData> _results;
    Bounds _bounds;
    SeriesSession::Shown _shown;
};

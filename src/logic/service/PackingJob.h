// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Packing of pixels on a worker.
#pragma once

#include "imagelib/codec/PackedPixels.h"
#include "logic/loading/WorkerPool.h"

#include <memory>
#include <mutex>
#include <optional>
#include <utility>

/// Packs the pixels of one image, which it holds only as long as that takes. Nobody waits for it.
/// Thread: any.
class PackingJob {
public:
    using Result = std::shared_ptr<const morvend::codec::PackedPixels>;

    static std::shared_ptr<PackingJob> start(morvend::imglib::MImage image)
    {
        auto job = std::make_shared<PackingJob>();
        WorkerPool::process().post([job, image = std::move(image)]() mutable {
            Result packed;
            try {
                packed = morvend::codec::PackedPixels::of(image);
            } catch (const std::exception&) {
                // Without memory for that they stay as they are.
            }
            image = {};
            const std::lock_guard lock(job->_mutex);
            job->_result = std::move(packed);
        });
        return job;
    }
    /// Nothing before the end, null where packing saves nothing.
    std::optional<Result> result() const
    {
        const std::lock_guard lock(_mutex);
        return _result;
    }

private:
    mutable std::mutex _mutex;
    std::optional<Result> _result;
};

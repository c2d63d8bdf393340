// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One block of shared memory, and who else may be looking at it.
#pragma once

#include "imagelib/ipc/LeasePage.h"

#include <memory>
#include <mutex>
#include <vector>

namespace morvend::imglib {

/// A sealed memory file that holds one image at a time, from its first byte on. Thread: any.
class Segment {
public:
    /// @throws MRuntimeException when there is no shared memory
    explicit Segment(std::size_t capacity);

    const UniqueFd& file() const { return _file; }
    std::byte* data() const { return _memory.data(); }
    std::size_t capacity() const { return _memory.size(); }

    /// A message on the connection of `book` names this segment by `number`.
    void lend(const std::shared_ptr<LeaseBook>& book, std::uint32_t number);

    enum class Leases { Back, Out, Lost };
    /// Are all back? Lost: a connection has ended before they were. The peer may be dead, or may be
    /// showing the image still, so that the memory must not be written again.
    Leases leases();

    /// Gives the memory back to the system if no peer shows the image, even while one has the
    /// segment mapped. Only for a segment without an image, which is not used again.
    void discard();

private:
    struct Lease {
        std::shared_ptr<LeaseBook> book;
        std::uint32_t number = 0;
    };
    const UniqueFd _file;
    const Mapping _memory;
    std::mutex _mutex;
    std::vector<Lease> _leases;
};

}  // namespace morvend::imglib

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A file descriptor with one owner.
#pragma once

#include <utility>

#include <unistd.h>

namespace morvend::imglib {

/// Closes its descriptor on destruction; -1 means none.
class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd)
        : _fd(fd)
    {}
    UniqueFd(UniqueFd&& other) noexcept
        : _fd(std::exchange(other._fd, -1))
    {}
    UniqueFd& operator=(UniqueFd&& other) noexcept
    {
        UniqueFd taken(std::move(other));
        std::swap(_fd, taken._fd);
        return *this;
    }
    ~UniqueFd()
    {
        if (_fd >= 0)
            ::close(_fd);
    }

    int get() const { return _fd; }
    explicit operator bool() const { return _fd >= 0; }
    void reset() { *this = UniqueFd(); }

private:
    int _fd = -1;
};

}  // namespace morvend::imglib

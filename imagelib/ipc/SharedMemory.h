// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sealed memory files and their mappings.
#pragma once

#include "imagelib/ipc/UniqueFd.h"

#include <cstddef>

namespace morvend::imglib {

/// A mapping of memory, unmapped on destruction.
class Mapping {
public:
    enum class Access { Read, Write };

    /// Maps the first `bytes` bytes of a file, all pages present. @throws MRuntimeException
    Mapping(const UniqueFd& file, std::size_t bytes, Access access);
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;
    ~Mapping();

    std::byte* data() const { return _data; }
    std::size_t size() const { return _size; }

private:
    std::byte* _data = nullptr;
    std::size_t _size = 0;
};

/// A new memory file whose pages are reserved and whose size is sealed, so that no process that
/// maps it can be killed by a change of it. @throws MRuntimeException when the system has none to
/// give
UniqueFd makeMemoryFile(const char* name, std::size_t bytes);

/// The size of a memory file that came from another process.
/// @throws MRuntimeException if it isn't such a file, could shrink, or has holes
std::size_t checkedMemoryFile(const UniqueFd& file);

}  // namespace morvend::imglib

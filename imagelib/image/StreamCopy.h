// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Copies past the caches, for decoders that fill images larger than these.
#pragma once

#include <cstddef>
#include <cstdint>

namespace morvend::image {

/// True if it pays to fill this memory by streamCopy: from 32 MiB on. An ordinary store that
/// misses the caches first reads the line that it overwrites. Lines must be whole, so the memory
/// begins at a multiple of 64 bytes.
inline bool isWorthStreaming(const void* to, std::size_t bytes)
{
    constexpr std::size_t Least = std::size_t(32) << 20;
    return bytes >= Least && reinterpret_cast<std::uintptr_t>(to) % 64 == 0;
}

/// Copies to memory that begins at a multiple of 64 bytes; meant for pieces of some KiB that a
/// decoder has just written to the first-level cache. The memory must be read by other threads
/// only after finishStreaming.
void streamCopy(const void* from, void* to, std::size_t bytes);

/// Orders what this thread has copied before all that it stores from here on.
void finishStreaming();

}  // namespace morvend::image

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reads all that a damaged file gives, and checks what holds for every file.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"

#include <cstdint>
#include <memory>
#include <string>

namespace tarvik::fuzz {

/// The name under which bytes are read, in a folder that does not exist.
inline constexpr const char* FilePath = "/no/such/folder/fuzzed";

/// The bytes as a file in memory, or as one that has to be read by position.
std::shared_ptr<const morvend::imglib::ByteSource> inMemory(const std::uint8_t* data,
                                                            std::size_t size);
std::shared_ptr<const morvend::imglib::ByteSource> byPosition(const std::uint8_t* data,
                                                              std::size_t size);

/// Reads the number of frames, the first frames and the last one, and says what came of it, with
/// sums of the pixels: equal texts, equal results. Demands that every failure is an MException
/// which names a file of the same folder, and that every image has the pixels that its size asks
/// for.
std::string readAll(morvend::imglib::ImageFileOpener open,
                    const std::shared_ptr<const morvend::imglib::ByteSource>& source);

}  // namespace tarvik::fuzz

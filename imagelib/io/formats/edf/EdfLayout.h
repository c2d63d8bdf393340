// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How the pixels of an EDF block are stored.
#pragma once

#include "imagelib/image/Type.h"
#include "imagelib/io/formats/base/Unpack.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace morvend::imglib::edf {

class EdfHeader;

/// The checked values of one header.
struct EdfLayout {
    datatypes::Type type = datatypes::NONE;
    std::size_t typeBits = 0;
    bool bigEndian = false;
    int width = 0;
    int height = 0;
    /// Images in the block: its third dimension.
    std::size_t planes = 1;
    Packing packing = Packing::None;
    /// Bytes of the binary block, as the header states them.
    std::optional<std::uint64_t> statedBytes;
    /// File in the same folder that holds the binary block from externalOffset on; empty when it
    /// follows the header.
    std::string externalFile;
    std::uint64_t externalOffset = 0;

    /// Bytes of one image in memory.
    std::uint64_t planeBytes() const
    {
        return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) *
               (typeBits / 8);
    }
};

/// @param path goes into the messages
/// @throws MRuntimeException for impossible or missing sizes, MNotImplementedException naming a
/// data type, byte order or compression that is not read
EdfLayout readLayout(const EdfHeader& header, const std::string& path);

}  // namespace morvend::imglib::edf

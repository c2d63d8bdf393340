// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The header of an image and drawing lists in the form of the wire.
#pragma once

#include "imagelib/display/MDrawingList.h"
#include "imagelib/image/MImage.h"
#include "imagelib/ipc/WireBytes.h"

#include <functional>

namespace morvend::imglib::wire {

/// Most nodes and attributes of a metadata tree.
inline constexpr std::uint32_t MostNodes = 1U << 20;

/// Types of header fields and of values in a metadata tree.
enum class Tag : std::uint8_t {
    Nothing = 0,
    Int = 1,
    Float = 2,
    Text = 3,
    Ints = 4,
    Floats = 5,
    Texts = 6,
    Image = 7
};

/// Writes all fields and the tree; `mask` writes the image among them.
void writeHeader(ByteWriter& out, const MBasicImageOptionalData<>& header,
                 const std::function<void(const MImage&)>& mask);
/// Reads what writeHeader wrote; fields of unknown names are skipped.
void readHeader(ByteReader& in, MBasicImageOptionalData<>& header,
                const std::function<MImage()>& mask);

void writeList(ByteWriter& out, const MDrawingList<>& list);
MDrawingList<> readList(ByteReader& in);

}  // namespace morvend::imglib::wire

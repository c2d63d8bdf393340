// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Packets of a control unit: a JSON head, and pixels that may be compressed.
#pragma once

#include "imagelib/control/MStreamObject.h"

#include <cstddef>
#include <optional>
#include <span>

namespace morvend::imglib {

/// Bytes that the pixels of a packet may take, decoded.
inline constexpr std::size_t MostPixelBytes = std::size_t(1) << 28;
/// Bytes of a whole packet.
inline constexpr std::size_t MostPacketBytes = MostPixelBytes + (std::size_t(1) << 20);

/// Decodes a packet into memory of its own. Nothing that the head claims is trusted: the size of
/// the image is checked against the bytes that came before memory is taken for it.
///
/// The configuration of a picture becomes the header of its image.
/// @param threads  that may decode the pixels
/// @returns nothing for a type of packet that this program doesn't know
/// @throws MRuntimeException "Packet: <reason>"
/// Thread: any.
std::optional<MStreamObject> decodePacket(std::span<const std::byte> packet, unsigned threads = 1);

}  // namespace morvend::imglib

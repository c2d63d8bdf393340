// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One binary section of a CBF file: what its MIME head says about the pixels.
#pragma once

#include "imagelib/image/Type.h"
#include "imagelib/io/formats/cbf/Cif.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace morvend::imglib {

struct CbfSection {
    enum class Conversion { None, ByteOffset, NibbleOffset, Packed, PackedV2, Canonical };
    enum class Encoding { Binary, Base64, QuotedPrintable, Numbers };

    Conversion conversion = Conversion::None;
    bool flat = false;  ///< packed without use of the row before
    bool uncorrelatedSections = false;
    Encoding encoding = Encoding::Binary;
    datatypes::Type type = datatypes::INT;
    std::size_t bits = 32;
    bool bigEndian = false;
    std::uint64_t fast = 0;    ///< width, or 0 if neither MIME head nor categories say
    std::uint64_t second = 0;  ///< height
    std::uint64_t third = 1;   ///< number of frames
    std::string md5;           ///< in BASE64, empty if the file has none

    std::uint64_t offset = 0;  ///< of the data in the file
    std::uint64_t bytes = 0;   ///< of the data in the file

    std::size_t pixelBytes() const { return bits / 8; }
};

/// Reads a MIME head, the lines between the boundary and the data.
/// @param size  receives X-Binary-Size, or 0 if it is missing
/// @throws MRuntimeException with reason and path for a type, conversion or encoding that is not
/// known, and for dimensions that no image can have
CbfSection parseMimeHead(std::string_view head, const std::string& path, std::uint64_t& size);

/// Takes dimensions that the MIME head lacks from the categories of the CIF text.
void completeDimensions(CbfSection& section, const Cif& cif);

}  // namespace morvend::imglib

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The colour tables of the program, each with its inverse.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace morvend::imglib {

struct ColorTableData;

/// An immutable colour table: a linear part for the intensities from background to foreground, and
/// for some tables a logarithmic part for those from foreground to logarithmic foreground.
///
/// The tables live as long as the process; each function gives the same pointer at each call, so
/// that pointers can be compared. Sizes are powers of two, so that an index computed in 32-bit
/// floats on the graphics card and on the processor is the same.
/// Thread: any.
class MColorTable {
public:
    static const MColorTable* hdr();
    static const MColorTable* grey();
    static const MColorTable* heat();
    static const MColorTable* rainbow();
    // For people with weak colour vision.
    static const MColorTable* viridis();
    static const MColorTable* cividis();

    /// "High Dynamic Range", "Grey Scale", "Heat", "Rainbow", "Viridis" or "Cividis"; an inverse
    /// table bears the name of its family.
    const std::string& identifier() const { return _identifier; }

    /// Entries of the linear part, 4 bytes each in the order blue, green, red, alpha.
    const unsigned char* linData() const { return _linear.data(); }
    std::size_t linDataSize() const { return _linear.size() / 4; }
    /// Entries of the logarithmic part, or an empty array.
    const unsigned char* logData() const { return _logarithmic.data(); }
    std::size_t logDataSize() const { return _logarithmic.size() / 4; }

    /// Colours of saturated and of defective pixels, as 0xAARRGGBB.
    std::uint32_t saturatedColor() const { return _saturated; }
    std::uint32_t defectiveColor() const { return _defective; }

    bool inverse() const { return _inverse; }
    /// The table of the same family with each part in reversed order; that of an inverse table is
    /// the one the functions above give.
    const MColorTable* inverseTable() const { return _other; }

    MColorTable(const MColorTable&) = delete;
    MColorTable& operator=(const MColorTable&) = delete;

private:
    struct Family;
    MColorTable(const ColorTableData& data, bool inverse);

    std::string _identifier;
    std::vector<unsigned char> _linear;
    std::vector<unsigned char> _logarithmic;
    std::uint32_t _saturated = 0;
    std::uint32_t _defective = 0;
    bool _inverse = false;
    const MColorTable* _other = nullptr;
};

}  // namespace morvend::imglib

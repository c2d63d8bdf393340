// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// ColorRule: levels and colour table become look-up tables.
#include "imagelib/display/ColorRule.h"

#include "imagelib/display/MColorTable.h"
#include "imagelib/image/Assert.h"
#include "imagelib/image/MaskBits.h"

#include <bit>
#include <cstring>

namespace morvend::imglib {

namespace {

// A bin's low bits must fit into 16 bits.
constexpr int coarsestShift = 16;

std::uint32_t colorWord(std::uint32_t red, std::uint32_t green, std::uint32_t blue, bool rgba)
{
    if (!rgba)
        return 0xff000000U | red << 16 | green << 8 | blue;
    const unsigned char bytes[4] = {static_cast<unsigned char>(red),
                                    static_cast<unsigned char>(green),
                                    static_cast<unsigned char>(blue), 255};
    return std::bit_cast<std::uint32_t>(bytes);
}

std::uint32_t colorWord(std::uint32_t argb, bool rgba)
{
    return colorWord(argb >> 16 & 255, argb >> 8 & 255, argb & 255, rgba);
}

/// For each entry the float bits at which the logarithmic part reaches it, ascending.
std::vector<std::uint32_t> entryBorders(double logSlope, double logOffset, std::size_t entries)
{
    std::vector<std::uint32_t> borders(entries, 0);
    for (std::size_t k = 1; k < entries; ++k) {
        const double wanted = static_cast<double>(k);
        const auto reached = [&](std::uint32_t bits) {
            return logSlope * std::log(static_cast<double>(std::bit_cast<float>(bits))) +
                       logOffset >=
                   wanted;
        };
        const double border = std::exp((wanted - logOffset) / logSlope);
        constexpr float highest = std::numeric_limits<float>::max();
        auto bits = std::bit_cast<std::uint32_t>(
            static_cast<float>(std::min(border, static_cast<double>(highest))));
        while (bits > 1 && reached(bits - 1))
            --bits;
        while (bits < std::bit_cast<std::uint32_t>(highest) && !reached(bits))
            ++bits;
        borders[k] = bits;
    }
    return borders;
}

}  // namespace

template <class T>
ColorRule<T>::ColorRule(const ColorSettings& settings)
    : cutoff(static_cast<T>(settings.countCutoff))
    , highlightSaturated(settings.highlightSaturated)
    , defectiveBits(settings.highlightDefective ? maskrule::Defective : 0)
{
    assert(settings.table);
    const std::size_t logSize = settings.table->logDataSize();
    const auto levels =
        transferLevels<T>(settings.foreground, settings.background, settings.logForeground,
                          settings.table->linDataSize(), logSize);
    foreground = levels.foreground;
    background = levels.background;
    slope = static_cast<float>(levels.slope);
    // A foreground that is NaN is above nothing.
    special = highlightSaturated && !(foreground <= cutoff) ? cutoff : foreground;
    if constexpr (std::is_integral_v<T>) {
        const double farthest = static_cast<double>(background) + 2147483647.0;
        if (static_cast<double>(special) > farthest)
            special = static_cast<T>(farthest);
    }
    _makeColors(settings);

    const bool logarithmic = logSize != 0 && levels.logForeground > foreground;
    top = logarithmic ? levels.logForeground : foreground;
    topColor = lastLinear + (logarithmic ? static_cast<std::uint32_t>(logSize) : 0);
    _makeBins(levels, logarithmic ? logSize : 0);
}

template <class T>
void ColorRule<T>::_makeColors(const ColorSettings& settings)
{
    const MColorTable& table = *settings.table;
    colors.reserve(table.linDataSize() + table.logDataSize() + 3);
    const auto append = [&](const unsigned char* entries, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i)
            colors.push_back(
                colorWord(entries[4 * i + 2], entries[4 * i + 1], entries[4 * i], settings.rgba));
    };
    append(table.linData(), table.linDataSize());
    append(table.logData(), table.logDataSize());
    lastLinear = static_cast<std::uint32_t>(table.linDataSize() - 1);
    saturatedColor = static_cast<std::uint32_t>(colors.size());
    black = saturatedColor + 1;
    defectiveColor = saturatedColor + 2;
    colors.push_back(colorWord(table.saturatedColor(), settings.rgba));
    colors.push_back(colorWord(0, 0, 0, settings.rgba));
    colors.push_back(colorWord(table.defectiveColor(), settings.rgba));
    assert(colors.size() < 0x10000);
}

template <class T>
void ColorRule<T>::_makeBins(const TransferLevels<T>& levels, std::size_t logSize)
{
    if (logSize == 0 || levels.logSlope == 0.0) {
        // One entry for all between foreground and top.
        const auto entry = static_cast<std::uint32_t>(logSize == 0 ? 0.0 : levels.logOffset);
        bins.assign(1, (lastLinear + (logSize == 0 ? 0 : 1) + entry) << 16 | 0xffff);
        return;
    }
    const auto distanceBits = [&](T level) {
        return std::bit_cast<std::uint32_t>(static_cast<float>(
            static_cast<double>(level) - static_cast<double>(levels.background)));
    };
    const std::uint32_t lowest = distanceBits(levels.foreground);
    const std::uint32_t highest = distanceBits(levels.logForeground);
    const auto borders = entryBorders(levels.logSlope, levels.logOffset, logSize);
    for (binShift = coarsestShift; !_fillBins(borders, lowest, highest); --binShift)
        assert(binShift > 0);
}

/// @returns false if a bin would hold two borders
template <class T>
bool ColorRule<T>::_fillBins(const std::vector<std::uint32_t>& borders, std::uint32_t lowest,
                             std::uint32_t highest)
{
    firstBin = lowest >> binShift;
    bins.assign((highest >> binShift) - firstBin + 1, 0);
    std::size_t next = 1;  // the first border not yet passed
    for (std::size_t i = 0; i < bins.size(); ++i) {
        const std::uint32_t begin = (firstBin + static_cast<std::uint32_t>(i)) << binShift;
        const std::uint32_t last = begin + ((1U << binShift) - 1);
        while (next < borders.size() && borders[next] <= begin)
            ++next;
        std::uint32_t lastSame = 0xffff;
        const auto entry = static_cast<std::uint32_t>(next - 1);
        if (next < borders.size() && borders[next] <= last) {
            lastSame = borders[next] - begin - 1;
            ++next;
            if (next < borders.size() && borders[next] <= last)
                return false;
        }
        bins[i] = (lastLinear + 1 + entry) << 16 | lastSame;
    }
    return true;
}

template struct ColorRule<int>;
template struct ColorRule<unsigned int>;
template struct ColorRule<float>;

}  // namespace morvend::imglib

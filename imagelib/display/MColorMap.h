// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From intensities to colours on the processor.
#pragma once

#include <map>
#include <string>

namespace morvend::imglib {

class MColorTable;
class MImage;
class MRect;

/// Colours images by the same transfer function as the shaders; docs/display.md states it.
/// Formats: "ARGB", 32-bit values 0xAARRGGBB, the layout of QImage::Format_ARGB32_Premultiplied,
/// and "RGBA", bytes in the order red, green, blue, alpha. All colours are opaque. Thread: any.
class MColorMap {
public:
    /// Makes `result` an image of UINT 32 with one colour per pixel of `image`, or of `rect` when
    /// it isn't null; an empty rectangle gives an empty image.
    /// @param mask  null or an image of the same size: bit 0 gives black, bits 1 to 4 mark
    /// defective pixels
    /// @param countCutoff  intensities at or above it are saturated
    /// @throws MBadParameterException for another format, a rectangle that leaves the image or a
    /// mask of another size
    static void rgb(MImage& result, const MImage& image, double foreground, double background,
                    double logForeground, const MColorTable& table, const std::string& format,
                    const MImage* mask, MRect* rect, int countCutoff, bool highlightDefective,
                    bool highlightSaturated);

    /// Paints a vertical colour bar, strongest at the top, over the whole of `result`: an image of
    /// 32-bit integers. `ticks` becomes a map from rows to the round intensities that belong there.
    /// @throws MBadParameterException for another format or pixel type
    static void legend(MImage& result, std::map<int, double>& ticks, double foreground,
                       double background, double logForeground, const MColorTable& table,
                       const std::string& format);
};

}  // namespace morvend::imglib

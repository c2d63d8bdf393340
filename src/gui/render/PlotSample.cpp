// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/PlotSample.h"

#include "gui/render/MeshGrid.h"

#include <algorithm>

namespace render {

namespace {

/// The pixel at step `step` of `steps` along one axis of the visible part.
int pixelAt(double begin, double length, int step, int steps, int pixels)
{
    return std::clamp(static_cast<int>(begin + length * step / steps), 0, pixels - 1);
}

}  // namespace

morvend::imglib::MImage plotSample(const morvend::imglib::MImage& image, const QRectF& visible)
{
    morvend::imglib::MImage sample(Grid::width, Grid::height, image.type(), image.typeBits());
    morvend::datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        const T* pixels = image.pixels<T>();
        auto* to = static_cast<T*>(sample.data());
        for (int row = 0; row < Grid::height; ++row) {
            const int y = pixelAt(visible.y(), visible.height(), row, Grid::height, image.height());
            for (int col = 0; col < Grid::width; ++col) {
                const int x =
                    pixelAt(visible.x(), visible.width(), col, Grid::width, image.width());
                *to++ =
                    pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width()) +
                           static_cast<std::size_t>(x)];
            }
        }
    });
    return sample;
}

}  // namespace render

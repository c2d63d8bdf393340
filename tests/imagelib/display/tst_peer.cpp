// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The colour map against NumPy.
#include "imagelib/display/MColorMap.h"
#include "imagelib/display/MColorTable.h"
#include "imagelib/image/MImage.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>

namespace {

using namespace morvend::imglib;

struct PeerCase {
    const char* dtype;
    double foreground;
    double background;
    const MColorTable* table;
};

template <class T>
MImage counts()
{
    MImage image(500, 400, T(0));
    std::mt19937 random(17);
    for (std::size_t i = 0; i < image.size(); ++i)
        static_cast<T*>(image.data())[i] =
            static_cast<T>(std::pow(10.0, double(random() % 60000) / 1e4) - 20.0);
    return image;
}

std::string_view bytes(const void* data, std::size_t size)
{
    return {static_cast<const char*>(data), size};
}

TEST(ColorMapPeer, NumpyAgrees)
{
    const PeerCase cases[] = {{"<u4", 100, 0, MColorTable::hdr()},
                              {"<i4", 333, 7, MColorTable::hdr()->inverseTable()},
                              {"<u2", 20, 2, MColorTable::rainbow()},
                              {"<f4", 12.5, 0.25, MColorTable::hdr()},
                              {"<f8", 50, 1, MColorTable::heat()}};
    MImage mask(500, 400, 0U);
    for (std::size_t i = 0; i < mask.size(); i += 13)
        static_cast<unsigned*>(mask.data())[i] = static_cast<unsigned>(i % 34);
    for (const PeerCase& c : cases) {
        const std::string dtype = c.dtype;
        const MImage image = dtype == "<u4"   ? counts<unsigned>()
                             : dtype == "<i4" ? counts<int>()
                             : dtype == "<u2" ? counts<unsigned short>()
                             : dtype == "<f4" ? counts<float>()
                                              : counts<double>();
        MImage colors;
        MColorMap::rgb(colors, image, c.foreground, c.background, c.foreground * 1e4, *c.table,
                       "ARGB", &mask, nullptr, 60000, true, true);
        const tarvik::tests::TempFolder folder;
        folder.write("image", bytes(image.cdata(), image.dataSize()));
        folder.write("mask", bytes(mask.cdata(), mask.dataSize()));
        folder.write("linear", bytes(c.table->linData(), 4 * c.table->linDataSize()));
        folder.write("logarithmic", bytes(c.table->logData(), 4 * c.table->logDataSize()));
        folder.write("colors", bytes(colors.cdata(), colors.dataSize()));
        std::string command = TARVIK_PYTHON " " TARVIK_SOURCE_DIR
                                            "/tests/imagelib/display/peer_colormap.py " +
                              folder.path() + " '" + dtype + "'";
        for (const double value :
             {c.foreground, c.background, c.foreground * 1e4, 60000.0,
              double(c.table->saturatedColor()), double(c.table->defectiveColor())}) {
            char text[32];
            std::snprintf(text, sizeof text, " %.17g", value);
            command += text;
        }
        EXPECT_EQ(std::system(command.c_str()), 0) << dtype;
    }
}

}  // namespace

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Whole small files of every format, of one value each.
#pragma once

#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageWriter.h"
#include "tests/support/EdfFile.h"
#include "tests/support/TempFolder.h"

#include <fstream>
#include <string>
#include <vector>

namespace tarvik::tests {

inline constexpr int SmallSide = 120;

struct SmallFormat {
    const char* name;
    const char* extension;
};
inline constexpr SmallFormat SmallFormats[] = {
    {"CBF", ".cbf"}, {"TIFF", ".tif"}, {"EDF", ".edf"}, {"HDF5", ".h5"}};

/// The bytes of a file whose pixels all have one value.
inline std::string smallFile(const TempFolder& folder, const std::string& extension, int value)
{
    using namespace morvend::imglib;
    const MImage image(SmallSide, SmallSide, value);
    std::string path = folder / ("small" + extension);
    if (extension == ".h5") {
        MHdf5Writer writer(folder / "small_master.h5", 1, {}, MCompression::BITSHUFFLE_LZ4);
        writer.write(image);
        writer.flush();
        path = folder / "small_data_000001.h5";
    } else if (extension == ".edf") {
        writeEdf(folder, "small.edf", SmallSide,
                 std::vector<std::int32_t>(std::size_t(SmallSide) * SmallSide, value));
    } else {
        MImageWriter::write(image, path,
                            extension == ".cbf" ? MImageWriter::CBF : MImageWriter::TIFF);
    }
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace tarvik::tests

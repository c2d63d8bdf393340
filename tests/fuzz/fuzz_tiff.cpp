// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The bytes are a TIFF file.
#include "imagelib/io/formats/tiff/TiffReader.h"
#include "tests/fuzz/Reading.h"

using namespace tarvik::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    readAll(morvend::imglib::openTiff, inMemory(data, size));
    return 0;
}

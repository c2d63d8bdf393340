// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The bytes are an EDF file.
#include "imagelib/io/formats/edf/EdfReader.h"
#include "tests/fuzz/Reading.h"

using namespace tarvik::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    readAll(morvend::imglib::openEdf, inMemory(data, size));
    return 0;
}

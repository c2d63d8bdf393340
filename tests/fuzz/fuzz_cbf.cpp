// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The bytes are a CBF file, read from memory and by position: both give the same.
#include "imagelib/io/formats/cbf/CbfReader.h"
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Reading.h"

using namespace morvend::imglib;
using namespace tarvik::fuzz;

namespace {

std::unique_ptr<ImageFile> openChecked(std::shared_ptr<const ByteSource> source)
{
    return openCbf(std::move(source), {.checkMd5 = true});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string result = readAll(openCbf, inMemory(data, size));
    demand(result == readAll(openCbf, byPosition(data, size)),
           "a file gives the same images wherever its bytes lie");
    readAll(openChecked, byPosition(data, size));
    return 0;
}

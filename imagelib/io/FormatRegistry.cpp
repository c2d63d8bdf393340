// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Asks one reader after the other.
#include "imagelib/io/FormatRegistry.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/cbf/CbfReader.h"
#include "imagelib/io/formats/edf/EdfReader.h"
#include "imagelib/io/formats/hdf5/NexusReader.h"
#include "imagelib/io/formats/tiff/TiffReader.h"
#include "imagelib/io/process/RemoteFile.h"

#include <atomic>
#include <cstdio>
#include <mutex>

namespace morvend::imglib {

namespace {

std::atomic<bool> hdf5Apart = false;

/// The program that reads apart; empty where it is not wanted or not installed.
const std::string& readerProgram()
{
    static const std::string none;
    if (!hdf5Apart)
        return none;
    const std::string& program = ReaderProcess::programBeside();
    static std::once_flag warned;
    if (program.empty())
        std::call_once(warned, [] {
            std::fputs("WARNING: HDF5 files are read in this process: the program tarvik-reader is "
                       "not beside it\n",
                       stderr);
        });
    return program;
}

std::unique_ptr<ImageFile> openHdf5WhereChosen(std::shared_ptr<const ByteSource> source)
{
    const std::string& program = readerProgram();
    if (program.empty())
        return openHdf5(std::move(source));
    if (!isHdf5(*source))
        return nullptr;
    return std::make_unique<RemoteFile>(source->path(), "HDF5", ReaderProcess::Options{program});
}

}  // namespace

void FormatRegistry::readHdf5Apart(bool apart) { hdf5Apart = apart; }

std::span<const FormatRegistry::Format> FormatRegistry::formats()
{
    // EDF comes last: its mark, an opening brace, also begins other files.
    static constexpr Format All[] = {
        {"CBF", openCbf}, {"TIFF", openTiff}, {"HDF5", openHdf5WhereChosen}, {"EDF", openEdf}};
    return All;
}

std::unique_ptr<ImageFile> FormatRegistry::open(const std::string& path)
{
    const std::shared_ptr<const ByteSource> source = ByteSource::open(path);
    if (source->size() == 0)
        throw MUnknownFormatException("The file is empty: " + path);
    std::string names;
    for (const Format& format : formats()) {
        if (std::unique_ptr<ImageFile> file = format.open(source))
            return file;
        names += (names.empty() ? "" : ", ") + std::string(format.name);
    }
    throw MUnknownFormatException("Unknown format, none of " + names + ": " + path);
}

}  // namespace morvend::imglib

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Asks one reader after the other.
#include "imagelib/io/FormatRegistry.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/cbf/CbfReader.h"
#include "imagelib/io/formats/edf/EdfReader.h"
#include "imagelib/io/formats/hdf5/nexus/NexusReader.h"
#include "imagelib/io/formats/tiff/TiffReader.h"
#include "imagelib/io/process/RemoteFile.h"

#include <atomic>
#include <cstdio>
#include <mutex>
#include <utility>

namespace morvend::imglib {

namespace {

std::atomic<bool> hdf5OutOfProcess = false;

/// The program that reads out of process; empty if not wanted or not installed.
const std::string& readerProgram()
{
    static const std::string none;
    if (!hdf5OutOfProcess)
        return none;
    const std::string& program = ReaderProcess::installedProgram();
    static std::once_flag warned;
    if (program.empty())
        std::call_once(warned, [] {
            std::fputs("WARNING: HDF5 files are read in this process: the program tarvik-reader is "
                       "neither beside it nor in ../libexec/tarvik\n",
                       stderr);
        });
    return program;
}

using Source = std::shared_ptr<const ByteSource>;

std::unique_ptr<ImageFile> openHdf5WhereChosen(Source source, const std::string& dataset,
                                               const std::stop_token& stop)
{
    const std::string& program = readerProgram();
    if (program.empty())
        return openHdf5At(std::move(source), dataset);
    if (!isHdf5(*source))
        return nullptr;
    ReaderProcess::Options options{program};
    options.stop = stop;
    return std::make_unique<RemoteFile>(source->path(), "HDF5", std::move(options), dataset);
}

/// A reader in this process, which can't be stopped, for a format without data sets.
template <ImageFileOpener open>
std::unique_ptr<ImageFile> inPlace(Source source, const std::string& dataset,
                                   const std::stop_token& /*stop*/)
{
    const std::string path = source->path();
    std::unique_ptr<ImageFile> file = open(std::move(source));
    if (file && !dataset.empty())
        throw MBadParameterException(std::string(file->format()) + " files hold no data set " +
                                     dataset + ": " + path);
    return file;
}

/// A file that is compressed as a whole is refused by its signature.
std::uint64_t hdf5Need(std::string_view /*head*/) { return 0; }

struct Format {
    const char* name;
    std::unique_ptr<ImageFile> (*open)(Source source, const std::string& dataset,
                                       const std::stop_token& stop);
    std::uint64_t (*need)(std::string_view head);
};

/// In the order of asking: those with the surest marks first. EDF comes last: its
/// mark, an opening brace, also begins other files.
constexpr Format Formats[] = {{"CBF", inPlace<openCbf>, cbfNeed},
                              {"TIFF", inPlace<openTiff>, tiffNeed},
                              {"HDF5", openHdf5WhereChosen, hdf5Need},
                              {"EDF", inPlace<openEdf>, edfNeed}};

std::uint64_t imageNeed(std::string_view head)
{
    for (const Format& format : Formats)
        if (const std::uint64_t need = format.need(head))
            return need;
    return 0;
}

}  // namespace

void FormatRegistry::readHdf5OutOfProcess(bool outOfProcess) { hdf5OutOfProcess = outOfProcess; }

std::unique_ptr<ImageFile> FormatRegistry::open(const ImagePath& image, const std::stop_token& stop)
{
    const std::string& path = image.file;
    const Source source = ByteSource::open(path, imageNeed);
    if (source->size() == 0)
        throw MUnknownFormatException("The file is empty: " + path);
    std::string names;
    for (const Format& format : Formats) {
        if (std::unique_ptr<ImageFile> file = format.open(source, image.dataset, stop))
            return file;
        names += (names.empty() ? "" : ", ") + std::string(format.name);
    }
    throw MUnknownFormatException("Unknown format, none of " + names + ": " + path);
}

}  // namespace morvend::imglib

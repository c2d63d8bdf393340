// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Each frame is made once and goes to all formats.
#include "demo/DemoSet.h"

#include "demo/EdfWriter.h"
#include "demo/FrameMaker.h"
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/cbf/CbfWriter.h"
#include "imagelib/io/formats/hdf5/write/NexusWriter.h"
#include "imagelib/io/formats/tiff/TiffWriter.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>

namespace tarvik::demo {

using morvend::imglib::MImage;
using morvend::imglib::NexusWriter;

namespace {

std::string makeFolder(const std::string& directory, const SeriesPlan& plan, Format format)
{
    const std::string folder = directory + "/" + plan.size + "/" + folderOf(format);
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw morvend::MNoFileAccessException("Cannot make folder: " + error.message() + ": " +
                                              folder);
    return folder;
}

void writeFile(Format format, const MImage& image, const std::string& stem)
{
    if (format == Format::Cbf)
        morvend::imglib::writeCbf(image, stem + ".cbf");
    else if (format == Format::Tiff)
        morvend::imglib::writeTiff(image, stem + ".tif");
    else
        writeEdf(image, stem + ".edf");
}

}  // namespace

const char* folderOf(Format format)
{
    switch (format) {
    case Format::Cbf:
        return "cbf";
    case Format::Tiff:
        return "tiff";
    case Format::Edf:
        return "edf";
    case Format::Hdf5:
        break;
    }
    return "hdf5";
}

void writeSeries(const std::string& directory, const SeriesPlan& plan, std::uint64_t seed,
                 const std::function<void(int)>& progress)
{
    // More frames than this make several data files, also in a short demo series.
    constexpr std::size_t FramesOfDataFile = 10;
    const FrameMaker maker(detectorNamed(plan.size), plan.frames, seed);
    std::vector<std::string> folders;
    std::unique_ptr<NexusWriter> hdf5;
    for (const Format format : plan.formats) {
        folders.push_back(makeFolder(directory, plan, format));
        if (format == Format::Hdf5)
            hdf5 = std::make_unique<NexusWriter>(
                folders.back() + "/demo_master.h5", morvend::nexus::MBasicNeXusTree(),
                NexusWriter::Options{morvend::imglib::hdf5::Compression::BitshuffleLz4,
                                     FramesOfDataFile});
    }
    const bool flags = std::any_of(plan.formats.begin(), plan.formats.end(),
                                   [](Format format) { return format != Format::Hdf5; });
    for (int frame = 0; frame < plan.frames; ++frame) {
        const MImage image = maker.make(frame);
        const MImage flagged = flags ? maker.flagged(image) : MImage();
        char name[32];
        std::snprintf(name, sizeof name, "/demo_%05d", frame + 1);
        for (std::size_t i = 0; i < folders.size(); ++i) {
            if (plan.formats[i] == Format::Hdf5)
                hdf5->write(image);
            else
                writeFile(plan.formats[i], flagged, folders[i] + name);
        }
        progress(frame + 1);
    }
    if (hdf5)
        hdf5->flush();
}

}  // namespace tarvik::demo

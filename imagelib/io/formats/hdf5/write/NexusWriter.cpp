// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The master file and the sequence of data files.
#include "imagelib/io/formats/hdf5/write/NexusWriter.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/write/DataFile.h"
#include "imagelib/io/formats/hdf5/write/HeaderTree.h"
#include "imagelib/io/formats/hdf5/write/TreeOutput.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace morvend::imglib {

using namespace hdf5;

namespace {

const std::string Mask = "/entry/instrument/detector/pixel_mask";
const std::string Omega = "/entry/sample/goniometer/omega";
const std::string DependsOn = "/entry/sample/depends_on";
const std::string Specific = "/entry/instrument/detector/detectorSpecific/";

/// "/a/x_master.h5" and 2 give "/a/x_data_000002.h5".
std::string dataPath(const std::string& master, std::size_t number)
{
    const std::size_t name = master.rfind('/') + 1;
    const std::size_t dot = master.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot > name;
    std::string stem = master.substr(0, hasExtension ? dot : std::string::npos);
    if (const std::string suffix = "_master"; stem.ends_with(suffix))
        stem.resize(stem.size() - suffix.size());
    char text[32];
    std::snprintf(text, sizeof text, "_data_%06zu", number);
    return stem + text + (hasExtension ? master.substr(dot) : ".h5");
}

/// A whole number of the tree; 0 if it is absent or not a size.
int sizeInTree(const nexus::MBasicNeXusTree& tree, const std::string& path)
{
    const nexus::Node* node = tree.find(path);
    double value = 0;
    if (node && std::holds_alternative<std::int64_t>(node->value))
        value = static_cast<double>(std::get<std::int64_t>(node->value));
    else if (node && std::holds_alternative<double>(node->value))
        value = std::get<double>(node->value);
    return value >= 1 && value <= std::numeric_limits<int>::max() ? static_cast<int>(value) : 0;
}

/// Removes from a tree what the writer writes itself: image data, mask, angles of frames.
nexus::MBasicNeXusTree withoutImages(const nexus::MBasicNeXusTree& tree)
{
    nexus::MBasicNeXusTree rest;
    for (const auto& [path, node] : tree.nodes()) {
        const bool angles = path.starts_with(Omega) && path != Omega + "_range_average";
        if (path != "/entry/data" && !path.starts_with("/entry/data/") && !path.starts_with(Mask) &&
            !angles)
            rest.node(path) = node;
    }
    return rest;
}

std::string sizeText(const FrameLayout& layout)
{
    return std::to_string(layout.width) + " x " + std::to_string(layout.height) + " pixels of " +
           datatypes::typeStr(layout.type) + " " + std::to_string(layout.bits);
}

}  // namespace

NexusWriter::NexusWriter(const std::string& path, const nexus::MBasicNeXusTree& tree,
                         const Options& options)
    : _master(std::make_unique<PendingFile>(path, options.replaces))
    , _tree(withoutImages(tree))
    , _options(options)
{
    _options.framesPerFile = std::max<std::size_t>(1, options.framesPerFile);
}

NexusWriter::~NexusWriter()
{
    try {
        flush();
    } catch (...) {
        // A destructor can't report; the files stay as the last flush left them.
    }
}

FrameLayout NexusWriter::_layoutOf(const MImage& image) const
{
    if (image.empty())
        throw MBadParameterException("HDF5: an empty image can't be written: " + _master->path());
    return {image.width(), image.height(), image.type(), image.typeBits()};
}

void NexusWriter::write(const MImage& image)
{
    _append(_layoutOf(image), image.cdata(), image.optionalData());
}

void NexusWriter::writeAsIs(const MImage& image, std::span<const std::byte> packed)
{
    const FrameLayout layout = _layoutOf(image);
    const std::span plain(static_cast<const std::byte*>(image.cdata()), layout.bytes());
    _dataFor(layout, image.optionalData())
        .appendChunk(packed.empty() ? plain : packed, !packed.empty());
    _count(image.optionalData());
}

void NexusWriter::write(const image::MBasicImage<>& pixels)
{
    FrameLayout layout = _layout;
    if (_frames == 0) {
        layout.width = sizeInTree(_tree, Specific + "x_pixels_in_detector");
        layout.height = sizeInTree(_tree, Specific + "y_pixels_in_detector");
    }
    layout.type = pixels.type();
    layout.bits = pixels.typeBits();
    if (pixels.empty() || layout.bytes() != pixels.size() * (pixels.typeBits() / 8))
        throw MBadParameterException("HDF5: " + std::to_string(pixels.size()) +
                                     " pixels without geometry are no image of " +
                                     sizeText(layout) + ": " + _master->path());
    _append(layout, pixels.cdata(), {});
}

void NexusWriter::_append(const FrameLayout& layout, const void* pixels,
                          const MBasicImageOptionalData<>& header)
{
    _dataFor(layout, header).append({static_cast<const std::byte*>(pixels), layout.bytes()});
    _count(header);
}

/// The data file that has room for the next frame.
DataFile& NexusWriter::_dataFor(const FrameLayout& layout, const MBasicImageOptionalData<>& header)
{
    silenceErrors();
    if (_frames == 0)
        _begin(layout, header);
    else if (layout != _layout)
        throw MBadParameterException("HDF5: an image of " + sizeText(layout) +
                                     " does not fit into a series of " + sizeText(_layout) + ": " +
                                     _master->path());
    if (!_data || _data->frames() == _options.framesPerFile)
        _nextDataFile();
    return *_data;
}

void NexusWriter::_count(const MBasicImageOptionalData<>& header)
{
    ++_frames;
    const auto& angle = header.rotation_angle();
    _angles.push_back(angle ? exactDecimal(*angle) : std::numeric_limits<double>::quiet_NaN());
}

void NexusWriter::_begin(const FrameLayout& layout, const MBasicImageOptionalData<>& header)
{
    fileType(layout.type, layout.bits);
    // A write that failed leaves a master that can't be filled a second time.
    _master = std::make_unique<PendingFile>(_master->path(), _options.replaces);
    _data.reset();
    _dataFiles = 0;
    _layout = layout;
    nexus::MBasicNeXusTree tree = _tree;
    addHeader(tree, header);
    tree.node("/entry").attributes["default"] = std::string("data");
    tree.node("/entry/data").attributes["signal"] = std::string("data_000001");
    tree.node("/entry/instrument/detector/bit_depth_image").value =
        static_cast<std::int64_t>(layout.bits);
    tree.node(Specific + "x_pixels_in_detector").value = std::int64_t(layout.width);
    tree.node(Specific + "y_pixels_in_detector").value = std::int64_t(layout.height);
    TreeOutput(_master->id(), _master->path()).write(tree);
    if (const auto& mask = header.pixel_mask(); mask && !mask->empty())
        _writeMask(*mask);
}

void NexusWriter::_nextDataFile()
{
    if (_data)
        _data->publish();
    _data.reset();
    const std::string path = dataPath(_master->path(), _dataFiles + 1);
    auto data = std::make_unique<DataFile>(path, _layout, _options.compression, _frames + 1,
                                           _options.replaces);
    char link[48];
    std::snprintf(link, sizeof link, "/entry/data/data_%06zu", _dataFiles + 1);
    if (H5Lexists(_master->id(), link, H5P_DEFAULT) <= 0)
        check(H5Lcreate_external(path.substr(path.rfind('/') + 1).c_str(), "/entry/data/data",
                                 _master->id(), link, H5P_DEFAULT, H5P_DEFAULT),
              std::string("cannot link ") + link, _master->path());
    _data = std::move(data);
    ++_dataFiles;
}

void NexusWriter::_writeMask(const MImage& mask)
{
    const MImage bits = mask.asType<unsigned int>();
    const hsize_t extent[] = {static_cast<hsize_t>(bits.height()),
                              static_cast<hsize_t>(bits.width())};
    const Properties creation = untimedDataset(_master->path());
    // Filters that every HDF5 library has: masks are read once, by all programs.
    check(H5Pset_chunk(creation.id(), 2, extent), "cannot set the chunk size", _master->path());
    check(H5Pset_shuffle(creation.id()), "cannot set shuffle", _master->path());
    check(H5Pset_deflate(creation.id(), 1), "cannot set deflate", _master->path());
    const Dataspace space(H5Screate_simple(2, extent, nullptr), "cannot make a shape",
                          _master->path());
    const Dataset data(H5Dcreate2(_master->id(), Mask.c_str(), H5T_STD_U32LE, space.id(),
                                  H5P_DEFAULT, creation.id(), H5P_DEFAULT),
                       "cannot make " + Mask, _master->path());
    check(H5Dwrite(data.id(), H5T_NATIVE_UINT, H5S_ALL, H5S_ALL, H5P_DEFAULT, bits.cdata()),
          "cannot write " + Mask, _master->path());
}

void NexusWriter::_writeAngles()
{
    // If no frame has an angle there is no axis; if only some have one, the others stay NaN.
    const bool known =
        std::any_of(_angles.begin(), _angles.end(), [](double a) { return !std::isnan(a); });
    if (!known || _anglesWritten == _angles.size())
        return;
    nexus::MBasicNeXusTree tree;
    for (const std::string& path : {Omega, DependsOn}) {
        if (H5Lexists(_master->id(), path.c_str(), H5P_DEFAULT) > 0)
            check(H5Ldelete(_master->id(), path.c_str(), H5P_DEFAULT), "cannot replace " + path,
                  _master->path());
    }
    tree.setText(DependsOn, Omega);
    nexus::Node& omega = tree.node(Omega);
    omega.value = _angles;
    omega.attributes["units"] = std::string("deg");
    omega.attributes["transformation_type"] = std::string("rotation");
    omega.attributes["vector"] = std::vector<double>{-1, 0, 0};
    omega.attributes["depends_on"] = std::string(".");
    TreeOutput(_master->id(), _master->path()).write(tree);
    _anglesWritten = _angles.size();
}

void NexusWriter::flush()
{
    if (_frames == 0)
        return;
    silenceErrors();
    if (_data)  // null after the next file could not be made
        _data->publish();
    _writeAngles();
    _master->publish();
}

}  // namespace morvend::imglib

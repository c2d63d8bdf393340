// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames packed by our own codecs and written as whole chunks.
#include "imagelib/io/formats/hdf5/write/DataFile.h"

#include "imagelib/codec/Bitshuffle.h"
#include "imagelib/codec/ChunkDecoder.h"
#include "imagelib/codec/Deflate.h"
#include "imagelib/codec/Lz4.h"
#include "imagelib/codec/Shuffle.h"
#include "imagelib/image/Assert.h"
#include "imagelib/image/MException.h"
#include "imagelib/image/PixelTypes.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Filters.h"
#include "imagelib/io/formats/hdf5/write/TreeOutput.h"

namespace morvend::imglib::hdf5 {

namespace {

constexpr int DeflateLevel = 4;

void setFilter(hid_t creation, unsigned filter, std::initializer_list<unsigned> values,
               const std::string& path)
{
    check(H5Pset_filter(creation, static_cast<H5Z_filter_t>(filter), H5Z_FLAG_MANDATORY,
                        values.size(), values.begin()),
          "cannot set " + codec::filterText(filter), path);
}

void setFilters(hid_t creation, Compression compression, unsigned elementSize,
                const std::string& path)
{
    switch (compression) {
    case Compression::None:
        return;
    case Compression::Deflate:
        setFilter(creation, codec::ShuffleFilter, {elementSize}, path);
        return setFilter(creation, codec::DeflateFilter, {DeflateLevel}, path);
    case Compression::Lz4:
        return setFilter(creation, codec::Lz4Filter, {0}, path);
    case Compression::BitshuffleLz4:
        return setFilter(creation, codec::BitshuffleFilter,
                         {0, 3, elementSize, 0, static_cast<unsigned>(codec::BlockPacking::Lz4)},
                         path);
    }
}

std::vector<std::byte> pack(std::span<const std::byte> pixels, Compression compression,
                            std::size_t elementSize)
{
    if (compression == Compression::BitshuffleLz4)
        return codec::bitshuffleEncode(pixels, elementSize);
    if (compression == Compression::Lz4)
        return codec::lz4Encode(pixels);
    assert(compression == Compression::Deflate);
    std::vector<std::byte> shuffled(pixels.size());
    codec::byteShuffle(pixels, elementSize, shuffled);
    return codec::deflate(shuffled, DeflateLevel);
}

}  // namespace

hid_t fileType(datatypes::Type type, std::size_t bits)
{
    return datatypes::dispatchPixelType(type, bits, []<class T>() -> hid_t {
        if constexpr (std::is_floating_point_v<T>)
            return sizeof(T) == 4 ? H5T_NATIVE_FLOAT : H5T_NATIVE_DOUBLE;
        else if constexpr (std::is_unsigned_v<T>)
            return sizeof(T) == 1   ? H5T_NATIVE_UINT8
                   : sizeof(T) == 2 ? H5T_NATIVE_UINT16
                   : sizeof(T) == 4 ? H5T_NATIVE_UINT32
                                    : H5T_NATIVE_UINT64;
        else
            return sizeof(T) == 1   ? H5T_NATIVE_INT8
                   : sizeof(T) == 2 ? H5T_NATIVE_INT16
                   : sizeof(T) == 4 ? H5T_NATIVE_INT32
                                    : H5T_NATIVE_INT64;
    });
}

DataFile::DataFile(const std::string& path, const FrameLayout& layout, Compression compression,
                   std::size_t firstNumber, bool replaces)
    : _file(path, replaces)
    , _layout(layout)
    , _compression(compression)
    , _firstNumber(firstNumber)
{
    registerFilters();
    TreeOutput output(_file.id(), path);
    nexus::MBasicNeXusTree groups;
    groups.node("/entry").attributes["NX_class"] = std::string("NXentry");
    groups.node("/entry/data").attributes["NX_class"] = std::string("NXdata");
    groups.node("/entry/data").attributes["signal"] = std::string("data");
    output.write(groups);

    const auto height = static_cast<hsize_t>(layout.height);
    const auto width = static_cast<hsize_t>(layout.width);
    const hsize_t none[] = {0, height, width};
    const hsize_t most[] = {H5S_UNLIMITED, height, width};
    const hsize_t chunk[] = {1, height, width};
    const Properties creation = untimedDataset(path);
    check(H5Pset_chunk(creation.id(), 3, chunk), "cannot set the chunk size", path);
    check(H5Pset_fill_time(creation.id(), H5D_FILL_TIME_NEVER), "cannot set the fill time", path);
    setFilters(creation.id(), compression, static_cast<unsigned>(layout.bits / 8), path);
    const Dataspace space(H5Screate_simple(3, none, most), "cannot make a shape", path);
    _data = Dataset(H5Dcreate2(_file.id(), "/entry/data/data", fileType(layout.type, layout.bits),
                               space.id(), H5P_DEFAULT, creation.id(), H5P_DEFAULT),
                    "cannot make /entry/data/data", path);
    output.attribute(_data.id(), "image_nr_low", static_cast<std::int64_t>(firstNumber));
}

void DataFile::append(std::span<const std::byte> pixels)
{
    assert(pixels.size() == _layout.bytes());
    if (_compression == Compression::None)
        return appendChunk(pixels, true);
    appendChunk(pack(pixels, _compression, _layout.bits / 8), true);
}

void DataFile::appendChunk(std::span<const std::byte> bytes, bool filtered)
{
    // A bit of the mask leaves out a filter.
    const std::uint32_t left = filtered ? 0 : ~std::uint32_t(0);
    _file.reserve(bytes.size());
    const auto setFrames = [this](std::size_t frames) {
        const hsize_t extent[] = {frames, static_cast<hsize_t>(_layout.height),
                                  static_cast<hsize_t>(_layout.width)};
        return H5Dset_extent(_data.id(), extent);
    };
    check(setFrames(_frames + 1), "cannot add a frame", _file.path());
    const hsize_t at[] = {_frames, 0, 0};
    if (H5Dwrite_chunk(_data.id(), H5P_DEFAULT, left, at, bytes.size(), bytes.data()) < 0) {
        const std::string reason = takeErrorText();
        setFrames(_frames);  // as far as possible: the file must not claim frames that it lacks
        throw MRuntimeException("HDF5: cannot write image " +
                                std::to_string(_firstNumber + _frames) + " (" + reason +
                                "): " + _file.path());
    }
    ++_frames;
}

void DataFile::publish()
{
    TreeOutput(_file.id(), _file.path())
        .attribute(_data.id(), "image_nr_high",
                   static_cast<std::int64_t>(_firstNumber + _frames) - 1);
    _file.publish();
}

}  // namespace morvend::imglib::hdf5

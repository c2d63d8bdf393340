// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// MHdf5Writer over the writer of the HDF5 room.
#include "imagelib/io/MHdf5Writer.h"

#include "imagelib/io/formats/hdf5/write/NexusWriter.h"

namespace morvend::imglib {

namespace {

hdf5::Compression compressionOf(MCompression::FILTER filter)
{
    if (filter & MCompression::BITSHUFFLE_LZ4)
        return hdf5::Compression::BitshuffleLz4;
    if (filter & MCompression::LZ4)
        return hdf5::Compression::Lz4;
    if (filter & MCompression::DEFLATE)
        return hdf5::Compression::Deflate;
    return hdf5::Compression::None;
}

}  // namespace

class MHdf5Writer::Private : public NexusWriter {
public:
    using NexusWriter::NexusWriter;
};

MHdf5Writer::MHdf5Writer(const std::string& path, int, const nexus::MBasicNeXusTree& tree,
                         MCompression::FILTER filter, Existing existing)
    : _d(std::make_unique<Private>(
          path, tree,
          NexusWriter::Options{compressionOf(filter), 1000, existing == Existing::Replace}))
{}

MHdf5Writer::~MHdf5Writer() = default;

void MHdf5Writer::write(const MImage& image) { _d->write(image); }

void MHdf5Writer::write(const image::MBasicImage<>& pixels) { _d->write(pixels); }

void MHdf5Writer::writeAsIs(const MImage& image, std::span<const std::byte> packed)
{
    _d->writeAsIs(image, packed);
}

void MHdf5Writer::flush() { _d->flush(); }

}  // namespace morvend::imglib

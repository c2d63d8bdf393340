// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The test for the signature, and the series as an image file.
#include "imagelib/io/formats/hdf5/nexus/NexusReader.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/nexus/DatasetList.h"
#include "imagelib/io/formats/hdf5/nexus/NexusMaster.h"

#include <cstring>

namespace morvend::imglib {

namespace {

constexpr char Signature[] = "\x89HDF\r\n\x1a\n";
constexpr std::size_t SignatureSize = sizeof(Signature) - 1;
constexpr std::uint64_t FirstUserBlock = 512;

bool hasSignature(const ByteSource& source)
{
    char bytes[SignatureSize];
    const std::uint64_t size = source.size();
    for (std::uint64_t at = 0; at < size; at = at ? 2 * at : FirstUserBlock)
        if (source.readSome(at, bytes, SignatureSize) == SignatureSize &&
            std::memcmp(bytes, Signature, SignatureSize) == 0)
            return true;
    return false;
}

class NexusFile : public ImageFile {
public:
    NexusFile(const std::string& path, const std::string& dataset)
        : _master(std::make_unique<hdf5::NexusMaster>(path, dataset))
    {}
    const char* format() const override { return "HDF5"; }
    std::size_t frameCount() const override { return _master->frames(); }
    MImage frame(std::size_t position) const override { return _master->frame(position); }
    std::string framePath(std::size_t position) const override { return _master->path(position); }
    std::string mainPath() const override { return _master->source(); }
    std::string dataset() const override { return _master->dataset(); }
    std::size_t openedFrame() const override { return _master->openedFrame(); }
    int firstNumber() const override { return 1; }
    void update() override { _master->update(); }

private:
    // Reading opens files and counts blocks: the state behind the constant interface changes.
    const std::unique_ptr<hdf5::NexusMaster> _master;
};

}  // namespace

bool isHdf5(const ByteSource& source)
{
    if (!hasSignature(source))
        return false;
    if (!source.memory().empty())
        throw MRuntimeException("HDF5: the file is compressed as a whole and must be unpacked "
                                "before it can be read: " +
                                source.path());
    return true;
}

std::unique_ptr<ImageFile> openHdf5(std::shared_ptr<const ByteSource> source)
{
    return openHdf5At(std::move(source), {});
}

std::unique_ptr<ImageFile> openHdf5At(std::shared_ptr<const ByteSource> source,
                                      const std::string& dataset)
{
    return isHdf5(*source) ? std::make_unique<NexusFile>(source->path(), dataset) : nullptr;
}

std::vector<Hdf5Dataset> listHdf5(const std::string& path)
{
    if (!isHdf5(*ByteSource::open(path)))
        throw MUnknownFormatException("This is no HDF5 file, which alone has data sets: " + path);
    return hdf5::listDatasets(path);
}

}  // namespace morvend::imglib

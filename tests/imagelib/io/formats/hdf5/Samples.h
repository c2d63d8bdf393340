// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The files that make_samples.py makes, and the pixels that are in them.
#pragma once

#include "imagelib/io/formats/hdf5/nexus/NexusReader.h"
#include "tests/imagelib/io/FileCases.h"

#include <hdf5.h>

namespace tarvik::tests {

inline constexpr int SampleHeight = 23;
inline constexpr int SampleWidth = 37;

/// The pixel at (x, y) of frame `f`, of any one-frame or many-frame sample.
template <class T>
T sampleValue(std::size_t f, int y, int x)
{
    const long long steps = static_cast<long long>(f) * 37 + y * 11LL + x * 3LL;
    const long long value = steps % (sizeof(T) == 1 ? 101 : 30011);
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(static_cast<double>(value % 2001) * 0.25 - 100);
    else
        return static_cast<T>(value - (std::is_signed_v<T> ? 50 : 0));
}

/// Says which pixel differs; empty when the image is frame `f` of the samples.
template <class T = unsigned short>
std::string differenceFrom(const MImage& image, std::size_t f)
{
    MImage expected(SampleWidth, SampleHeight, datatypes::typeOf<T>, datatypes::bitsOf<T>);
    auto* pixels = static_cast<T*>(expected.data());
    for (int y = 0; y < SampleHeight; ++y)
        for (int x = 0; x < SampleWidth; ++x)
            *pixels++ = sampleValue<T>(f, y, x);
    return samePixels(image, expected) ? "" : shown(image) + "\ninstead of\n" + shown(expected);
}

/// The folder of all groups of files, which are made once for all tests.
inline const TempFolder& allSamples()
{
    static const TempFolder folder;
    [[maybe_unused]] static const bool made = [] {
        runPython("formats/hdf5/make_samples.py",
                  "'" + folder.path() + "' frames series layouts virtual headers");
        return true;
    }();
    return folder;
}

/// One group of the files: derive the fixture from this.
template <class Fixture>
class Samples : public testing::Test {
public:
    static void TearDownTestSuite()
    {
        // The leak checker has to leave the library out, which keeps what it allocates once.
        EXPECT_EQ(H5Fget_obj_count(hid_t(H5F_OBJ_ALL), H5F_OBJ_ALL), 0) << "handles stay open";
    }

    static std::string path(const std::string& name)
    {
        return allSamples() / (std::string(Fixture::Group) + "/" + name);
    }
    static std::unique_ptr<ImageFile> open(const std::string& name)
    {
        auto file = openHdf5(ByteSource::open(path(name)));
        if (!file)
            throw std::runtime_error("not taken for HDF5: " + name);
        return file;
    }
    /// Compares the frames backwards, so that nothing rests on the order.
    template <class T = unsigned short>
    static void expectFrames(const ImageFile& file, std::size_t frames)
    {
        ASSERT_EQ(file.frameCount(), frames);
        for (std::size_t f = frames; f-- > 0;)
            EXPECT_EQ(differenceFrom<T>(file.frame(f), f), "") << "frame " << f;
        EXPECT_EQ(file.frameCount(), frames);
    }
    template <class T = unsigned short>
    static void expectFrames(const std::string& name, std::size_t frames)
    {
        SCOPED_TRACE(name);
        expectFrames<T>(*open(name), frames);
    }
};

}  // namespace tarvik::tests

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The files that make_samples.py makes, and the pixels that are in them.
#pragma once

#include "imagelib/image/MException.h"
#include "imagelib/image/PixelTypes.h"
#include "imagelib/io/formats/hdf5/NexusReader.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace tarvik::tests {

inline constexpr int SampleHeight = 23;
inline constexpr int SampleWidth = 37;

/// One group of files, made once for all tests of a suite: derive the fixture from this.
template <class Fixture>
class Samples : public testing::Test {
public:
    static void SetUpTestSuite()
    {
        _folder = std::make_unique<TempFolder>();
        const std::string script =
            TARVIK_SOURCE_DIR "/tests/imagelib/io/formats/hdf5/make_samples.py";
        const std::string command = std::string("'") + TARVIK_PYTHON "' '" + script + "' " +
                                    Fixture::Group + " '" + _folder->path() + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }
    static void TearDownTestSuite()
    {
        _folder.reset();
        // The leak checker has to leave the library out, which keeps what it allocates once.
        EXPECT_EQ(H5Fget_obj_count(hid_t(H5F_OBJ_ALL), H5F_OBJ_ALL), 0) << "handles stay open";
    }

    static std::string path(const std::string& name) { return *_folder / name; }
    static std::unique_ptr<morvend::imglib::ImageFile> open(const std::string& name)
    {
        auto file = morvend::imglib::openHdf5(morvend::imglib::ByteSource::open(path(name)));
        if (!file)
            throw std::runtime_error("not taken for HDF5: " + name);
        return file;
    }

private:
    static inline std::unique_ptr<TempFolder> _folder;
};

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
template <class T>
std::string differenceFrom(const morvend::imglib::MImage& image, std::size_t f,
                           int height = SampleHeight)
{
    if (image.type() != morvend::datatypes::typeOf<T> ||
        image.typeBits() != morvend::datatypes::bitsOf<T>)
        return "type " + morvend::datatypes::typeStr(image.type()) + " of " +
               std::to_string(image.typeBits()) + " bits";
    if (image.width() != SampleWidth || image.height() != height)
        return "size " + std::to_string(image.width()) + " x " + std::to_string(image.height());
    const T* pixels = image.pixels<T>();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < SampleWidth; ++x, ++pixels)
            if (*pixels != sampleValue<T>(f, y, x))
                return "pixel (" + std::to_string(x) + ", " + std::to_string(y) + ") is " +
                       std::to_string(*pixels) + ", not " + std::to_string(sampleValue<T>(f, y, x));
    return {};
}

/// The message of what a call throws; empty when it throws nothing.
template <class Call>
std::string messageOf(Call&& call)
{
    try {
        call();
    } catch (const morvend::MException& error) {
        return error.what();
    }
    return {};
}

}  // namespace tarvik::tests

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The HDF5 library packs and unpacks by our codecs when its own pipeline is used.
#include "imagelib/io/formats/hdf5/Hdf5Filters.h"
#include "imagelib/io/formats/hdf5/Hdf5Handles.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace morvend::imglib::hdf5 {
namespace {

using tarvik::tests::TempFolder;

constexpr hsize_t Extent[] = {3, 50, 61};
constexpr hsize_t Chunk[] = {2, 30, 61};  // the last chunks reach beyond the data

struct Row {
    const char* name;
    H5Z_filter_t filter;
    std::vector<unsigned> values;
};

class LibraryPipeline : public testing::TestWithParam<Row> {
protected:
    void SetUp() override
    {
        quiet();
        registerFilters();
        registerFilters();  // harmless
        for (std::size_t i = 0; i < _values.size(); ++i)
            _values[i] =
                i % 71 == 0 ? 0xffffffffU : static_cast<std::uint32_t>(i * 2654435761U >> 27);
    }
    void write(const std::string& path)
    {
        const File file(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT), "create",
                        path);
        const Properties creation(H5Pcreate(H5P_DATASET_CREATE), "properties", path);
        check(H5Pset_chunk(creation.id(), 3, Chunk), "chunk", path);
        check(H5Pset_filter(creation.id(), GetParam().filter, H5Z_FLAG_MANDATORY,
                            GetParam().values.size(), GetParam().values.data()),
              "filter", path);
        const Dataspace space(H5Screate_simple(3, Extent, nullptr), "space", path);
        const Dataset data(H5Dcreate2(file.id(), "data", H5T_STD_U32LE, space.id(), H5P_DEFAULT,
                                      creation.id(), H5P_DEFAULT),
                           "data set", path);
        check(H5Dwrite(data.id(), H5T_NATIVE_UINT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, _values.data()),
              "write", path);
    }

    std::vector<std::uint32_t> _values = std::vector<std::uint32_t>(3 * 50 * 61);
};

INSTANTIATE_TEST_SUITE_P(Table, LibraryPipeline,
                         testing::Values(Row{"BitshuffleLz4", 32008, {0, 3, 4, 0, 2}},
                                         Row{"BitshuffleSmallBlocks", 32008, {0, 3, 4, 64, 2}},
                                         Row{"BitshuffleAlone", 32008, {0, 3, 4, 0, 0}},
                                         Row{"Lz4", 32004, {0}}),
                         [](const auto& row) { return row.param.name; });

TEST_P(LibraryPipeline, ReadsWhatItWroteAndSoDoesH5py)
{
    const TempFolder folder;
    const std::string path = folder / "a.h5";
    write(path);
    {
        const File file(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "open", path);
        const Dataset data(H5Dopen2(file.id(), "data", H5P_DEFAULT), "open", path);
        std::vector<std::uint32_t> read(_values.size());
        check(H5Dread(data.id(), H5T_NATIVE_UINT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, read.data()),
              "read", path);
        EXPECT_EQ(read, _values);
    }
    std::uint64_t sum = 0;
    for (const std::uint32_t value : _values)
        sum += value;
    const std::string command = TARVIK_PYTHON " -c \"import h5py; assert h5py.File('" + path +
                                "')['data'][()].astype('u8').sum() == " + std::to_string(sum) +
                                "\"";
    EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST_P(LibraryPipeline, FailsForADamagedChunk)
{
    if (GetParam().filter == 32008 && GetParam().values[4] == 0)
        GTEST_SKIP() << "bit planes alone have no head, and the library checks no length";
    const TempFolder folder;
    const std::string path = folder / "a.h5";
    write(path);
    const File file(H5Fopen(path.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), "open", path);
    const Dataset data(H5Dopen2(file.id(), "data", H5P_DEFAULT), "open", path);
    const hsize_t at[] = {0, 0, 0};
    for (const std::size_t bytes : {1U, 11U, 100U}) {
        const std::vector<std::byte> damaged(bytes, std::byte(0x7f));
        check(H5Dwrite_chunk(data.id(), H5P_DEFAULT, 0, at, damaged.size(), damaged.data()),
              "write", path);
        std::vector<std::uint32_t> read(_values.size());
        EXPECT_LT(H5Dread(data.id(), H5T_NATIVE_UINT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, read.data()),
                  0)
            << bytes;
    }
}

}  // namespace
}  // namespace morvend::imglib::hdf5

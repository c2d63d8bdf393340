// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The HDF5 library packs and unpacks by our codecs when its own pipeline is used.
#include "imagelib/io/formats/hdf5/Hdf5Filters.h"
#include "imagelib/io/formats/hdf5/Hdf5Handles.h"
#include "tests/imagelib/io/formats/hdf5/H5pyPeer.h"

namespace tarvik::tests {

using namespace hdf5;

TEST(LibraryPipeline, ReadsWhatItWroteAsH5pyDoesAndFailsForDamagedChunks)
{
    constexpr hsize_t Extent[] = {3, 50, 61};
    constexpr hsize_t Chunk[] = {2, 30, 61};  // the last chunks reach beyond the data
    constexpr hsize_t First[] = {0, 0, 0};
    const std::pair<H5Z_filter_t, std::vector<unsigned>> filters[] = {{32008, {0, 3, 4, 0, 2}},
                                                                      {32008, {0, 3, 4, 64, 2}},
                                                                      {32008, {0, 3, 4, 0, 0}},
                                                                      {32004, {0}}};
    std::vector<std::uint32_t> values(3 * 50 * 61);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = i % 71 == 0 ? 0xffffffffU : static_cast<std::uint32_t>(i * 2654435761U >> 27);
    std::vector<double> sums;
    for (const std::size_t image : {0u, 1u, 2u})
        sums.push_back(
            weightedSum(std::span<const std::uint32_t>(values).subspan(image * 3050, 3050)));
    quiet();
    registerFilters();
    registerFilters();  // harmless
    const TempFolder folder;
    const std::string path = folder / "a.h5";
    for (const auto& [filter, options] : filters) {
        SCOPED_TRACE(testing::PrintToString(options));
        {
            const File file(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT),
                            "create", path);
            const Properties creation(H5Pcreate(H5P_DATASET_CREATE), "properties", path);
            check(H5Pset_chunk(creation.id(), 3, Chunk), "chunk", path);
            check(H5Pset_filter(creation.id(), filter, H5Z_FLAG_MANDATORY, options.size(),
                                options.data()),
                  "filter", path);
            const Dataspace space(H5Screate_simple(3, Extent, nullptr), "space", path);
            const Dataset data(H5Dcreate2(file.id(), "data", H5T_STD_U32LE, space.id(), H5P_DEFAULT,
                                          creation.id(), H5P_DEFAULT),
                               "data set", path);
            check(H5Dwrite(data.id(), H5T_NATIVE_UINT32, H5S_ALL, H5S_ALL, H5P_DEFAULT,
                           values.data()),
                  "write", path);
        }
        EXPECT_EQ(readByH5py(path)["/data"]["sums"], nlohmann::json(sums));
        const File file(H5Fopen(path.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), "open", path);
        const Dataset data(H5Dopen2(file.id(), "data", H5P_DEFAULT), "open", path);
        std::vector<std::uint32_t> read(values.size());
        const auto readAll = [&] {
            return H5Dread(data.id(), H5T_NATIVE_UINT32, H5S_ALL, H5S_ALL, H5P_DEFAULT,
                           read.data());
        };
        EXPECT_GE(readAll(), 0);
        EXPECT_EQ(read, values);
        if (options.back() == 0 && filter == 32008)
            continue;  // bit planes alone have no head, and the library checks no length
        for (const std::size_t bytes : {1U, 11U, 100U}) {
            const std::vector<std::byte> damaged(bytes, std::byte(0x7f));
            check(H5Dwrite_chunk(data.id(), H5P_DEFAULT, 0, First, bytes, damaged.data()), "write",
                  path);
            EXPECT_LT(readAll(), 0) << bytes;
        }
    }
}

}  // namespace tarvik::tests

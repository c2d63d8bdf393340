// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What users read of a file that is cut or damaged: a sentence first, the library's own words after
// it.
#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"
#include "tests/imagelib/io/formats/hdf5/Samples.h"

namespace tarvik::tests {

namespace {

/// A file in the newest form, whose metadata carry checksums: one frame of 20 x 16 pixels.
std::string newestFile(const TempFolder& folder)
{
    const std::string path = folder / "newest.h5";
    const hdf5::Properties access(H5Pcreate(H5P_FILE_ACCESS));
    H5Pset_libver_bounds(access.id(), H5F_LIBVER_LATEST, H5F_LIBVER_LATEST);
    const hdf5::File file(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, access.id()));
    const hsize_t extents[] = {20, 16};
    const hdf5::Dataspace space(H5Screate_simple(2, extents, nullptr));
    const hdf5::Dataset set(H5Dcreate2(file.id(), "data", H5T_STD_U16LE, space.id(), H5P_DEFAULT,
                                       H5P_DEFAULT, H5P_DEFAULT));
    const std::vector<std::uint16_t> pixels(320, 7);
    H5Dwrite(set.id(), H5T_STD_U16LE, H5S_ALL, H5S_ALL, H5P_DEFAULT, pixels.data());
    return path;
}

}  // namespace

TEST(Hdf5Damage, IsToldInWordsBeforeTheLibrarysOwn)
{
    const TempFolder folder;
    const std::string whole = contentOf(newestFile(folder));
    const auto headOf = [&](std::size_t number) {
        std::size_t at = whole.find("OHDR");
        for (; number > 0; --number)
            at = whole.find("OHDR", at + 1);
        return at;
    };
    constexpr std::size_t ChecksumOfSuperblock = 44;
    constexpr std::size_t InObject = 8;  // after its version
    const std::string wrongChecksum =
        " can't be opened: the file is damaged there (HDF5: incorrect metadata checksum";
    const struct {
        std::size_t size;
        std::size_t damagedAt;  // none when it is beyond the size
        std::string text;
    } rows[] = {
        {600, 600,
         "the file is cut: it has 600 of " + std::to_string(whole.size()) +
             " bytes (HDF5: truncated file: eof = 600, "},
        // The library would read this one again and again, as long as it looks like SWMR.
        {whole.size(), ChecksumOfSuperblock, "the file" + wrongChecksum},
        {whole.size(), headOf(0) + InObject, "the root group" + wrongChecksum},
        {whole.size(), headOf(1) + InObject, "/data" + wrongChecksum},
    };
    for (const auto& row : rows) {
        std::string bytes = whole.substr(0, row.size);
        if (row.damagedAt < row.size)
            bytes[row.damagedAt] = static_cast<char>(bytes[row.damagedAt] ^ 1);
        const std::string path = folder.write("x.h5", bytes);
        const std::string failure = failureOf([&] { openHdf5At(ByteSource::open(path), "/data"); });
        EXPECT_THAT(failure, StartsWith("HDF5: " + row.text));
        EXPECT_THAT(failure, EndsWith("): " + path));
    }
}

}  // namespace tarvik::tests

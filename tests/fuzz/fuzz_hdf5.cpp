// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A script that makes HDF5 files, which are read as a series from the master and as a data file.
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/nexus/DatasetList.h"
#include "imagelib/io/formats/hdf5/nexus/NexusReader.h"
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Hdf5Script.h"
#include "tests/fuzz/Reading.h"
#include "tests/support/TempFolder.h"

#include <hdf5.h>

#include <filesystem>
#include <utility>
#include <vector>

using namespace morvend::imglib;
using namespace tarvik::fuzz;

namespace {

/// Files, groups, arrays, named types and attributes that are open.
ssize_t openObjects() { return H5Fget_obj_count(hid_t(H5F_OBJ_ALL), H5F_OBJ_ALL); }

/// Reads the first data sets of a file that are listed, each by its path.
void readListed(const std::string& path)
{
    constexpr std::size_t Most = 4;
    static std::string dataset;
    std::vector<Hdf5Dataset> list;
    try {
        list = listHdf5(path);
    } catch (const morvend::MException& error) {
        demand(std::string(error.what()).find(path) != std::string::npos,
               "a list that fails names the file");
    }
    for (std::size_t i = 0; i < list.size() && i < Most; ++i) {
        dataset = list[i].path == "/" ? "" : list[i].path;
        readAll(
            [](std::shared_ptr<const ByteSource> source) {
                return openHdf5At(std::move(source), dataset);
            },
            ByteSource::open(path));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const tarvik::tests::TempFolder folder;
    // Freed memory goes back to the sanitizer and not into the library's own lists.
    static const herr_t freed = H5set_free_list_limits(0, 0, 0, 0, 0, 0);
    static_cast<void>(freed);
    Input script(data, size);
    const unsigned choice = script.byte();
    const ssize_t before = openObjects();
    writeHdf5Files(folder.path(), script);
    demand(openObjects() == before, "a script closes what it opens");
    const std::string path = folder / Hdf5Files[choice % 4 == 3 ? 1 : 0];
    if (std::filesystem::exists(path)) {
        readAll(openHdf5, ByteSource::open(path));
        readListed(path);
    }
    demand(openObjects() == before, "a reader closes what it opens");
    for (const char* name : Hdf5Files)
        std::filesystem::remove(folder / name);
    std::filesystem::remove(folder / "raw");
    return 0;
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The table of callbacks of the driver. No exception may pass through the library, which is C.
#include "imagelib/io/formats/hdf5/library/SourceDriver.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/ByteSource.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>

namespace morvend::imglib::hdf5 {

namespace {

constexpr haddr_t MostAddress = static_cast<haddr_t>(std::numeric_limits<std::int64_t>::max());

/// The library knows only the base and hands out pointers to it.
struct OpenSource : H5FD_t {
    std::shared_ptr<const ByteSource> source;
    haddr_t endOfAddresses = 0;
    haddr_t endOfFile = 0;
};

OpenSource& of(H5FD_t* file) { return *static_cast<OpenSource*>(file); }
const OpenSource& of(const H5FD_t* file) { return *static_cast<const OpenSource*>(file); }

void report(const char* text)
{
    H5Epush2(H5E_DEFAULT, __FILE__, "SourceDriver", __LINE__, H5E_ERR_CLS, H5E_VFL, H5E_READERROR,
             "%s", text);
}

H5FD_t* open(const char* name, unsigned flags, hid_t, haddr_t)
{
    if (flags & (H5F_ACC_RDWR | H5F_ACC_TRUNC | H5F_ACC_CREAT))
        return nullptr;
    try {
        auto file = std::make_unique<OpenSource>();
        file->source = ByteSource::open(name);
        file->endOfFile = file->source->size();
        return file.release();
    } catch (const std::exception& error) {
        report(error.what());
        return nullptr;
    }
}

herr_t close(H5FD_t* file)
{
    delete &of(file);
    return 0;
}

int compare(const H5FD_t* left, const H5FD_t* right)
{
    return left == right ? 0 : std::less<>()(left, right) ? -1 : 1;
}

herr_t query(const H5FD_t*, unsigned long* flags)
{
    if (flags)
        *flags = H5FD_FEAT_ACCUMULATE_METADATA_READ | H5FD_FEAT_DATA_SIEVE |
                 H5FD_FEAT_SUPPORTS_SWMR_IO | H5FD_FEAT_DEFAULT_VFD_COMPATIBLE;
    return 0;
}

haddr_t endOfAddresses(const H5FD_t* file, H5FD_mem_t) { return of(file).endOfAddresses; }

herr_t setEndOfAddresses(H5FD_t* file, H5FD_mem_t, haddr_t address)
{
    of(file).endOfAddresses = address;
    return 0;
}

haddr_t endOfFile(const H5FD_t* file, H5FD_mem_t) { return of(file).endOfFile; }

herr_t read(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t address, std::size_t size, void* target)
{
    try {
        of(file).source->read(address, target, size, "file content");
        return 0;
    } catch (const std::exception& error) {
        report(error.what());
        return -1;
    }
}

herr_t refuseWriting(H5FD_t*, H5FD_mem_t, hid_t, haddr_t, std::size_t, const void*) { return -1; }

hid_t driver()
{
    static const hid_t id = [] {
        static H5FD_class_t table = {};
        table.name = "source";
        table.maxaddr = MostAddress;
        table.fc_degree = H5F_CLOSE_WEAK;
        table.open = open;
        table.close = close;
        table.cmp = compare;
        table.query = query;
        table.get_eoa = endOfAddresses;
        table.set_eoa = setEndOfAddresses;
        table.get_eof = endOfFile;
        table.read = read;
        table.write = refuseWriting;
        const H5FD_mem_t kinds[H5FD_MEM_NTYPES] = H5FD_FLMAP_DICHOTOMY;
        std::copy(std::begin(kinds), std::end(kinds), std::begin(table.fl_map));
        return H5FDregister(&table);
    }();
    return id;
}

}  // namespace

Properties sourceAccess()
{
    Properties access = unlockedAccess();
    check(H5Pset_driver(access.id(), driver(), nullptr), "the file driver can't be used", "");
    // The library's chunk cache takes memory of the size that the file claims for a chunk and reads
    // it as one of the size that it should have. Without the cache plain chunks go straight to us.
    check(H5Pset_cache(access.id(), 0, 0, 0, 0), "the chunk cache can't be switched off", "");
    // In SWMR mode the library reads metadata with a wrong checksum again, a hundred times, and
    // waits twice as long each time: a damaged file would block it for ever. So it waits 16 ms.
    constexpr unsigned MostReads = 24;
    check(H5Pset_metadata_read_attempts(access.id(), MostReads), "reads can't be limited", "");
    return access;
}

}  // namespace morvend::imglib::hdf5

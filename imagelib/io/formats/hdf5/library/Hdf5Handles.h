// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Owners of the identifiers of the HDF5 library, and its error stack as exceptions.
#pragma once

#include <hdf5.h>

#include <string>
#include <utility>

namespace morvend::imglib::hdf5 {

/// Stops the library from printing errors on standard error, for the calling thread. Every entry
/// into the reader calls it first: the switch belongs to the thread, not to the process.
void silenceErrors();

/// The innermost reason on the calling thread's error stack, empty if there isn't one. Clears it.
std::string takeErrorText();

/// A sentence with the library's reason after it, "<what> (HDF5: <reason>)". Where the reason means
/// that the file is cut or damaged, the sentence says so in words.
std::string withReason(const std::string& what, const std::string& reason);

/// Throws MRuntimeException "HDF5: <what> (HDF5: <reason of the library>): <path>".
[[noreturn]] void fail(const std::string& what, const std::string& path);

/// Owns one identifier and closes it with `Close`. A negative identifier means none.
/// Thread: any, one at a time; the library serialises its calls by a global lock.
template <herr_t (*Close)(hid_t)>
class Handle {
public:
    Handle() = default;
    explicit Handle(hid_t id)
        : _id(id)
    {}
    /// @throws MRuntimeException as fail() does when `id` is negative
    Handle(hid_t id, const std::string& what, const std::string& path)
        : _id(id)
    {
        if (id < 0)
            fail(what, path);
    }
    Handle(Handle&& other) noexcept
        : _id(std::exchange(other._id, H5I_INVALID_HID))
    {}
    Handle& operator=(Handle&& other) noexcept
    {
        std::swap(_id, other._id);
        return *this;
    }
    ~Handle()
    {
        if (_id >= 0)
            Close(_id);
    }

    hid_t id() const { return _id; }
    explicit operator bool() const { return _id >= 0; }

private:
    hid_t _id = H5I_INVALID_HID;
};

using File = Handle<H5Fclose>;
using Group = Handle<H5Gclose>;
using Object = Handle<H5Oclose>;
using Dataset = Handle<H5Dclose>;
using Dataspace = Handle<H5Sclose>;
using Datatype = Handle<H5Tclose>;
using Attribute = Handle<H5Aclose>;
using Properties = Handle<H5Pclose>;

/// Throws as fail() does when a call of the library has reported an error.
inline void check(herr_t status, const std::string& what, const std::string& path)
{
    if (status < 0)
        fail(what, path);
}

/// File access properties without file locks, so that a reader never shuts out a writer and files
/// on file systems without locks open.
Properties unlockedAccess();

}  // namespace morvend::imglib::hdf5

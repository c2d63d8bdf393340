// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The library's error stack as text and properties.
#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include "imagelib/image/MException.h"

namespace morvend::imglib::hdf5 {

namespace {

herr_t keepFirst(unsigned, const H5E_error2_t* error, void* target)
{
    auto& text = *static_cast<std::string*>(target);
    if (text.empty() && error->desc)
        text = error->desc;
    return 0;
}

}  // namespace

void silenceErrors()
{
    thread_local const bool done = H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr) >= 0;
    static_cast<void>(done);
}

std::string takeErrorText()
{
    std::string text;
    // Upward begins at the innermost call, whose description says what really went wrong.
    H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, keepFirst, &text);
    H5Eclear2(H5E_DEFAULT);
    return text;
}

void fail(const std::string& what, const std::string& path)
{
    const std::string reason = takeErrorText();
    throw MRuntimeException("HDF5: " + what + (reason.empty() ? "" : " (" + reason + ")") + ": " +
                            path);
}

Properties unlockedAccess()
{
    Properties access(H5Pcreate(H5P_FILE_ACCESS), "no memory for file access properties", "");
    H5Pset_file_locking(access.id(), false, true);
    return access;
}

}  // namespace morvend::imglib::hdf5

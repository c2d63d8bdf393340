// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The library's error stack as text and properties.
#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include "imagelib/image/MException.h"

#include <array>
#include <cinttypes>
#include <cstdio>
#include <string_view>

namespace morvend::imglib::hdf5 {

namespace {

herr_t keepFirst(unsigned, const H5E_error2_t* error, void* target)
{
    auto& text = *static_cast<std::string*>(target);
    if (text.empty() && error->desc)
        text = error->desc;
    return 0;
}

/// The library's reasons in plain words.
struct Meaning {
    std::string_view inReason;
    std::string_view inWords;
};
constexpr std::string_view Damaged = ": the file is damaged there";
constexpr std::string_view TooNew =
    ": the file is damaged there, or written by a newer version of HDF5";
constexpr std::array Meanings{
    Meaning{"checksum", Damaged},      Meaning{"signature", Damaged},
    Meaning{"exceeds EOA", Damaged},   Meaning{"overflow", Damaged},
    Meaning{"not aligned", Damaged},   Meaning{"unable to determine object type", Damaged},
    Meaning{"version number", TooNew},
};

/// "the file is cut: ..." for a file that ends before its last byte; else empty.
std::string cutFile(const std::string& reason)
{
    std::uint64_t size = 0, start = 0, end = 0;
    if (std::sscanf(reason.c_str(),
                    "truncated file: eof = %" SCNu64 ", sblock->base_addr = %" SCNu64
                    ", stored_eof = %" SCNu64,
                    &size, &start, &end) != 3)
        return {};
    return "the file is cut: it has " + std::to_string(start + size) + " of " +
           std::to_string(end) + " bytes";
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
    // Walking upward begins at the innermost call, whose description says what really went wrong.
    H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, keepFirst, &text);
    H5Eclear2(H5E_DEFAULT);
    return text;
}

std::string withReason(const std::string& what, const std::string& reason)
{
    if (reason.empty())
        return what;
    std::string sentence = cutFile(reason);
    if (sentence.empty()) {
        sentence = what;
        for (const auto& [inReason, inWords] : Meanings)
            if (reason.find(inReason) != std::string::npos) {
                sentence += inWords;
                break;
            }
    }
    return sentence + " (HDF5: " + reason + ")";
}

void fail(const std::string& what, const std::string& path)
{
    throw MRuntimeException("HDF5: " + withReason(what, takeErrorText()) + ": " + path);
}

Properties unlockedAccess()
{
    Properties access(H5Pcreate(H5P_FILE_ACCESS), "no memory for file access properties", "");
    H5Pset_file_locking(access.id(), false, true);
    return access;
}

}  // namespace morvend::imglib::hdf5

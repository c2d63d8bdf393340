// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What libtiff has to say about one open file.
#pragma once

#include <cstdarg>
#include <memory>
#include <string>

#include <tiffio.h>

namespace morvend::imglib::tiff {

/// Takes the errors of one libtiff handle, which would go to standard error otherwise; its warnings
/// are dropped. Must outlive the handle and stay where it is.
class TiffErrors {
public:
    using Options = std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)>;

    TiffErrors() = default;
    TiffErrors(const TiffErrors&) = delete;
    TiffErrors& operator=(const TiffErrors&) = delete;

    /// Options that make a handle report here.
    Options options();

    void clear() { _first.clear(); }
    /// Keeps the first text since clear(): the cause, of which later ones are consequences.
    void note(const std::string& text);
    /// " (text)", or nothing when the library was silent.
    std::string inBrackets() const { return _first.empty() ? "" : " (" + _first + ")"; }

private:
    [[gnu::format(printf, 4, 0)]] static int _error(TIFF*, void* self, const char* module,
                                                    const char* format, va_list values);

    std::string _first;
};

}  // namespace morvend::imglib::tiff

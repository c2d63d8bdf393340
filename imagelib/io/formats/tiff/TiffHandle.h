// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// libtiff's view of a byte source, and its messages about it.
#pragma once

#include "imagelib/io/formats/base/ByteSource.h"

#include <cstdarg>
#include <cstdint>
#include <memory>
#include <string>

#include <tiffio.h>

namespace morvend::imglib::tiff {

/// Takes the errors of one libtiff handle, which would go to standard error otherwise; its warnings
/// are dropped. Must outlive the handle and must not be moved.
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
    /// " (libtiff: text)", or nothing if the library was silent.
    std::string inBrackets() const { return _first.empty() ? "" : " (libtiff: " + _first + ")"; }

private:
    [[gnu::format(printf, 4, 0)]] static int _error(TIFF*, void* self, const char* module,
                                                    const char* format, va_list values);

    std::string _first;
};

/// A TIFF file opened for reading, by positioned reads and never mapped.
/// Thread: one at a time.
class TiffHandle {
public:
    /// @throws MRuntimeException when libtiff refuses the file's first bytes
    explicit TiffHandle(std::shared_ptr<const ByteSource> source);
    TiffHandle(const TiffHandle&) = delete;
    TiffHandle& operator=(const TiffHandle&) = delete;

    /// Reads the directory at a file offset; later calls to libtiff refer to its page.
    /// @throws MRuntimeException with libtiff's reason
    void select(std::uint64_t directory);

    TIFF* get() const { return _tiff.get(); }
    const ByteSource& source() const { return *_source; }

    /// Forgets libtiff's last message. Call it before a step whose failure is reported.
    void clearErrors() { _errors.clear(); }
    /// @throws MRuntimeException "TIFF: <what> (libtiff: <its reason>): <path>"
    [[noreturn]] void fail(const std::string& what) const;

private:
    static tmsize_t _read(thandle_t self, void* target, tmsize_t count);
    static tmsize_t _write(thandle_t self, void* bytes, tmsize_t count);
    static toff_t _seek(thandle_t self, toff_t offset, int whence);
    static int _close(thandle_t self);
    static toff_t _size(thandle_t self);

    std::shared_ptr<const ByteSource> _source;
    std::uint64_t _position = 0;
    TiffErrors _errors;
    std::unique_ptr<TIFF, decltype(&TIFFClose)> _tiff;
};

}  // namespace morvend::imglib::tiff

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// libtiff's view of a byte source.
#pragma once

#include "imagelib/io/formats/base/ByteSource.h"
#include "imagelib/io/formats/tiff/TiffErrors.h"

#include <cstdint>
#include <memory>
#include <string>

namespace morvend::imglib::tiff {

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

    /// Forgets libtiff's last complaint. To be called before a step whose failure is reported.
    void clearErrors() { _errors.clear(); }
    /// @throws MRuntimeException "TIFF: <what> (<libtiff's reason>): <path>"
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

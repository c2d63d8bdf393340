// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The callbacks of libtiff. No exception may pass through its C code: failures of the source are
// noted and reported as a failed read.
#include "imagelib/io/formats/tiff/TiffHandle.h"

#include "imagelib/image/MException.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <string_view>

namespace morvend::imglib::tiff {

namespace {

int dropWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

/// libtiff spreads some of its messages over several lines.
std::string inOneLine(std::string_view text)
{
    std::string line;
    for (const char c : text) {
        const bool blank = static_cast<unsigned char>(c) <= ' ' || c == '\x7f';
        if (!blank)
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    return line;
}

}  // namespace

TiffErrors::Options TiffErrors::options()
{
    Options options(TIFFOpenOptionsAlloc(), &TIFFOpenOptionsFree);
    if (!options)
        throw MRuntimeException("TIFF: not enough memory to open a file");
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), &TiffErrors::_error, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), &dropWarning, nullptr);
    return options;
}

void TiffErrors::note(const std::string& text)
{
    if (_first.empty())
        _first = text;
}

int TiffErrors::_error(TIFF*, void* self, const char*, const char* format, va_list values)
{
    char text[512];
    std::vsnprintf(text, sizeof text, format, values);
    static_cast<TiffErrors*>(self)->note(inOneLine(text));
    return 1;  // no other handler is asked
}

TiffHandle::TiffHandle(std::shared_ptr<const ByteSource> source)
    : _source(std::move(source))
    , _tiff(nullptr, &TIFFClose)
{
    const TiffErrors::Options options = _errors.options();
    // One strip or one table of offsets can be as large as the file, but nothing needs to be much
    // larger, whatever the file says.
    constexpr std::uint64_t SmallestHead = 8;
    constexpr std::uint64_t EnoughForDecoders = std::uint64_t(1) << 30;
    TIFFOpenOptionsSetMaxSingleMemAlloc(
        options.get(), static_cast<tmsize_t>(std::max(EnoughForDecoders, 2 * _source->size())));
    // Read, header only, no mapping, strips as in the file.
    _tiff.reset(TIFFClientOpenExt(_source->path().c_str(), "rhmc", this, &_read, &_write, &_seek,
                                  &_close, &_size, nullptr, nullptr, options.get()));
    if (!_tiff)
        fail(_source->size() < SmallestHead
                 ? "the file is cut: it ends after " + std::to_string(_source->size()) + " bytes"
                 : "the file cannot be opened");
}

void TiffHandle::select(std::uint64_t directory)
{
    clearErrors();
    if (!TIFFSetSubDirectory(_tiff.get(), directory))
        fail("the directory at byte " + std::to_string(directory) + " is damaged");
}

void TiffHandle::fail(const std::string& what) const
{
    throw MRuntimeException("TIFF: " + what + _errors.inBrackets() + ": " + _source->path());
}

tmsize_t TiffHandle::_read(thandle_t self, void* target, tmsize_t count)
{
    auto& handle = *static_cast<TiffHandle*>(self);
    try {
        const std::size_t got =
            handle._source->readSome(handle._position, target, static_cast<std::size_t>(count));
        handle._position += got;
        return static_cast<tmsize_t>(got);
    } catch (const std::exception& exception) {
        handle._errors.note(exception.what());
        return -1;
    }
}

tmsize_t TiffHandle::_write(thandle_t, void*, tmsize_t) { return -1; }

toff_t TiffHandle::_seek(thandle_t self, toff_t offset, int whence)
{
    auto& handle = *static_cast<TiffHandle*>(self);
    std::uint64_t base = 0;
    if (whence == SEEK_CUR)
        base = handle._position;
    else if (whence == SEEK_END)
        base = _size(self);
    // An offset beyond any file is kept: the read that follows finds nothing there.
    constexpr std::uint64_t Last = std::numeric_limits<std::int64_t>::max();
    handle._position = std::min(base + offset, Last);
    return handle._position;
}

int TiffHandle::_close(thandle_t) { return 0; }

toff_t TiffHandle::_size(thandle_t self)
{
    auto& handle = *static_cast<TiffHandle*>(self);
    try {
        return handle._source->size();
    } catch (const std::exception& exception) {
        handle._errors.note(exception.what());
        return 0;
    }
}

}  // namespace morvend::imglib::tiff

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The handlers that libtiff calls.
#include "imagelib/io/formats/tiff/TiffErrors.h"

#include "imagelib/image/MException.h"

#include <cstdio>
#include <string_view>

namespace morvend::imglib::tiff {

namespace {

int dropWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

/// libtiff lays some of its messages out in several lines.
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

}  // namespace morvend::imglib::tiff

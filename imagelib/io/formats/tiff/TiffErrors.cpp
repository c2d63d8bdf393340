// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The handlers that libtiff calls.
#include "imagelib/io/formats/tiff/TiffErrors.h"

#include "imagelib/image/MException.h"

#include <cstdio>

namespace morvend::imglib::tiff {

namespace {

int dropWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

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
    static_cast<TiffErrors*>(self)->note(text);
    return 1;  // no other handler is asked
}

}  // namespace morvend::imglib::tiff

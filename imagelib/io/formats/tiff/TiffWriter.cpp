// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One page, one strip.
#include "imagelib/io/formats/tiff/TiffWriter.h"

#include "imagelib/io/formats/base/AtomicFile.h"
#include "imagelib/io/formats/base/HeaderLines.h"
#include "imagelib/io/formats/tiff/TiffHandle.h"

#include <cstdint>
#include <cstdio>
#include <limits>

namespace morvend::imglib {

namespace {

std::uint16_t sampleFormat(datatypes::Type type)
{
    switch (type) {
    case datatypes::FLOAT:
        return SAMPLEFORMAT_IEEEFP;
    case datatypes::INT:
        return SAMPLEFORMAT_INT;
    case datatypes::CHAR:
        return std::numeric_limits<char>::is_signed ? SAMPLEFORMAT_INT : SAMPLEFORMAT_UINT;
    default:
        return SAMPLEFORMAT_UINT;
    }
}

/// The date in the form that TIFF asks for, empty if it is not understood.
std::string tiffDate(const std::string& date)
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    double second = 0;
    if (std::sscanf(date.c_str(), "%4d%*1[-/:]%2d%*1[-/:]%2d%*1[ T]%2d:%2d:%lf", &year, &month,
                    &day, &hour, &minute, &second) != 6 ||
        !(second >= 0 && second < 61) || year < 0)
        return {};
    char text[32];
    std::snprintf(text, sizeof text, "%04d:%02d:%02d %02d:%02d:%02d", year, month, day, hour,
                  minute, static_cast<int>(second));
    return text;
}

class PageWriter {
public:
    PageWriter(AtomicFile& file, bool big)
        : _path(file.path())
        , _tiff(TIFFFdOpenExt(file.descriptor(), file.path().c_str(), big ? "w8" : "w",
                              _errors.options().get()),
                &TIFFCleanup)
    {
        _check(_tiff != nullptr);
    }

    void write(const MImage& image)
    {
        _setNumber(TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(image.width()));
        _setNumber(TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(image.height()));
        _setNumber(TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(image.height()));
        _setNumber(TIFFTAG_BITSPERSAMPLE, static_cast<std::uint32_t>(image.typeBits()));
        _setNumber(TIFFTAG_SAMPLEFORMAT, sampleFormat(image.type()));
        _setNumber(TIFFTAG_SAMPLESPERPIXEL, 1);
        _setNumber(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        _setNumber(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        _setNumber(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
        const MBasicImageOptionalData<>& header = image.optionalData();
        _setText(TIFFTAG_IMAGEDESCRIPTION, mergedHeaderLines(header));
        _setText(TIFFTAG_MODEL, header.description().value_or(""));
        _setText(TIFFTAG_DATETIME, tiffDate(header.data_collection_date().value_or("")));
        const auto bytes = static_cast<tmsize_t>(image.dataSize());
        // libtiff does not write to the pixels, its interface only lacks the const.
        _check(TIFFWriteRawStrip(_tiff.get(), 0, const_cast<void*>(image.cdata()), bytes) == bytes);
        _check(TIFFWriteDirectory(_tiff.get()) != 0);
        _check(TIFFFlush(_tiff.get()) != 0);
    }

private:
    void _setNumber(std::uint32_t tag, std::uint32_t value)
    {
        _check(TIFFSetField(_tiff.get(), tag, value) != 0);
    }
    void _setText(std::uint32_t tag, const std::string& text)
    {
        if (!text.empty())
            _check(TIFFSetField(_tiff.get(), tag, text.c_str()) != 0);
    }
    void _check(bool done) const
    {
        if (!done)
            throw MRuntimeException("TIFF: cannot write the file" + _errors.inBrackets() + ": " +
                                    _path);
    }

    const std::string _path;
    tiff::TiffErrors _errors;
    // TIFFCleanup frees without closing the file, which belongs to the caller.
    std::unique_ptr<TIFF, decltype(&TIFFCleanup)> _tiff;
};

}  // namespace

void writeTiff(const MImage& image, const std::string& path)
{
    if (image.empty())
        throw MBadParameterException("TIFF: an empty image can't be written: " + path);
    // Offsets of 32 bits must reach beyond the pixels to the directory and its texts.
    constexpr std::size_t LargestPlain = 0xffffffff - (std::size_t(64) << 20);
    AtomicFile file(path);
    PageWriter(file, image.dataSize() > LargestPlain).write(image);
    file.commit();
}

}  // namespace morvend::imglib

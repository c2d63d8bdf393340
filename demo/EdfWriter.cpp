// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One header block of 512-byte units, then the pixels.
#include "demo/EdfWriter.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/AtomicFile.h"

#include <bit>
#include <charconv>

namespace tarvik::demo {

using namespace morvend;
using namespace morvend::imglib;

namespace {

static_assert(std::endian::native == std::endian::little);

class Header {
public:
    void add(const std::string& key, const std::string& value)
    {
        _text += key + " = " + value + " ;\n";
    }
    void add(const std::string& key, const boost::optional<float>& value, double factor = 1)
    {
        if (!value)
            return;
        char digits[32];
        // Through float again: the shortest digits of 1e-10f are not those of 1 * 1e-10.
        const auto scaled = static_cast<float>(double(*value) * factor);
        add(key, std::string(digits, std::to_chars(digits, digits + sizeof digits, scaled).ptr));
    }
    void add(const std::string& key, const boost::optional<std::string>& value)
    {
        if (value)
            add(key, *value);
    }
    /// The block with its end mark, filled up with blanks.
    std::string block() const
    {
        std::string block = "{\n" + _text;
        const std::size_t size = (block.size() + 2 + 511) / 512 * 512;
        block.resize(size - 2, ' ');
        return block + "}\n";
    }

private:
    std::string _text;
};

}  // namespace

void writeEdf(const MImage& image, const std::string& path)
{
    if (image.type() != datatypes::INT || image.typeBits() != 32)
        throw MBadParameterException("EDF: only 32-bit signed integers are written: " + path);
    const auto& data = image.optionalData();
    Header header;
    header.add("HeaderID", "EH:000001:000000:000000");
    header.add("Image", "1");
    header.add("ByteOrder", "LowByteFirst");
    header.add("DataType", "SignedInteger");
    header.add("Dim_1", std::to_string(image.width()));
    header.add("Dim_2", std::to_string(image.height()));
    header.add("Size", std::to_string(image.dataSize()));
    header.add("Date", data.data_collection_date());
    header.add("ExposureTime", data.count_time());
    header.add("Center_1", data.beam_center_x());
    header.add("Center_2", data.beam_center_y());
    header.add("PSize_1", data.x_pixel_size());
    header.add("PSize_2", data.y_pixel_size());
    header.add("SampleDistance", data.detector_distance());
    header.add("WaveLength", data.wavelength(), 1e-10);
    AtomicFile file(path);
    const std::string block = header.block();
    file.write(block.data(), block.size());
    file.write(image.cdata(), image.dataSize());
    file.commit();
}

}  // namespace tarvik::demo

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A reader's whole interface, called in the order in which a view calls it.
#include "tests/fuzz/Reading.h"

#include "imagelib/image/MException.h"
#include "tests/fuzz/Demand.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <string_view>
#include <vector>

namespace tarvik::fuzz {

using namespace morvend;
using imglib::ByteSource;
using imglib::ImageFile;
using imglib::MImage;

namespace {

std::vector<std::byte> copyOf(const std::uint8_t* data, std::size_t size)
{
    const auto* begin = reinterpret_cast<const std::byte*>(data);
    return {begin, begin + size};
}

/// Hides that the bytes lie in memory, as those of an ordinary file don't.
class PositionedSource : public ByteSource {
public:
    explicit PositionedSource(std::vector<std::byte> bytes)
        : ByteSource(FilePath)
        , _bytes(std::move(bytes))
    {}
    std::uint64_t size() const override { return _bytes.size(); }
    std::size_t readSome(std::uint64_t offset, void* target, std::size_t count) const override
    {
        const std::uint64_t left = _bytes.size() - std::min<std::uint64_t>(offset, _bytes.size());
        const auto got = static_cast<std::size_t>(std::min<std::uint64_t>(count, left));
        if (got > 0)
            std::memcpy(target, _bytes.data() + offset, got);
        return got;
    }

private:
    std::vector<std::byte> _bytes;
};

bool isControl(char c) { return static_cast<unsigned char>(c) < ' '; }

std::string describe(const MImage& image)
{
    const std::size_t pixels =
        static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height());
    demand(image.width() > 0 && image.height() > 0, "an image has pixels");
    demand(image.dataSize() == pixels * (image.typeBits() / 8), "an image has all its pixels");
    const std::string_view bytes(static_cast<const char*>(image.cdata()), image.dataSize());
    const auto& header = image.optionalData();
    const std::string text = header.rawHeader() ? *header.rawHeader() : std::string();
    return std::to_string(image.width()) + 'x' + std::to_string(image.height()) + ' ' +
           std::to_string(image.typeBits()) + ' ' +
           std::to_string(std::hash<std::string_view>()(bytes)) + ' ' +
           std::to_string(std::hash<std::string>()(text)) + '\n';
}

/// What `step` gives, or the text of its failure, which names a file of the folder.
template <class Step>
std::string outcome(const std::string& folder, Step&& step)
{
    try {
        return step();
    } catch (const MException& error) {
        const std::string text = error.what();
        demand(text.find(folder) != text.npos, "a failure names its file: " + text);
        demand(text.size() < 1000 && std::ranges::none_of(text, isControl),
               "a failure can be shown: " + text);
        return text + '\n';
    }
}

std::string readFrames(ImageFile& file, const std::string& folder)
{
    constexpr std::size_t MostFrames = 6;
    std::size_t count = 0;
    std::string result = outcome(folder, [&] {
        count = file.frameCount();
        return std::to_string(count) + " frames\n";
    });
    for (std::size_t i = 0; i < count; i = i + 1 < MostFrames ? i + 1 : std::max(i + 1, count - 1))
        result += outcome(folder, [&] { return describe(file.frame(i)); });
    result += outcome(folder, [&] {
        file.update();
        demand(file.frameCount() == count, "a file that stays has as many frames as before");
        return std::string();
    });
    outcome(folder, [&] {
        file.frame(count);
        demand(false, "there is no frame behind the last one");
        return std::string();
    });
    return result;
}

}  // namespace

std::shared_ptr<const ByteSource> inMemory(const std::uint8_t* data, std::size_t size)
{
    return ByteSource::fromMemory(FilePath, copyOf(data, size));
}

std::shared_ptr<const ByteSource> byPosition(const std::uint8_t* data, std::size_t size)
{
    return std::make_shared<const PositionedSource>(copyOf(data, size));
}

std::string readAll(imglib::ImageFileOpener open, const std::shared_ptr<const ByteSource>& source)
{
    const std::string folder = source->path().substr(0, source->path().rfind('/') + 1);
    std::unique_ptr<ImageFile> file;
    const std::string failure = outcome(folder, [&] {
        file = open(source);
        return std::string();
    });
    return file ? readFrames(*file, folder) : failure;
}

}  // namespace tarvik::fuzz

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What tests of image files share: bytes, failures, images and headers as text, tables of cases.
#pragma once

#include "imagelib/image/MBasicImageOptionalData.h"
#include "imagelib/image/MException.h"
#include "imagelib/image/PixelTypes.h"
#include "imagelib/io/formats/base/ImageFile.h"
#include "tests/support/SourcePath.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <charconv>
#include <sstream>

namespace tarvik::tests {

using namespace morvend;
using namespace morvend::imglib;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using Header = MBasicImageOptionalData<>;

inline std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What a call throws; "no failure" when it throws nothing.
template <class Call>
std::string failureOf(Call&& call)
{
    try {
        call();
    } catch (const MException& error) {
        return error.what();
    }
    return "no failure";
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool Sanitized = true;
#else
inline constexpr bool Sanitized = false;
#endif

/// Expects what is done in its life to touch little memory: what is unpacked, read or kept, the
/// system counts alike on every machine. What never ends is the runner's to stop.
class Bounds {
public:
    explicit Bounds(std::size_t mebibytes)
        : _most(mebibytes << 20)
    {
        std::ofstream("/proc/self/clear_refs") << 5;  // sets the peak back
    }
    Bounds(const Bounds&) = delete;
    Bounds& operator=(const Bounds&) = delete;
    ~Bounds()
    {
        if (!Sanitized) {
            EXPECT_LT(statusBytes("VmHWM:"), _memory + _most);
        }
    }

private:
    static std::size_t statusBytes(const char* key)
    {
        const std::string text = contentOf("/proc/self/status");
        return std::stoul(text.substr(text.find(key) + 6)) << 10;
    }

    const std::size_t _most;
    const std::size_t _memory = statusBytes("VmRSS:");
};

/// Opens bytes as the file /data/x; null when the format does not know them.
template <class Open>
std::unique_ptr<ImageFile> openBytes(Open&& open, const std::string& bytes)
{
    const auto span = std::as_bytes(std::span(bytes));
    return open(ByteSource::fromMemory("/data/x", {span.begin(), span.end()}));
}

/// The failure of opening bytes and reading the first frames, of which there may be billions.
template <class Open>
std::string readingFailure(Open&& open, const std::string& bytes)
{
    return failureOf([&] {
        const auto file = openBytes(open, bytes);
        if (!file)
            throw MUnknownFormatException("not mine");
        for (std::size_t i = 0; i < std::min<std::size_t>(8, file->frameCount()); ++i)
            file->frame(i);
    });
}

inline std::string pixelBytes(const MImage& image)
{
    return {static_cast<const char*>(image.cdata()), image.dataSize()};
}

/// Pixel type, size and values, as "UINT16 2x1: 7 65535".
inline std::string shown(const MImage& image)
{
    std::ostringstream out;
    out << datatypes::typeStr(image.type()) << image.typeBits() << ' ' << image.width() << 'x'
        << image.height() << ':';
    datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        for (std::size_t i = 0; i < image.size(); ++i)
            out << ' ' << +image.pixels<T>()[i];
    });
    return out.str();
}

/// All set fields but the raw header and the mask, as "wavelength=0.97;"; floats to the last bit.
inline std::string shown(const Header& header)
{
    std::ostringstream out;
    header.forEachField([&]<class T>(const char* name, const boost::optional<T>& value) {
        if (!value || std::string(name) == "rawHeader")
            return;
        if constexpr (std::is_same_v<T, float>) {
            char text[32];
            out << name << '=' << std::string_view(text, std::to_chars(text, text + 32, *value).ptr)
                << ';';
        } else if constexpr (!std::is_same_v<T, MImage>) {
            out << name << '=' << *value << ';';
        }
    });
    return out.str();
}

/// The lines of a table as cells, which are parted by bars; \n, \r and \0 stand for a character, a
/// backslash at the end of a line joins the next one, before any other character it is that one.
inline std::vector<std::vector<std::string>> rowsOf(std::string_view table)
{
    std::vector<std::vector<std::string>> rows(1);
    std::string cell;
    const auto endCell = [&] {
        const std::size_t begin = std::min(cell.find_first_not_of(' '), cell.size());
        rows.back().push_back(cell.substr(begin, cell.find_last_not_of(' ') + 1 - begin));
        cell.clear();
    };
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i] == '\\') {
            const char next = table[++i];
            if (next != '\n')
                cell += next == 'n' ? '\n' : next == 'r' ? '\r' : next == '0' ? '\0' : next;
        } else if (table[i] == '|') {
            endCell();
        } else if (table[i] != '\n') {
            cell += table[i];
        } else if (!rows.back().empty() || !cell.empty()) {
            endCell();
            rows.emplace_back();
        }
    }
    rows.pop_back();
    return rows;
}

/// Runs a script of tests/imagelib/io, which has to succeed.
inline void runPython(const std::string& script, const std::string& arguments)
{
    const std::string command = "PYTHONDONTWRITEBYTECODE=1 '" TARVIK_PYTHON "' '" +
                                sourcePath("/tests/imagelib/io/") + script + "' " + arguments;
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

}  // namespace tarvik::tests

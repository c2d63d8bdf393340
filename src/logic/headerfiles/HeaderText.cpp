// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/HeaderText.h"

#include "logic/headerfiles/HeaderFileError.h"

#include <charconv>
#include <cstdint>

namespace {

using namespace std::string_view_literals;

constexpr std::size_t Npos = std::string_view::npos;
constexpr std::string_view Space = " \t\r\n\v\f";
constexpr std::string_view BinaryBoundary = "--CIF-BINARY-FORMAT-SECTION--";
constexpr std::string_view BinaryMark = "\x0c\x1a\x04\xd5";

bool isText(char letter)
{
    const auto code = static_cast<unsigned char>(letter);
    return (code >= ' ' && code < 127) || (code >= '\t' && code <= '\r');
}

bool endsLine(char letter) { return letter == '\r' || letter == '\n'; }

/// Files without a header text are no failure of a batch: nothing is printed.
HeaderFileError nothingToDo(const std::string& reason) { return {reason, {}}; }

}  // namespace

HeaderText::HeaderText(std::string_view start, const std::string& path)
    : _file(start)
    , _path(path)
{
    if (!start.starts_with("###CBF"))
        throw nothingToDo(start.starts_with("\x1f\x8b"sv) || start.starts_with("BZh")
                              ? "Compressed files can't be changed: " + path
                              : "This is no CBF file: " + path);
    // The header is text: the pixel data comes after it.
    const std::string_view text = start.substr(0, start.find('\0'));
    constexpr std::string_view Tag = "_array_data.header_contents";
    const std::size_t tag = text.find(Tag);
    _begin = tag == Npos ? Npos : text.find(';', tag);
    _end = _begin == Npos ? Npos : text.find(';', _begin + 1);
    if (_end == Npos)
        throw nothingToDo("This CBF file has no header text: " + path);
    if (text.find_first_not_of(Space, tag + Tag.size()) != _begin)
        throw HeaderFileError("The header text has no opening mark: " + path);
    if (this->text().find(BinaryBoundary) != Npos || this->text().find("_array_data.data") != Npos)
        throw HeaderFileError("The header text has no closing mark: " + path);
}

bool HeaderText::takesLines() const { return endsLine(_file[_end - 1]); }

std::vector<HeaderText::Line> HeaderText::lines() const
{
    std::vector<Line> found;
    for (std::size_t at = _begin + 1; at < _end; ++at) {
        if (_file[at] != '#' || !endsLine(_file[at - 1]))
            continue;
        std::size_t end = at;
        while (end < _file.size() && !endsLine(_file[end]) && isText(_file[end]))
            ++end;
        if (end == _file.size() || endsLine(_file[end]))  // else it is no text
            found.push_back({at, _file.substr(at, end - at)});
        at = end;
    }
    return found;
}

void HeaderText::checkComplete(std::size_t size) const
{
    constexpr std::string_view Key = "X-Binary-Size:";
    const std::size_t section = _file.find(BinaryBoundary, _end);
    const std::size_t pixels = section == Npos ? Npos : _file.find(BinaryMark, section);
    const std::size_t key = section == Npos ? Npos : _file.find(Key, section);
    if (key == Npos || pixels == Npos || key > pixels)
        return;  // without binary pixels, or beyond what was read
    const std::size_t digits = _file.find_first_not_of(" \t", key + Key.size());
    std::uint64_t announced = 0;
    if (digits == Npos ||
        std::from_chars(_file.data() + digits, _file.data() + pixels, announced).ec != std::errc())
        return;
    const std::uint64_t there = size - (pixels + BinaryMark.size());
    if (there < announced)
        throw HeaderFileError("The file holds " + std::to_string(there) + " of " +
                              std::to_string(announced) +
                              " bytes of pixel data and may still be being written: " + _path);
}

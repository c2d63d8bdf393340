// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Finding the end of a header and taking it apart; keys and values, as the common table knows them.
#include "imagelib/io/formats/edf/EdfHeader.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/HeaderValues.h"
#include "imagelib/io/formats/base/HeaderWords.h"

#include <algorithm>
#include <charconv>

namespace morvend::imglib::edf {

namespace {

constexpr std::size_t LongestHeader = std::size_t(16) << 20;

/// Bytes up to and including the end of the line of the closing brace; 0 if it is missing.
/// A CR alone does not end a header: it may be the first byte of the pixels.
std::size_t findEnd(std::string_view text, std::size_t from)
{
    for (std::size_t brace = text.find('}', from); brace != std::string_view::npos;
         brace = text.find('}', brace + 1)) {
        const std::string_view rest = text.substr(brace + 1, 2);
        if (rest.starts_with("\n"))
            return brace + 2;
        if (rest == "\r\n")
            return brace + 3;
    }
    return 0;
}

}  // namespace

bool EdfHeader::beginsBlock(std::string_view bytes)
{
    if (bytes.starts_with("\r\n"))
        bytes.remove_prefix(2);
    else if (bytes.starts_with("\n"))
        bytes.remove_prefix(1);
    if (!bytes.starts_with("{"))
        return false;
    // Other formats begin with a brace too; here a key and '=' must follow.
    constexpr std::size_t LongestKey = 256;
    const std::size_t stop = bytes.find_first_of("=;}\"", 1);
    if (stop == std::string_view::npos || bytes[stop] != '=')
        return false;
    const std::string_view key = trimmed(bytes.substr(1, stop - 1));
    return !key.empty() && key.size() <= LongestKey &&
           std::ranges::none_of(key, [](char c) { return c >= 0 && c < ' '; });
}

EdfHeader EdfHeader::read(const ByteSource& source, std::uint64_t offset, std::size_t guess)
{
    std::string text;
    std::size_t wanted = std::clamp<std::size_t>(guess, 512, LongestHeader);
    while (text.size() < LongestHeader) {
        const std::size_t had = text.size();
        text.resize(wanted);
        text.resize(had + source.readSome(offset + had, text.data() + had, wanted - had));
        // The end mark of up to three bytes can straddle two reads.
        if (const std::size_t end = findEnd(text, had < 2 ? 0 : had - 2)) {
            text.resize(end);
            return EdfHeader(std::move(text));
        }
        if (text.size() < wanted)
            break;
        wanted = std::min(4 * text.size(), LongestHeader);
    }
    throw MRuntimeException("EDF: the header at byte " + std::to_string(offset) +
                            " has no end within " + std::to_string(text.size()) +
                            " bytes: " + source.path());
}

EdfHeader::EdfHeader(std::string text)
    : _text(std::move(text))
{
    const std::string_view all = _text;
    const std::size_t open = all.find('{');
    const std::size_t close = all.rfind('}');
    std::size_t at = open == std::string_view::npos ? 0 : open + 1;
    const std::size_t end = close == std::string_view::npos ? all.size() : close;
    const auto place = [&](std::string_view part) {
        return static_cast<std::uint32_t>(part.data() - all.data());
    };
    const auto bytes = [](std::string_view part) {
        return static_cast<std::uint32_t>(part.size());
    };
    while (at < end) {
        const std::size_t stop = std::min(all.find(';', at), end);
        const std::string_view statement = all.substr(at, stop - at);
        if (const std::size_t equals = statement.find('='); equals != std::string_view::npos) {
            const std::string_view key = trimmed(statement.substr(0, equals));
            const std::string_view value = trimmed(statement.substr(equals + 1));
            _entries.push_back({place(key), bytes(key), place(value), bytes(value)});
        }
        at = stop + 1;
    }
}

std::optional<std::string_view> EdfHeader::_own(std::string_view key) const
{
    const std::string_view all = _text;
    for (auto entry = _entries.rbegin(); entry != _entries.rend(); ++entry)
        if (entry->keyBytes == key.size() && sameWord(all.substr(entry->key, entry->keyBytes), key))
            return all.substr(entry->value, entry->valueBytes);
    return std::nullopt;
}

std::optional<std::string_view> EdfHeader::value(std::string_view key) const
{
    const auto own = _own(key);
    return own || !_general ? own : _general->value(key);
}

std::optional<std::uint64_t> EdfHeader::number(std::string_view key) const
{
    const auto text = value(key);
    std::uint64_t number = 0;
    if (!text)
        return std::nullopt;
    const char* const end = text->data() + text->size();
    const auto [rest, error] = std::from_chars(text->data(), end, number);
    if (error != std::errc() || rest != end)
        return std::nullopt;
    return number;
}

std::string EdfHeader::shownText() const
{
    std::string shown = _general ? _general->shownText() : std::string();
    const std::string_view all = trimmed(_text);
    const bool closed = all.ends_with("}");
    const std::string_view body = trimmed(closed ? all.substr(0, all.size() - 1) : all);
    return shown.append(body).append(closed ? "\n}\n" : "\n");
}

void readFields(const EdfHeader& from, MBasicImageOptionalData<>& header)
{
    HeaderValues values;
    from.forEach([&](std::string_view key, std::string_view value) { values.add(key, value); });
    values.fill(header);
    header.set_rawHeader(from.shownText());
}

}  // namespace morvend::imglib::edf

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/JournalEntry.h"

#include "imagelib/image/MException.h"

#include <openssl/evp.h>

#include <charconv>
#include <vector>

namespace {

constexpr char Digits[] = "0123456789abcdef";

/// Without blanks and control characters, so that lines and words keep apart.
std::string escaped(std::string_view text)
{
    std::string result;
    for (const char letter : text) {
        const auto code = static_cast<unsigned char>(letter);
        if (code > ' ' && code < 127 && code != '%')
            result += letter;
        else
            result.append({'%', Digits[code >> 4], Digits[code & 15]});
    }
    return result;
}

std::optional<std::string> unescaped(std::string_view text)
{
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            result += text[at];
            continue;
        }
        unsigned char code = 0;
        const std::string_view digits = text.substr(at + 1, 2);
        const auto [stop, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
        if (error != std::errc() || digits.size() != 2 || stop != digits.data() + 2)
            return std::nullopt;
        result += static_cast<char>(code);
        at += 2;
    }
    return result;
}

/// Takes a line off the start of a text and cuts it at its blanks. @returns no word at the end
std::vector<std::string_view> takeWords(std::string_view& text)
{
    const std::size_t end = text.find('\n');
    if (end == text.npos)
        return {};
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    std::vector<std::string_view> words;
    for (std::size_t blank = 0; (blank = line.find(' ')) != line.npos;
         line.remove_prefix(blank + 1))
        words.push_back(line.substr(0, blank));
    words.push_back(line);
    return words;
}

std::optional<HeaderChange> changeOf(const std::vector<std::string_view>& words)
{
    HeaderChange change = {};
    const auto before = words.size() == 4 ? unescaped(words[2]) : std::nullopt;
    const auto after = words.size() == 4 ? unescaped(words[3]) : std::nullopt;
    if (!before || !after || words[0] != "line")
        return std::nullopt;
    const char* const end = words[1].data() + words[1].size();
    const auto [stop, error] = std::from_chars(words[1].data(), end, change.at);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    change.before = *before;
    change.after = *after;
    return change;
}

}  // namespace

std::string JournalEntry::digestOf(std::string_view content)
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (EVP_Digest(content.data(), content.size(), digest, &length, EVP_sha256(), nullptr) != 1)
        throw morvend::MRuntimeException("Cannot compute a digest");
    std::string text;
    for (unsigned int i = 0; i < length; ++i)
        text.append({Digits[digest[i] >> 4], Digits[digest[i] & 15]});
    return text;
}

std::string JournalEntry::text() const
{
    std::string lines = "file " + escaped(path) + "\ndigests " + before + ' ' + after + '\n';
    for (const HeaderChange& change : changes)
        lines += "line " + std::to_string(change.at) + ' ' + escaped(change.before) + ' ' +
                 escaped(change.after) + '\n';
    return lines + "end " + digestOf(lines) + '\n';
}

std::optional<JournalEntry> JournalEntry::take(std::string_view& journal)
{
    std::string_view rest = journal;
    JournalEntry entry;
    const auto first = takeWords(rest);
    const auto digests = takeWords(rest);
    const auto path = first.size() == 2 ? unescaped(first[1]) : std::nullopt;
    if (!path || first[0] != "file" || digests.size() != 3 || digests[0] != "digests")
        return std::nullopt;
    entry.path = *path;
    entry.before = digests[1];
    entry.after = digests[2];
    for (;;) {
        const std::string_view lines = journal.substr(0, journal.size() - rest.size());
        const auto words = takeWords(rest);
        if (words.size() == 2 && words[0] == "end") {
            if (words[1] != digestOf(lines))
                return std::nullopt;
            journal = rest;
            return entry;
        }
        const auto change = changeOf(words);
        if (!change)
            return std::nullopt;
        entry.changes.push_back(*change);
    }
}

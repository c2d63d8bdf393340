// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Splitting of numbered file names and the listing of their folder.
#include "imagelib/io/series/SeriesFinder.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <dirent.h>

namespace morvend::imglib {

namespace {

constexpr std::string_view Digits = "0123456789";

bool onlyDigits(std::string_view text)
{
    return !text.empty() && text.find_first_not_of(Digits) == std::string_view::npos;
}

/// The number of a run of digits; false when an int can't hold it.
bool toNumber(std::string_view digits, int& number)
{
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end;
}

/// Length of a file name without its extension.
std::size_t stemLength(std::string_view name)
{
    std::string_view plain = name;
    for (const std::string_view packing : {".gz", ".bz2"})
        if (name.ends_with(packing))
            plain.remove_suffix(packing.size());
    const std::size_t dot = plain.rfind('.');
    if (dot == std::string_view::npos || onlyDigits(plain.substr(dot + 1)))
        return plain.size();
    return dot;
}

}  // namespace

std::optional<SeriesFinder> SeriesFinder::of(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    const std::string_view name = std::string_view(path).substr(start);
    const std::string_view stem = name.substr(0, stemLength(name));
    const std::size_t lastDigit = stem.find_last_of(Digits);
    if (lastDigit == std::string_view::npos)
        return std::nullopt;
    const std::size_t before = stem.find_last_not_of(Digits, lastDigit);
    const std::size_t firstDigit = before == std::string_view::npos ? 0 : before + 1;
    const std::string_view digits = stem.substr(firstDigit, lastDigit + 1 - firstDigit);

    SeriesFinder finder;
    if (!toNumber(digits, finder._opened.number))
        return std::nullopt;
    finder._opened.digits = static_cast<int>(digits.size());
    finder._directory = start == 0 ? "./" : path.substr(0, start);
    finder._prefix = name.substr(0, firstDigit);
    finder._suffix = name.substr(lastDigit + 1);
    return finder;
}

bool SeriesFinder::parse(const char* text, Member& member) const
{
    std::string_view name = text;
    if (name.size() <= _prefix.size() + _suffix.size() || !name.starts_with(_prefix) ||
        !name.ends_with(_suffix))
        return false;
    name.remove_prefix(_prefix.size());
    name.remove_suffix(_suffix.size());
    member.digits = static_cast<int>(name.size());
    return onlyDigits(name) && toNumber(name, member.number);
}

bool SeriesFinder::isNearer(int digits, int than) const
{
    const int distance = std::abs(digits - _opened.digits);
    const int other = std::abs(than - _opened.digits);
    return distance != other ? distance < other : digits < than;
}

std::vector<SeriesFinder::Member> SeriesFinder::list() const
{
    std::vector<Member> members;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(_directory.c_str()), ::closedir);
    if (!folder)
        return members;
    Member member;
    while (const dirent* entry = ::readdir(folder.get()))
        if (entry->d_type != DT_DIR && parse(entry->d_name, member))
            members.push_back(member);
    sortByNumber(members);
    return members;
}

void SeriesFinder::sortByNumber(std::vector<Member>& members) const
{
    if (members.empty())
        return;
    const auto [low, high] = std::minmax_element(
        members.begin(), members.end(),
        [](const Member& left, const Member& right) { return left.number < right.number; });
    const int first = low->number;
    const std::size_t span = static_cast<std::size_t>(high->number - first) + 1;
    constexpr std::size_t MostGaps = 8;
    if (span / MostGaps > members.size())
        return sortSparse(members);

    // A table by number: the sorting of ten thousand names takes longer than their parsing.
    std::vector<int> digits(span, 0);
    for (const Member& member : members) {
        int& entry = digits[static_cast<std::size_t>(member.number - first)];
        if (entry == 0 || isNearer(member.digits, entry))
            entry = member.digits;
    }
    members.clear();
    for (std::size_t i = 0; i < span; ++i)
        if (digits[i] != 0)
            members.push_back({first + static_cast<int>(i), digits[i]});
}

void SeriesFinder::sortSparse(std::vector<Member>& members) const
{
    std::sort(members.begin(), members.end(), [this](const Member& left, const Member& right) {
        return left.number != right.number ? left.number < right.number
                                           : isNearer(left.digits, right.digits);
    });
    const auto same = [](const Member& left, const Member& right) {
        return left.number == right.number;
    };
    members.erase(std::unique(members.begin(), members.end(), same), members.end());
}

std::string SeriesFinder::path(const Member& member) const
{
    const std::string digits = std::to_string(member.number);
    const auto width = static_cast<std::size_t>(std::max(member.digits, 0));
    const std::size_t zeros = width > digits.size() ? width - digits.size() : 0;
    return _directory + _prefix + std::string(zeros, '0') + digits + _suffix;
}

}  // namespace morvend::imglib

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Splitting of header texts into words and numbers.
#include "imagelib/io/formats/base/HeaderWords.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace morvend::imglib {

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

bool sameWord(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lower(a) == lower(b); });
}

Words wordsOf(std::string_view line, bool splitAtCommas)
{
    const auto separates = [&](std::size_t i) {
        const char c = line[i];
        if (c == ',')
            return splitAtCommas || i + 1 == line.size() || isBlank(line[i + 1]);
        return isBlank(c) || std::string_view("()[]{}#:=;'\"").find(c) != std::string_view::npos;
    };
    Words words;
    for (std::size_t i = 0; i < line.size();) {
        if (separates(i)) {
            ++i;
            continue;
        }
        const std::size_t begin = i;
        while (i < line.size() && !separates(i))
            ++i;
        words.push_back(line.substr(begin, i - begin));
    }
    return words;
}

bool parseNumber(std::string_view text, double& value)
{
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    double result = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(result))
        return false;
    value = result;
    return true;
}

std::optional<double> factorOf(std::string_view word, Units units)
{
    if (word.ends_with('.'))
        word.remove_suffix(1);
    for (const Unit& unit : units) {
        if (sameWord(word, unit.name))
            return unit.factor;
    }
    return std::nullopt;
}

std::optional<Quantity> quantityAt(const Words& words, std::size_t at, Units units)
{
    if (at >= words.size())
        return std::nullopt;
    std::string_view word = words[at];
    if (word.starts_with('+') && !word.starts_with("+-"))
        word.remove_prefix(1);
    Quantity result;
    const char* const end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data(), end, result.value);
    if (error != std::errc() || !std::isfinite(result.value))
        return std::nullopt;
    std::string_view unit(rest, static_cast<std::size_t>(end - rest));
    double number = 0;
    if (unit.empty() && at + 1 < words.size() && !sameWord(words[at + 1], "x") &&
        words[at + 1] != Times && !parseNumber(words[at + 1], number)) {
        unit = words[at + 1];
        result.words = 2;
    }
    if (!unit.empty()) {
        result.factor = factorOf(unit, units);
        if (!result.factor)
            return std::nullopt;
    }
    return result;
}

}  // namespace morvend::imglib

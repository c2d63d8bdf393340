// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/FileNamePattern.h"

#include "paths/MFilesystemUtils.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr int MostNumber = 99999;
constexpr std::string_view Master = "_master";

/// The value of decimal digits, or more than MostNumber if it is larger.
int valueOf(std::string_view digits)
{
    int value = 0;
    for (const char digit : digits)
        value = std::min(value * 10 + (digit - '0'), MostNumber + 1);
    return value;
}

}  // namespace

FileNamePattern::FileNamePattern(std::string pattern)
{
    morvend::imglib::utils::parseFileName(pattern, _extension, _stem, _directory);
    if (_extension.empty())
        _extension = "h5";
    if (_stem.ends_with(Master))
        _stem.resize(_stem.size() - Master.size());
    _takeNumber();
}

void FileNamePattern::_takeNumber()
{
    const std::size_t last = _stem.find_last_not_of("0123456789");
    if (last == std::string::npos || last + 1 == _stem.size() || _stem[last] != '_')
        return;
    const std::string_view digits = std::string_view(_stem).substr(last + 1);
    _number = valueOf(digits);
    _width = digits.size();
    _hasNumber = true;
    _stem.resize(last);
}

std::string FileNamePattern::_name(int number) const
{
    std::string name = _directory + '/' + _stem;
    if (number != 0 || _hasNumber) {
        const std::string digits = std::to_string(number);
        name += '_' + std::string(_width - std::min(_width, digits.size()), '0') + digits;
    }
    return name + std::string(Master) + '.' + _extension;
}

std::optional<std::string>
FileNamePattern::firstFree(const std::function<bool(const std::string&)>& taken) const
{
    for (int number = _number; number <= MostNumber; ++number)
        if (std::string name = _name(number); !taken(name))
            return name;
    return {};
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/io/series/FolderStart.h"

#include "imagelib/image/MException.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <string_view>

namespace morvend::imglib {

namespace {

namespace fs = std::filesystem;

constexpr int Unwanted = 3;

/// 0 for what should be opened rather than anything else in the folder.
int rankOf(std::string name)
{
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return std::tolower(letter); });
    if (name.starts_with('.'))
        return Unwanted;  // hidden, perhaps a copy in the making
    for (const std::string_view ending : {"_master.h5", "_master.hdf5", ".nxs"})
        if (name.ends_with(ending))
            return 0;
    for (const std::string_view packing : {".gz", ".bz2"})
        if (name.ends_with(packing))
            name.resize(name.size() - packing.size());
    for (const std::string_view ending : {".cbf", ".tif", ".tiff", ".edf"})
        if (name.ends_with(ending))
            return 1;
    return name.ends_with(".h5") || name.ends_with(".hdf5") ? 2 : Unwanted;
}

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// Takes a run of digits from the front, without leading zeros.
std::string_view takeNumber(std::string_view& text)
{
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    std::string_view number = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(number.size());
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

/// "x_9" before "x_10".
bool naturallyLess(std::string_view left, std::string_view right)
{
    while (!left.empty() && !right.empty()) {
        if (isDigit(left.front()) && isDigit(right.front())) {
            const std::string_view first = takeNumber(left);
            const std::string_view second = takeNumber(right);
            if (first.size() != second.size())
                return first.size() < second.size();
            if (first != second)
                return first < second;
        } else {
            if (left.front() != right.front())
                return left.front() < right.front();
            left.remove_prefix(1);
            right.remove_prefix(1);
        }
    }
    return left.size() < right.size();
}

}  // namespace

std::string fileToOpen(const std::string& path)
{
    std::error_code error;
    if (!fs::is_directory(path, error))
        return path;
    std::array<std::string, Unwanted> first;
    fs::directory_iterator entry(path, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::string name = entry->path().filename().string();
        const int rank = rankOf(name);
        if (rank == Unwanted)
            continue;
        std::string& best = first[static_cast<std::size_t>(rank)];
        std::error_code unknown;
        if ((best.empty() || naturallyLess(name, best)) && !entry->is_directory(unknown))
            best = std::move(name);
    }
    if (error)
        throw MNoFileAccessException("Cannot list folder: " + error.message() + ": " + path);
    const auto found = std::find_if(first.begin(), first.end(),
                                    [](const std::string& name) { return !name.empty(); });
    if (found == first.end())
        throw MNoFileAccessException("The folder holds no image file: " + path);
    return (fs::path(path) / *found).string();
}

}  // namespace morvend::imglib

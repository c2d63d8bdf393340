// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/JournalFolder.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::string_view Ending = ".journal";

}

std::vector<long> journal_folder::numbers(const std::string& folder)
{
    std::vector<long> found;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string file = entry->path().filename().string();
        long number = 0;
        const auto [stop, wrong] = std::from_chars(file.data(), file.data() + file.size(), number);
        if (wrong == std::errc() && number > 0 &&
            stop == file.data() + file.size() - Ending.size() && file.ends_with(Ending))
            found.push_back(number);
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::string journal_folder::name(const std::string& folder, long number)
{
    std::string digits = std::to_string(number);
    digits.insert(0, 6 - std::min<std::size_t>(digits.size(), 6), '0');
    return folder + '/' + digits + std::string(Ending);
}

void journal_folder::make(const std::string& folder)
{
    std::error_code error;
    if (std::filesystem::create_directories(folder, error))
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, error);
}

void journal_folder::sync(const std::string& folder)
{
    const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0)
        return;
    ::fsync(file);
    ::close(file);
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A fresh folder for the files of one test, removed with all its content.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tarvik::tests {

class TempFolder {
public:
    TempFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "tarvik-XXXXXX").string();
        if (!::mkdtemp(name.data()))
            throw std::runtime_error("cannot make a temporary folder");
        _path = std::filesystem::canonical(name).string();
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::permissions(_path, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(_path, ignored);
    }

    const std::string& path() const { return _path; }
    /// Full path of a name in the folder.
    std::string operator/(std::string_view name) const { return _path + "/" + std::string(name); }
    /// Writes a file and returns its full path.
    std::string write(std::string_view name, std::string_view content) const
    {
        std::string path = *this / name;
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

private:
    std::string _path;
};

}  // namespace tarvik::tests

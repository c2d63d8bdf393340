// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Makes the temporary folder and moves files out of it.
#include "logic/output/StagingFolder.h"

#include "imagelib/image/MException.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace {

[[noreturn]] void cannotWrite(const std::string& path, const std::error_code& error)
{
    throw morvend::MNoFileAccessException("Cannot write file: " + error.message() + ": " + path);
}

}  // namespace

StagingFolder::StagingFolder(const std::string& target)
    : _directory(target.substr(0, target.rfind('/') + 1))
    , _name(target.substr(_directory.size()))
    , _folder(_directory + '.' + _name + ".XXXXXX")
{
    if (!::mkdtemp(_folder.data()))
        cannotWrite(target, {errno, std::generic_category()});
}

StagingFolder::~StagingFolder()
{
    std::error_code ignored;  // an error can't be reported here
    std::filesystem::remove_all(_folder, ignored);
}

void StagingFolder::publish(const std::function<void(const std::string& place)>& check) const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(_folder))
        if (entry.path().filename() != _name)
            names.push_back(entry.path().filename().string());
    names.push_back(_name);
    for (const std::string& name : names)
        check(_directory + name);
    for (const std::string& name : names) {
        std::error_code error;
        std::filesystem::rename(_folder + "/" + name, _directory + name, error);
        if (error)
            cannotWrite(_directory + name, error);
    }
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Parses file names and searches their folder.
#include "imagelib/io/formats/hdf5/nexus/DataFileNames.h"

#include "imagelib/io/formats/hdf5/library/OpenFiles.h"

#include <algorithm>
#include <filesystem>
#include <optional>

namespace morvend::imglib::hdf5 {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t MostDigits = 12;

struct Name {
    std::string prefix;
    std::string extension;  // with its dot
    std::optional<long long> number;
};

std::optional<Name> parse(const std::string& fileName)
{
    const fs::path path(fileName);
    std::string stem = path.stem().string();
    Name name{{}, path.extension().string(), std::nullopt};
    const std::size_t digits = stem.find_last_not_of("0123456789") + 1;
    if (digits < stem.size() && digits > 0 && stem[digits - 1] == '_' &&
        stem.size() - digits <= MostDigits) {
        name.number = std::stoll(stem.substr(digits));
        stem.resize(digits - 1);
    }
    const std::string ending = "_data";
    if (!stem.ends_with(ending))
        return std::nullopt;
    name.prefix = stem.substr(0, stem.size() - ending.size());
    return name;
}

}  // namespace

bool isDataFile(const std::string& path) { return parse(baseName(path)).has_value(); }

std::string masterOf(const std::string& dataFile)
{
    const fs::path path(dataFile);
    const auto name = parse(path.filename().string());
    if (!name)
        return {};
    for (const std::string& extension :
         {name->extension, std::string(".h5"), std::string(".hdf5")}) {
        const fs::path master = path.parent_path() / (name->prefix + "_master" + extension);
        std::error_code none;
        if (fs::is_regular_file(master, none))
            return master.string();
    }
    return {};
}

std::vector<std::string> dataFilesBeside(const std::string& dataFile)
{
    const fs::path path(dataFile);
    const auto name = parse(path.filename().string());
    if (!name || !name->number)
        return {dataFile};
    std::vector<std::pair<long long, std::string>> files;
    std::error_code error;
    const fs::path folder = path.parent_path();
    for (fs::directory_iterator each(folder.empty() ? "." : folder, error), end;
         !error && each != end; each.increment(error)) {
        const std::string fileName = each->path().filename().string();
        const auto other = parse(fileName);
        if (other && other->number && other->prefix == name->prefix &&
            other->extension == name->extension)
            files.emplace_back(*other->number, (folder / fileName).string());
    }
    std::sort(files.begin(), files.end());
    std::vector<std::string> paths;
    for (auto& [number, file] : files)
        paths.push_back(std::move(file));
    if (paths.empty())
        paths.push_back(dataFile);
    return paths;
}

long long blockNumber(const std::string& name)
{
    if (name == "data")
        return -1;
    const std::string prefix = "data_";
    if (!name.starts_with(prefix) || name.size() == prefix.size() ||
        name.size() > prefix.size() + MostDigits ||
        name.find_first_not_of("0123456789", prefix.size()) != std::string::npos)
        return -2;
    return std::stoll(name.substr(prefix.size()));
}

}  // namespace morvend::imglib::hdf5

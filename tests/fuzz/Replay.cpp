// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Runs a fuzz target over the files of folders: seeds, and the smallest file of each past finding.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int count, char** values)
{
    std::set<std::filesystem::path> files;
    for (int i = 1; i < count; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(values[i]))
            files.insert(entry.path());
    for (const auto& path : files) {
        std::printf("%s\n", path.c_str());
        std::fflush(stdout);  // the last line names the file that a crash is due to
        std::ifstream file(path, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    return files.empty() ? 1 : 0;
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Runs a fuzz target over the files of a folder, seeds and the smallest file of each past finding,
// and over copies of them with one byte changed: replay FOLDER MOST_CHANGES_OF_A_FILE.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void run(const std::vector<char>& bytes)
{
    // A block of its own size, so that the address sanitizer sees a read beyond its end.
    const std::vector<char> copy(bytes);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(copy.data()), copy.size());
}

}  // namespace

int main(int count, char** values)
{
    if (count != 3)
        return 2;
    const auto most = std::strtoul(values[2], nullptr, 10);
    const std::filesystem::directory_iterator folder(values[1]);
    const std::set<std::filesystem::path> files(begin(folder), end(folder));
    for (const auto& path : files) {
        std::printf("%s", path.c_str());
        std::ifstream file(path, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        run(bytes);
        for (std::size_t at = 0; at < bytes.size(); at += 1 + bytes.size() / most)
            for (const int change : {1 << at % 8, 0xff}) {
                std::printf(" %zu", at);
                std::fflush(stdout);  // the last word names the file or byte of a crash
                std::vector<char> changed = bytes;
                changed[at] = static_cast<char>(changed[at] ^ change);
                run(changed);
            }
        std::printf("\n");
    }
    return files.empty() ? 1 : 0;
}

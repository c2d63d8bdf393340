// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Lines are found and replaced in memory, then the file is replaced.
#include "logic/headerfiles/CbfHeaderWriter.h"

#include "logic/support/Console.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <locale>
#include <sstream>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::size_t longestLine = 1024;

template <class... Values>
std::string join(const Values&... values)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    (text << ... << values);
    return text.str();
}

bool isText(char letter)
{
    const auto code = static_cast<unsigned char>(letter);
    return (code >= ' ' && code < 127) || (code >= '\t' && code <= '\r');
}

bool endsLine(char letter) { return letter == '\r' || letter == '\n'; }

// strerror_r() returns the error number in one version of the library and the text in another.
[[maybe_unused]] int numberOf(int result) { return result; }
[[maybe_unused]] int numberOf(const char*) { return 0; }

/// Writes a file with the permissions of another one. @returns false if it is not complete
bool writeFile(const std::string& path, const std::string& like, const std::string& content)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file)
        return false;
    struct stat status = {};
    if (::stat(like.c_str(), &status) == 0 && ::chmod(path.c_str(), status.st_mode & 07777) != 0)
        console::warn("WARNING: Can't keep the permissions of " + like + '\n');
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    return file.good();
}

}  // namespace

void CbfHeaderWriter::setNeXuS(const Header& header)
{
    _header = header;
    _lines.clear();
    if (const auto& angle = header.rotation_angle())
        _lines.push_back({"Start_angle", join("# Start_angle ", *angle, " deg")});
    if (const auto& step = header.rotation_angle_step())
        _lines.push_back({"# Angle_increment", join("# Angle_increment ", *step, " deg")});
    if (header.beam_center_x() && header.beam_center_y())
        _lines.push_back({"# Beam_xy", join("# Beam_xy ( ", *header.beam_center_x(), ", ",
                                            *header.beam_center_y(), ") pixels")});
    if (const auto& wavelength = header.wavelength())
        _lines.push_back({"# Wavelength", join("# Wavelength ", *wavelength, " A")});
    if (const auto& distance = header.detector_distance())
        _lines.push_back({"# Detector_distance", join("# Detector_distance ", *distance, " m")});
    if (const auto& transmission = header.filter_transmission())
        _lines.push_back({"# Filter_transmission", join("# Filter_transmission ", *transmission)});
}

void CbfHeaderWriter::write(const std::string& path) const
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        console::warn("Error: Can't open " + path + " for reading\n");
        return;
    }
    std::string content{std::istreambuf_iterator<char>(file), {}};
    file.close();
    // The header is text: the binary data comes after it.
    const std::string_view text(content.c_str());
    const std::size_t tag = text.find("_array_data.header_contents");
    const std::size_t first = tag == npos ? npos : text.find(';', tag);
    const std::size_t second = first == npos ? npos : text.find(';', first + 1);
    if (second == npos)
        return;

    std::string result = content.substr(0, first);
    std::size_t done = first;
    for (const ReplaceString& change :
         _replacements(std::string_view(content).substr(first, second - first))) {
        result.append(content, done, first + change.begin - done);
        result += change.text;
        done = first + change.end;
    }
    result.append(content, done);

    const std::string temporary = path + '.' + std::to_string(::getpid()) + ".tmp";
    if (!writeFile(temporary, path, result)) {
        console::warn("Error: Can't open " + temporary + " for writing\n");
        ::unlink(temporary.c_str());
        return;
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        char reason[1024] = {};
        const int number = numberOf(strerror_r(errno, reason, sizeof reason));
        console::warn("Error: Renaming " + temporary + " to " + path + "\n       " +
                      std::to_string(number) + '\n');
    }
}

std::vector<CbfHeaderWriter::ReplaceString>
CbfHeaderWriter::_replacements(std::string_view content) const
{
    std::vector<ReplaceString> changes;
    std::vector<Line> missing = _lines;
    for (std::size_t at = 0; at < content.size() && !missing.empty(); ++at) {
        // Only a line with its sign in the first column is one of the header.
        if (content[at] != '#' || at == 0 || !endsLine(content[at - 1]))
            continue;
        std::size_t end = at;
        const std::size_t limit = std::min(content.size(), at + longestLine);
        while (end < limit && !endsLine(content[end]) && isText(content[end]))
            ++end;
        if (end < limit && !endsLine(content[end])) {
            at = end;  // binary, or too long
            continue;
        }
        const std::string_view line = content.substr(at, end - at);
        const auto found = std::find_if(missing.begin(), missing.end(), [&](const Line& each) {
            return line.find(each.mark) != npos;
        });
        if (found != missing.end()) {
            changes.push_back({at, end, found->text});
            missing.erase(found);
        }
        at = end;
    }
    if (!missing.empty())
        changes.push_back({content.size(), content.size(), missing.front().text + "\r\n"});
    return changes;
}

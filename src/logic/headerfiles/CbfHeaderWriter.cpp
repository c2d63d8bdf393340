// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Lines are found and replaced in memory, then the file is replaced.
#include "logic/headerfiles/CbfHeaderWriter.h"

#include "logic/headerfiles/HeaderFileError.h"
#include "logic/headerfiles/HeaderText.h"
#include "logic/headerfiles/ReplacedFile.h"
#include "logic/support/Console.h"

#include <algorithm>
#include <array>
#include <locale>
#include <sstream>

namespace {

constexpr std::size_t Npos = std::string_view::npos;
constexpr std::size_t LongestLine = 1024;  // of which a mark is searched
constexpr std::array<std::string_view, 6> Marks{"Start_angle",         "# Angle_increment",
                                                "# Beam_xy",           "# Wavelength",
                                                "# Detector_distance", "# Filter_transmission"};

template <class... Values>
std::string join(const Values&... values)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    (text << ... << values);
    return text.str();
}

}  // namespace

void CbfHeaderWriter::setNeXuS(const Header& header)
{
    _header = header;
    _lines.clear();
    if (const auto& angle = header.rotation_angle())
        _lines.push_back({Marks[0], join("# Start_angle ", *angle, " deg")});
    if (const auto& step = header.rotation_angle_step())
        _lines.push_back({Marks[1], join("# Angle_increment ", *step, " deg")});
    if (header.beam_center_x() && header.beam_center_y())
        _lines.push_back({Marks[2], join("# Beam_xy ( ", *header.beam_center_x(), ", ",
                                         *header.beam_center_y(), ") pixels")});
    if (const auto& wavelength = header.wavelength())
        _lines.push_back({Marks[3], join("# Wavelength ", *wavelength, " A")});
    if (const auto& distance = header.detector_distance())
        _lines.push_back({Marks[4], join("# Detector_distance ", *distance, " m")});
    if (const auto& transmission = header.filter_transmission())
        _lines.push_back({Marks[5], join("# Filter_transmission ", *transmission)});
}

HeaderChanges CbfHeaderWriter::changes(const HeaderText& text, const std::string& path,
                                       Additions additions) const
{
    HeaderChanges found;
    std::vector<Line> missing = _lines;
    for (const HeaderText::Line& line : text.lines()) {
        const std::string_view searched = line.text.substr(0, LongestLine);
        const auto match = std::find_if(missing.begin(), missing.end(), [&](const Line& each) {
            return searched.find(each.mark) != Npos;
        });
        if (match == missing.end())
            continue;
        if (line.text != match->text)
            found.push_back({line.at, std::string(line.text), match->text});
        missing.erase(match);
    }
    if (!missing.empty() && !text.takesLines())
        throw HeaderFileError("The header text has a semicolon within a line, so that no line can "
                              "be added: " +
                              path);
    for (const Line& line : missing) {
        found.push_back({text.end(), {}, line.text + "\r\n"});
        if (additions == Additions::First)
            break;
    }
    return found;
}

std::string_view CbfHeaderWriter::kindOf(const HeaderChange& change)
{
    for (const std::string_view mark : Marks)
        if (change.after.find(mark) != Npos || change.before.find(mark) != Npos)
            return mark.substr(mark.starts_with("# ") ? 2 : 0);
    return {};
}

void CbfHeaderWriter::write(const std::string& path) const
{
    try {
        ReplacedFile file(path);
        const HeaderText text(file.content(), path);
        file.replace(applied(file.content(), changes(text, path)));
    } catch (const HeaderFileError& error) {
        console::warn(error.printed());
    }
}

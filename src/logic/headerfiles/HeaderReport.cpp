// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/HeaderReport.h"

#include "logic/headerfiles/CbfHeaderWriter.h"
#include "logic/support/FailureSummary.h"

#include <algorithm>

namespace {

std::string filesText(int count)
{
    return std::to_string(count) + (count == 1 ? " file" : " files");
}

/// A header line for a terminal: without line ends and control characters.
std::string printable(const std::string& line)
{
    std::string text = line.substr(0, line.find_last_not_of("\r\n") + 1);
    std::replace_if(
        text.begin(), text.end(),
        [](unsigned char letter) { return letter < ' ' || letter == 127; }, ' ');
    return text;
}

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

std::string differenceText(const HeaderChange& change, const std::string& indent)
{
    std::string text;
    if (!change.before.empty())
        text += indent + '-' + printable(change.before) + '\n';
    if (!change.after.empty())
        text += indent + '+' + printable(change.after) + '\n';
    return text;
}

void HeaderReport::changed(const std::string& path, const HeaderChanges& changes)
{
    if (_changed++ == 0)
        _firstPath = path;
    _lastPath = path;
    for (const HeaderChange& change : changes) {
        const std::string name(CbfHeaderWriter::kindOf(change));
        const auto known = std::find_if(_kinds.begin(), _kinds.end(),
                                        [&](const Kind& each) { return each.name == name; });
        if (known == _kinds.end()) {
            _kinds.push_back({name, 1, false, change, change});
            continue;
        }
        ++known->files;
        known->last = change;
        known->differ |= change.before != known->first.before || change.after != known->first.after;
    }
}

void HeaderReport::failed(const std::string& reason)
{
    ++_failed;
    constexpr std::size_t MostKinds = 20;  // later ones count as the last of these
    const std::string kind = FailureSummary::kindOf(reason);
    auto known = std::find_if(_failures.begin(), _failures.end(),
                              [&](const Failure& each) { return each.kind == kind; });
    if (known == _failures.end() && _failures.size() < MostKinds)
        known = _failures.insert(_failures.end(), {kind, reason, 0});
    else if (known == _failures.end())
        --known;
    ++known->files;
}

std::string HeaderReport::_place() const
{
    if (_changed == 1)
        return ": " + _firstPath;
    const std::string folder = folderOf(_firstPath);
    const bool together = folder == folderOf(_lastPath);
    return (folder.empty() || !together ? ": " : " in " + folder + ": ") +
           (together ? nameOf(_firstPath) : _firstPath) + " to " +
           (together ? nameOf(_lastPath) : _lastPath);
}

std::string HeaderReport::text(const std::string& did) const
{
    std::string text = filesText(_changed) + ' ' + did + (_changed > 0 ? _place() : "") + '\n';
    for (const Kind& kind : _kinds) {
        text += "  " + kind.name + " in " + filesText(kind.files) +
                (kind.differ ? ", the first and the last of which:\n" : ":\n");
        text += differenceText(kind.first, "    ");
        if (kind.differ)
            text += differenceText(kind.last, "    ");
    }
    if (_unchanged > 0)
        text += filesText(_unchanged) + " already " + (_unchanged == 1 ? "is" : "are") + " so\n";
    return text;
}

std::vector<std::string> HeaderReport::failures() const
{
    std::vector<std::string> lines;
    for (const Failure& failure : _failures)
        lines.push_back(failure.files == 1
                            ? failure.first
                            : filesText(failure.files) +
                                  " stay as they are, the first because of: " + failure.first);
    return lines;
}

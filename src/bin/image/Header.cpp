// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "bin/image/Header.h"

#include "bin/image/ChosenImage.h"
#include "bin/image/CrashGuard.h"
#include "bin/image/HeaderField.h"
#include "bin/image/Info.h"
#include "bin/image/Progress.h"
#include "bin/image/StopSignals.h"
#include "logic/headerfiles/HeaderBatch.h"
#include "logic/headerfiles/HeaderUndo.h"

#include <functional>
#include <iostream>
#include <utility>

namespace tarvik::tool {

namespace {

using Mode = HeaderBatch::Mode;

CbfHeaderWriter writerOf(const std::vector<std::pair<std::string, float>>& values)
{
    CbfHeaderWriter::Header header;
    for (const auto& [name, value] : values)
        if (const HeaderField* const field = HeaderField::find(name))
            (header.*field->set)(value);
    CbfHeaderWriter writer;
    writer.setNeXuS(header);
    return writer;
}

void printChanges(const std::string& path, const HeaderChanges& changes, std::ostream& out)
{
    if (changes.empty())
        return;
    out << "--- " << path << "\n+++ " << path << '\n';
    for (const HeaderChange& change : changes)
        out << differenceText(change, "");
}

/// Does something with each of so many files; what fails is in the batch's report.
/// @returns why it ended early, if it did
std::vector<std::string> forEachFile(std::size_t count,
                                     const std::function<void(std::size_t)>& work)
{
    const StopSignals stop;
    Progress progress(static_cast<int>(count));
    for (std::size_t i = 0; i < count; ++i) {
        try {
            stop.check();
        } catch (const morvend::imglib::MTerminateException& request) {
            return {request.what()};
        }
        progress.show(static_cast<int>(i + 1));
        try {
            work(i);
        } catch (const std::exception&) {
            continue;
        }
    }
    return {};
}

std::vector<std::string> joined(std::vector<std::string> first,
                                const std::vector<std::string>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

}  // namespace

Header::Header(Arguments arguments)
    : _arguments(std::move(arguments))
{}

std::vector<std::string> Header::run(std::ostream& out) const
{
    if (_arguments.undo)
        return _undo(out);
    return _arguments.values.empty() ? _print(out) : _write(out);
}

std::vector<std::string> Header::_print(std::ostream& out) const
{
    std::vector<std::string> failures;
    for (const std::string& file : _arguments.files) {
        Arguments one = _arguments;
        one.file = file;
        try {
            const ChosenImage chosen(one);
            if (_arguments.files.size() > 1)
                out << "==> " << file << " <==\n";
            Info::writeHeader(chosen.image, out);
        } catch (const std::exception& error) {
            failures.emplace_back(error.what());
        }
    }
    return failures;
}

std::vector<std::string> Header::_write(std::ostream& out) const
{
    const CbfHeaderWriter writer = writerOf(_arguments.values);
    HeaderBatch batch(_arguments.dryRun ? Mode::Preview : Mode::Write);
    const auto stopped = forEachFile(_arguments.files.size(), [&](std::size_t i) {
        const std::string& file = _arguments.files[i];
        CrashGuard::note("rewriting the header: " + file);
        const HeaderChanges changes = batch.write(file, writer, CbfHeaderWriter::Additions::All);
        if (_arguments.dryRun)
            printChanges(file, changes, out);
    });
    out << batch.report().text(_arguments.dryRun ? "would change" : "changed");
    return joined(batch.report().failures(), stopped);
}

std::vector<std::string> Header::_undo(std::ostream& out) const
{
    HeaderUndo undo(_arguments.dryRun ? Mode::Preview : Mode::Write);
    const auto stopped = forEachFile(undo.count(), [&](std::size_t i) {
        const std::string& file = undo.path(i);
        CrashGuard::note("putting the header back: " + file);
        const HeaderChanges changes = undo.putBack(i);
        if (_arguments.dryRun)
            printChanges(file, changes, out);
    });
    out << undo.report().text(_arguments.dryRun ? "would be put back" : "put back");
    return joined(undo.report().failures(), stopped);
}

}  // namespace tarvik::tool

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A table for people, an object for scripts.
#include "bin/image/DatasetReport.h"

#include "bin/image/CrashGuard.h"
#include "bin/image/JsonText.h"
#include "imagelib/io/formats/base/ImagePath.h"
#include "imagelib/io/formats/hdf5/nexus/DatasetList.h"

#include <algorithm>
#include <array>
#include <ostream>

namespace tarvik::tool {

using morvend::imglib::Hdf5Dataset;

namespace {

using Row = std::array<std::string, 5>;

std::string shapeOf(const Hdf5Dataset& dataset)
{
    std::string text;
    for (const std::size_t extent : dataset.shape)
        text += (text.empty() ? "" : " x ") + std::to_string(extent);
    return text.empty() ? "?" : text;
}

/// The text after the columns.
std::string remarkOf(const Hdf5Dataset& dataset)
{
    std::string text = dataset.leadsTo.empty() ? "" : "-> " + dataset.leadsTo;
    const auto add = [&text](const std::string& more) {
        text += (text.empty() ? "" : ", ") + more;
    };
    if (dataset.blocks > 1)
        add("the first of " + std::to_string(dataset.blocks) + " blocks");
    if (dataset.blocks > 1 && dataset.missing > 0)
        add(std::to_string(dataset.missing) + " of them missing");
    else if (!dataset.failure.empty())
        add(dataset.failure);
    return text;
}

void writeText(const std::vector<Hdf5Dataset>& datasets, std::ostream& out)
{
    std::vector<Row> rows{{"  Path", "Shape", "Type", "Group", "Remarks"}};
    for (const Hdf5Dataset& each : datasets)
        rows.push_back({(each.isDefault ? "* " : "  ") + each.path, shapeOf(each),
                        each.type.empty() ? "?" : each.type,
                        each.groupClass.empty() ? "-" : each.groupClass, remarkOf(each)});
    Row blanks;
    for (std::size_t column = 0; column + 1 < blanks.size(); ++column) {
        std::size_t width = 0;
        for (const Row& row : rows)
            width = std::max(width, row[column].size());
        for (Row& row : rows)
            row[column].append(width + 2 - row[column].size(), ' ');
    }
    for (const Row& row : rows) {
        std::string line;
        for (const std::string& cell : row)
            line += cell;
        line.erase(line.find_last_not_of(' ') + 1);
        // Texts from a file must not control the terminal.
        std::replace_if(
            line.begin(), line.end(), [](unsigned char c) { return c < ' '; }, '?');
        out << line << '\n';
    }
}

std::string jsonOf(const Hdf5Dataset& dataset)
{
    const auto textOrNull = [](const std::string& text) {
        return text.empty() ? std::string("null") : quoted(text);
    };
    std::string shape;
    for (const std::size_t extent : dataset.shape)
        shape += (shape.empty() ? "" : ", ") + std::to_string(extent);
    JsonObject object;
    object.add("path", quoted(dataset.path));
    object.add("default", dataset.isDefault ? "true" : "false");
    object.add("shape", dataset.shape.empty() ? "null" : '[' + shape + ']');
    object.add("type", textOrNull(dataset.type));
    object.add("group_class", textOrNull(dataset.groupClass));
    object.add("blocks", std::to_string(dataset.blocks));
    object.add("missing", std::to_string(dataset.missing));
    object.add("leads_to", textOrNull(dataset.leadsTo));
    object.add("failure", textOrNull(dataset.failure));
    return object.text();
}

}  // namespace

void DatasetReport::run(const Arguments& arguments, std::ostream& out)
{
    const std::string file = morvend::imglib::ImagePath::of(arguments.file).file;
    CrashGuard::note("listing the data sets of " + file);
    const std::vector<Hdf5Dataset> datasets = morvend::imglib::listHdf5(file);
    if (!arguments.json)
        return writeText(datasets, out);
    std::string list;
    for (const Hdf5Dataset& each : datasets)
        list += (list.empty() ? "" : ", ") + jsonOf(each);
    JsonObject object;
    object.add("path", quoted(file));
    object.add("datasets", '[' + list + ']');
    out << object.text() << '\n';
}

}  // namespace tarvik::tool

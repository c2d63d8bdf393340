// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Arguments to series.
#include "demo/DemoOptions.h"

#include "demo/Detector.h"
#include "imagelib/image/MException.h"

#include <algorithm>
#include <charconv>

namespace tarvik::demo {

using morvend::MBadParameterException;

const char* const Usage =
    "Usage: tarvik-demo-data DIR [options]\n"
    "Writes demo images of a turning crystal below DIR, as DIR/<size>/<format>/...\n"
    "Without options: 16 frames of 1 megapixel in all formats, 4 of 4 megapixels and\n"
    "2 of 16 megapixels in CBF and HDF5; about 0.25 GB.\n"
    "\n"
    "  --size SIZE      only this size: small, 1m, 4m or 16m\n"
    "  --frames N       number of frames (1 to 10000), default 16; implies --size 1m\n"
    "  --formats LIST   of cbf,tiff,edf,hdf5; default all; implies --size 1m\n"
    "  --small          the same as --size small --frames 5\n"
    "  --seed N         another crystal and other noise; default 1\n"
    "  --help           this text\n";

namespace {

std::uint64_t numberOf(const std::string& option, const std::string& text, std::uint64_t low,
                       std::uint64_t high)
{
    std::uint64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || value < low || value > high)
        throw MBadParameterException(option + " needs a number from " + std::to_string(low) +
                                     " to " + std::to_string(high) + ", not \"" + text + "\"");
    return value;
}

std::vector<Format> formatsOf(const std::string& list)
{
    std::vector<Format> formats;
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        const std::string name = list.substr(begin, end - begin);
        const auto known = {Format::Cbf, Format::Tiff, Format::Edf, Format::Hdf5};
        const auto* const found = std::find_if(
            known.begin(), known.end(), [&](Format format) { return folderOf(format) == name; });
        if (found == known.end())
            throw MBadParameterException("unknown format: " + name);
        if (std::find(formats.begin(), formats.end(), *found) == formats.end())
            formats.push_back(*found);
        begin = end + 1;
    }
    return formats;
}

}  // namespace

DemoOptions parseOptions(const std::vector<std::string>& arguments)
{
    const std::vector<Format> all = {Format::Cbf, Format::Tiff, Format::Edf, Format::Hdf5};
    DemoOptions options;
    SeriesPlan plan{"1m", 16, all};
    bool one = false;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        const std::string& name = *argument;
        const auto value = [&]() -> const std::string& {
            if (++argument == arguments.end())
                throw MBadParameterException(name + " needs a value");
            return *argument;
        };
        if (name == "--help" || name == "-h") {
            options.help = true;
            return options;
        }
        if (name == "--seed") {
            options.seed = numberOf(name, value(), 0, ~std::uint64_t(0));
            continue;
        }
        if (!name.starts_with("-") && options.directory.empty()) {
            options.directory = name;
            continue;
        }
        one = true;
        if (name == "--size") {
            plan.size = value();
            detectorNamed(plan.size);  // throws for an unknown one
        } else if (name == "--frames") {
            plan.frames = static_cast<int>(numberOf(name, value(), 1, 10000));
        } else if (name == "--formats") {
            plan.formats = formatsOf(value());
        } else if (name == "--small") {
            plan.size = "small";
            plan.frames = 5;
        } else {
            throw MBadParameterException("unexpected argument: " + name);
        }
    }
    if (options.directory.empty())
        throw MBadParameterException("the folder is missing");
    options.series = {plan};
    if (!one) {
        options.series.push_back({"4m", 4, {Format::Cbf, Format::Hdf5}});
        options.series.push_back({"16m", 2, {Format::Cbf, Format::Hdf5}});
    }
    return options;
}

}  // namespace tarvik::demo

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reads the command line. Pure: looks at no file.
#include "bin/image/Arguments.h"

#include "bin/image/HeaderField.h"
#include "bin/image/NumberWord.h"
#include "bin/image/RegionWord.h"
#include "logic/geometry/RingAdvice.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string_view>

namespace tarvik::tool {

namespace {

using Command = Arguments::Command;

std::pair<int, int> toPixel(std::string_view text, const std::string& option)
{
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos)
        throw UsageError(option + " needs X,Y: \"" + std::string(text) + '"');
    return {toNumber<int>(text.substr(0, comma), "X of " + option),
            toNumber<int>(text.substr(comma + 1), "Y of " + option)};
}

int toRings(std::string_view text)
{
    const int rings = toCount(text, "--rings");
    if (rings > geometry::RingAdvice::mostRings)
        throw UsageError("--rings is at most " + std::to_string(geometry::RingAdvice::mostRings) +
                         ": " + std::string(text));
    return rings;
}

Scale toScale(std::string_view text)
{
    constexpr int Most = 64;
    const double value = toLevel(text, "--scale");
    for (int factor = 1; factor <= Most; factor *= 2)
        if (value * factor == 1.0)
            return {1, factor};
    if (value < 1 || value > Most || value != std::floor(value))
        throw UsageError("--scale is a whole number up to " + std::to_string(Most) +
                         " or one of 0.5, 0.25, 0.125 ...: " + std::string(text));
    return {static_cast<int>(value), 1};
}

ContrastRange toContrast(const std::string& text)
{
    if (text == "sigma")
        return {0, 1, true};
    const std::size_t colon = text.find(':');
    const auto part = [&text](std::string_view word) {
        constexpr double Percent = 0.01;
        if (word.empty() || word.back() != '%')
            throw UsageError("--contrast is LOW%:HIGH% or sigma: " + text);
        return Percent * toLevel(word.substr(0, word.size() - 1), "--contrast");
    };
    const std::string_view words(text);
    const ContrastRange range{part(words.substr(0, colon)),
                              colon == std::string::npos ? part({}) : part(words.substr(colon + 1)),
                              false};
    if (!(range.low >= 0 && range.low < range.high && range.high <= 1))
        throw UsageError("--contrast ascends from 0% to 100%: " + text);
    return range;
}

std::pair<std::string, float> toValue(const std::string& text)
{
    const std::size_t equals = text.find('=');
    const std::string name = text.substr(0, equals);
    if (equals == std::string::npos || !HeaderField::find(name))
        throw UsageError("--set needs NAME=VALUE, with a NAME of " + HeaderField::names() + ": " +
                         text);
    const auto value = toNumber<float>(text.substr(equals + 1), "The value of " + name);
    if (!std::isfinite(value))
        throw UsageError("The value of " + name + " is not finite: " + text);
    return {name, value};
}

void setRegion(Arguments& arguments, StatisticsData::RoiType type, const std::string& option,
               const std::string& text)
{
    if (arguments.region.defined)
        throw UsageError("Only one region can be computed: " + option + ' ' + text);
    arguments.region = regionOf(type, option, text);
}

/// One option: the command that has it, and what it does with its value.
struct Option {
    std::string_view name;
    std::vector<Command> commands;
    bool hasValue;
    void (*apply)(Arguments& arguments, const std::string& value);
};

const std::vector<Option>& options()
{
    using A = Arguments;
    using Text = const std::string&;
    static const std::vector<Option> all{
        {"--frame",
         {Command::Info, Command::Stats, Command::Peaks, Command::Roi, Command::Geometry,
          Command::Thumbnail, Command::Convert, Command::Render},
         true,
         [](A& a, Text value) { a.frame = toCount(value, "--frame"); }},
        {"--json",
         {Command::Info, Command::Stats, Command::Peaks, Command::Roi, Command::Geometry,
          Command::Thumbnail},
         false,
         [](A& a, Text) { a.json = true; }},
        {"--raw-header", {Command::Info}, false, [](A& a, Text) { a.rawHeader = true; }},
        {"--datasets", {Command::Info}, false, [](A& a, Text) { a.datasets = true; }},
        {"--set",
         {Command::Header},
         true,
         [](A& a, Text value) { a.values.push_back(toValue(value)); }},
        {"--dry-run", {Command::Header}, false, [](A& a, Text) { a.dryRun = true; }},
        {"--undo", {Command::Header}, false, [](A& a, Text) { a.undo = true; }},
        {"--pixel",
         {Command::Info},
         true,
         [](A& a, Text value) { a.pixels.push_back(toPixel(value, "--pixel")); }},
        {"--count-at",
         {Command::Stats},
         true,
         [](A& a, Text value) { a.countAt.push_back(toLevel(value, "--count-at")); }},
        {"--line",
         {Command::Roi},
         true,
         [](A& a, Text value) { setRegion(a, StatisticsData::Line, "--line", value); }},
        {"--box",
         {Command::Roi},
         true,
         [](A& a, Text value) { setRegion(a, StatisticsData::Box, "--box", value); }},
        {"--circle",
         {Command::Roi},
         true,
         [](A& a, Text value) { setRegion(a, StatisticsData::Circle, "--circle", value); }},
        {"--powder",
         {Command::Roi},
         true,
         [](A& a, Text value) { setRegion(a, StatisticsData::CentredCircle, "--powder", value); }},
        {"--series", {Command::Roi}, false, [](A& a, Text) { a.series = true; }},
        {"--at",
         {Command::Geometry},
         true,
         [](A& a, Text value) { a.places.push_back(toPixel(value, "--at")); }},
        {"--rings", {Command::Geometry}, true, [](A& a, Text value) { a.rings = toRings(value); }},
        {"--frames",
         {Command::Play},
         true,
         [](A& a, Text value) { a.playFrames = toCount(value, "--frames"); }},
        {"--no-preloader", {Command::Play}, false, [](A& a, Text) { a.preloader = false; }},
        {"--all", {Command::Convert}, false, [](A& a, Text) { a.all = true; }},
        {"--table", {Command::Render}, true, [](A& a, Text value) { a.table = value; }},
        {"--background",
         {Command::Render},
         true,
         [](A& a, Text value) { a.background = toLevel(value, "--background"); }},
        {"--foreground",
         {Command::Render},
         true,
         [](A& a, Text value) { a.foreground = toLevel(value, "--foreground"); }},
        {"--contrast",
         {Command::Render},
         true,
         [](A& a, Text value) { a.contrast = toContrast(value); }},
        {"--scale", {Command::Render}, true, [](A& a, Text value) { a.scale = toScale(value); }},
        {"--largest", {Command::Render}, false, [](A& a, Text) { a.largest = true; }},
    };
    return all;
}

const Option& findOption(const std::string& name, const std::string& commandName, Command command)
{
    for (const Option& option : options())
        if (option.name == name && std::find(option.commands.begin(), option.commands.end(),
                                             command) != option.commands.end())
            return option;
    throw UsageError(commandName + " has no option " + name);
}

/// Applies the options and returns the other words.
std::vector<std::string> readOptions(const std::vector<std::string>& words, Arguments& arguments)
{
    std::vector<std::string> files;
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "--") {
            files.insert(files.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                         words.end());
            break;
        }
        if (word.size() < 2 || word[0] != '-') {
            files.push_back(word);
            continue;
        }
        const std::size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const Option& option = findOption(name, words[0], arguments.command);
        if (option.hasValue == (equals != std::string::npos)) {
            option.apply(arguments, option.hasValue ? word.substr(equals + 1) : "");
        } else if (!option.hasValue) {
            throw UsageError(name + " takes no value");
        } else {
            if (++i == words.size())
                throw UsageError(name + " needs a value");
            option.apply(arguments, words[i]);
        }
    }
    return files;
}

Command toCommand(const std::string& word)
{
    if (word == "info")
        return Command::Info;
    if (word == "header")
        return Command::Header;
    if (word == "stats")
        return Command::Stats;
    if (word == "peaks")
        return Command::Peaks;
    if (word == "roi")
        return Command::Roi;
    if (word == "geometry")
        return Command::Geometry;
    if (word == "thumbnail")
        return Command::Thumbnail;
    if (word == "play")
        return Command::Play;
    if (word == "convert")
        return Command::Convert;
    if (word == "render")
        return Command::Render;
    throw UsageError("There is no command " + word);
}

Arguments::Format toFormat(const std::string& path, Command command)
{
    using Format = Arguments::Format;
    const std::size_t dot = path.rfind('.');
    std::string ending = dot == std::string::npos ? "" : path.substr(dot + 1);
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    if (command == Command::Render) {
        if (ending != "png")
            throw UsageError("render writes .png files only, not " + path);
        return Format::Png;
    }
    if (ending == "cbf")
        return Format::Cbf;
    if (ending == "tif" || ending == "tiff")
        return Format::Tiff;
    if (ending == "h5" || ending == "hdf5")
        return Format::Hdf5;
    throw UsageError("convert writes .cbf, .tif, .tiff or .h5 files, not " + path);
}

void checkHeader(const Arguments& arguments)
{
    const auto isSet = [&](const char* name) {
        return std::any_of(arguments.values.begin(), arguments.values.end(),
                           [&](const auto& value) { return value.first == name; });
    };
    if (arguments.undo && !arguments.values.empty())
        throw UsageError("--undo and --set exclude each other");
    if (arguments.dryRun && !arguments.undo && arguments.values.empty())
        throw UsageError("--dry-run goes with --set or --undo");
    if (isSet("beam_center_x") != isSet("beam_center_y"))
        throw UsageError("beam_center_x and beam_center_y are one line and are set together");
}

void takeFiles(const std::vector<std::string>& words, const std::string& commandName,
               Arguments& arguments)
{
    if (arguments.command == Command::Header) {
        if (words.empty() != arguments.undo)
            throw UsageError(arguments.undo ? "--undo takes no files" : "header needs a file");
        arguments.files = words;
        return;
    }
    const bool converts =
        arguments.command == Command::Convert || arguments.command == Command::Render;
    const bool counts = arguments.command == Command::Peaks;
    const std::size_t wanted = converts || counts ? 2 : 1;
    if (words.size() != wanted)
        throw UsageError(commandName + " needs " +
                         (converts ? "two files"
                          : counts ? "a number and a file"
                                   : "one file") +
                         ", not " + std::to_string(words.size()) + (counts ? " words" : ""));
    if (counts)
        arguments.count = toCount(words[0], "The number of peaks");
    arguments.file = words[counts ? 1 : 0];
    if (converts) {
        arguments.output = words[1];
        arguments.format = toFormat(arguments.output, arguments.command);
    }
}

}  // namespace

Arguments Arguments::parse(const std::vector<std::string>& words)
{
    Arguments arguments;
    if (words.empty())
        throw UsageError("A command is needed");
    const auto endOfOptions = std::find(words.begin(), words.end(), "--");
    const auto asked = [&](const char* option) {
        return std::find(words.begin(), endOfOptions, option) != endOfOptions;
    };
    if (asked("--help") || asked("-h"))
        return arguments;
    if (words[0] == "--version") {
        arguments.command = Command::Version;
        return arguments;
    }
    arguments.command = toCommand(words[0]);
    takeFiles(readOptions(words, arguments), words[0], arguments);
    if (arguments.command == Command::Roi && !arguments.region.defined)
        throw UsageError("roi needs --line, --box, --circle or --powder");
    checkHeader(arguments);
    if (arguments.all && arguments.frame)
        throw UsageError("--all and --frame exclude each other");
    if (arguments.series && arguments.frame)
        throw UsageError("--series and --frame exclude each other");
    if (arguments.datasets && (arguments.frame || arguments.rawHeader || !arguments.pixels.empty()))
        throw UsageError("--datasets goes with --json alone");
    return arguments;
}

std::string Arguments::usage()
{
    return R"(Usage: tarvik-image info [--json] [--frame N] [--raw-header] [--pixel X,Y]... FILE
       tarvik-image info --datasets [--json] FILE
       tarvik-image header [--set NAME=VALUE]... [--dry-run] FILE...
       tarvik-image header --undo [--dry-run]
       tarvik-image stats [--json] [--frame N] [--count-at V]... FILE
       tarvik-image peaks [--json] [--frame N] COUNT FILE
       tarvik-image roi [--json] [--frame N | --series] REGION FILE
       tarvik-image geometry [--json] [--frame N] [--at X,Y]... [--rings N] FILE
       tarvik-image thumbnail [--json] [--frame N] FILE
       tarvik-image play [--frames N] [--no-preloader] FILE
       tarvik-image convert [--frame N | --all] FILE OUT.cbf|.tif|.tiff|.h5
       tarvik-image render [--frame N] [--table NAME] [--background B] [--foreground F]
                           [--contrast RANGE] [--scale K] [--largest] FILE OUT.png
       tarvik-image --help | --version

FILE is a CBF, TIFF, EDF or HDF5 image; with it comes the whole series it belongs to.
FILE::/path/in/file is one data set of an HDF5 file, or the images of one of its groups.

info      tells format, series, size, statistics and header of an image
  --json        as one JSON object
  --raw-header  with the header text of the file
  --pixel X,Y   with the value of a pixel; may be given several times
  --datasets    tells all data sets of an HDF5 file that can be shown instead; * marks the one
                that FILE alone shows
header    prints the header of each FILE
  --set NAME=VALUE  writes a value into the headers of the FILEs, which must be CBF files; may be
                given several times. NAME is rotation_angle, rotation_angle_step, beam_center_x and
                beam_center_y together, wavelength, detector_distance or filter_transmission
  --undo        puts the lines back that the last write replaced, of this command or of the viewer
  --dry-run     shows what --set or --undo would change, and changes nothing
stats     tells the numbers of the pixels that the mask does not exclude
  --count-at V  with the number of pixels of value at most V; may be given several times
peaks     lists the strongest local maxima, at most COUNT and 1000: x, y, value
roi       tells numbers and curves of a region of interest, which is one of
  --line X0,Y0,X1,Y1
  --box X0,Y0,X1,Y1               the corner X1,Y1 lies outside
  --circle X,Y,R,ANGLE            a spot with its background; a section at ANGLE degrees
  --powder X,Y,INNER,OUTER        mean over the radius around a centre
  --series      mean, sum and maximum in each image of the series, a line for each, and of a
                circle the intensity above its background; "nan" where the mask leaves no
                pixel or the image can't be read
  --json        stats, peaks, roi: as one JSON object; with --series one for each image
geometry  tells what the header says of beam centre, distances and resolutions
  --json        as one JSON object
  --at X,Y      with distance from the beam centre and resolution of a pixel; may be given
                several times
  --rings N     with N resolution rings as the viewer draws them
thumbnail tells the size of the reduced picture of an image
  --json        with its pixels and those of its mask, row by row, as one JSON object
play      runs through a series as fast as a view can, from the image that FILE names on, and
          tells frames per second and what took how long
  --frames N    at most N images behind the first one
  --no-preloader  reads all images itself
convert   writes an image in another format
  --all         all images of the series: numbered files, or the frames of one HDF5 series
render    makes a PNG picture as the viewer shows it
  --table NAME  HDR (default), GS, H, RB, V or C, or "High Dynamic Range", "Grey Scale",
                "Heat", "Rainbow", "Viridis", "Cividis"
  --background B, --foreground F
                intensities of the first and the last linear colour; computed when absent
  --contrast RANGE
                computes these two otherwise: LOW%:HIGH%, such as 0.1%:99.9%, spans this part of
                the pixels, sigma three sigma around the mean
  --scale K     2, 3, ... enlarges; 0.5, 0.25, ... takes every second, fourth, ... pixel
  --largest     takes the largest good pixel of each such block instead

--frame N       the image of that number; without it the one that FILE names

Exit code: 0 done, 1 a file can't be read or written, 2 wrong usage.
)";
}

}  // namespace tarvik::tool

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// tarvik-image: describes, analyses, converts and renders detector images without a window.
#include "bin/image/Analysis.h"
#include "bin/image/Arguments.h"
#include "bin/image/Convert.h"
#include "bin/image/CrashGuard.h"
#include "bin/image/DatasetReport.h"
#include "bin/image/GeometryReport.h"
#include "bin/image/Header.h"
#include "bin/image/Info.h"
#include "bin/image/Play.h"
#include "bin/image/Render.h"
#include "bin/image/SeriesRegion.h"
#include "bin/image/ThumbnailReport.h"
#include "imagelib/image/MException.h"

#include <algorithm>
#include <iostream>
#include <new>

namespace {

using tarvik::tool::Arguments;

constexpr int Done = 0;
constexpr int Failed = 1;
constexpr int WrongUsage = 2;

int fail(std::string reason)
{
    // One line, even if the reason has several.
    std::replace_if(
        reason.begin(), reason.end(), [](unsigned char letter) { return letter < ' '; }, ' ');
    std::cerr << "tarvik-image: " << reason << std::endl;
    return Failed;
}

/// @returns the exit code
int run(const Arguments& arguments)
{
    int code = Done;
    switch (arguments.command) {
    case Arguments::Command::Help:
        std::cout << Arguments::usage();
        break;
    case Arguments::Command::Version:
        std::cout << "tarvik-image " TARVIK_VERSION "\n";
        break;
    case Arguments::Command::Info: {
        if (arguments.datasets) {
            tarvik::tool::DatasetReport::run(arguments, std::cout);
            break;
        }
        const tarvik::tool::Info info(arguments);
        if (arguments.json)
            info.writeJson(std::cout);
        else
            info.writeText(std::cout);
        break;
    }
    case Arguments::Command::Header:
        for (const std::string& reason : tarvik::tool::Header(arguments).run(std::cout))
            code = fail(reason);
        break;
    case Arguments::Command::Stats:
    case Arguments::Command::Peaks:
    case Arguments::Command::Roi:
        if (arguments.series)
            tarvik::tool::seriesregion::run(arguments, std::cout);
        else
            tarvik::tool::Analysis(arguments).write(std::cout);
        break;
    case Arguments::Command::Geometry: {
        const tarvik::tool::GeometryReport report(arguments);
        if (arguments.json)
            report.writeJson(std::cout);
        else
            report.writeText(std::cout);
        break;
    }
    case Arguments::Command::Thumbnail:
        tarvik::tool::ThumbnailReport::run(arguments, std::cout);
        break;
    case Arguments::Command::Play:
        tarvik::tool::Play::run(arguments, std::cout);
        break;
    case Arguments::Command::Convert:
        tarvik::tool::Convert(arguments).run();
        break;
    case Arguments::Command::Render:
        tarvik::tool::Render::run(arguments);
        break;
    }
    if (!std::cout.flush())
        throw morvend::MRuntimeException("Cannot write to standard output");
    return code;
}

int runCommand(const std::vector<std::string>& words)
{
    std::string file;
    try {
        const Arguments arguments = Arguments::parse(words);
        file = arguments.file;
        return run(arguments);
    } catch (const tarvik::tool::UsageError& error) {
        std::cerr << Arguments::usage() << '\n';  // first, so that the reason stays in sight
        fail(error.what());
        return WrongUsage;
    } catch (const std::bad_alloc&) {
        return fail("Not enough memory: " + file);
    } catch (const std::exception& error) {
        return fail(error.what());
    }
}

}  // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    return tarvik::tool::CrashGuard::run([&] { return runCommand(words); }, fail);
}

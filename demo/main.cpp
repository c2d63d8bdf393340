// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// tarvik-demo-data: exit code 0 for success, 1 when a file can't be written, 2 for wrong arguments.
#include "demo/DemoOptions.h"
#include "demo/DemoSet.h"

#include "imagelib/image/MException.h"

#include <cstdio>
#include <exception>

#include <unistd.h>

namespace {

/// One line for each series; on a terminal it counts the frames.
void writeWithProgress(const tarvik::demo::DemoOptions& options)
{
    const bool terminal = ::isatty(STDERR_FILENO) != 0;
    for (const tarvik::demo::SeriesPlan& plan : options.series) {
        tarvik::demo::writeSeries(options.directory, plan, options.seed, [&](int done) {
            if (terminal || done == plan.frames)
                std::fprintf(stderr, "%s%s: %d of %d frames%s", terminal ? "\r" : "",
                             plan.size.c_str(), done, plan.frames, done == plan.frames ? "\n" : "");
        });
    }
}

}  // namespace

int main(int argc, char** argv)
{
    tarvik::demo::DemoOptions options;
    try {
        options = tarvik::demo::parseOptions({argv + 1, argv + argc});
    } catch (const morvend::MBadParameterException& failure) {
        // The usage comes first, so that the reason stays in sight.
        std::fprintf(stderr, "%s\ntarvik-demo-data: %s\n", tarvik::demo::Usage, failure.what());
        return 2;
    }
    if (options.help) {
        std::fputs(tarvik::demo::Usage, stdout);
        return 0;
    }
    try {
        writeWithProgress(options);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "tarvik-demo-data: %s\n", failure.what());
        return 1;
    }
    return 0;
}

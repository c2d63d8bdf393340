// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Walks over the images of a series and writes them.
#include "bin/image/Convert.h"

#include "bin/image/CrashGuard.h"
#include "bin/image/Progress.h"
#include "bin/image/SourceGuard.h"
#include "bin/image/StopSignals.h"
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageWriter.h"
#include "logic/output/StagingFolder.h"

#include <algorithm>
#include <utility>

namespace tarvik::tool {

using namespace morvend;
using namespace morvend::imglib;

Convert::Convert(Arguments arguments)
    : _arguments(std::move(arguments))
{
    CrashGuard::note("opening the file: " + _arguments.file);
    _opened = _series.open(_arguments.file);
}

std::string Convert::numberedName(const std::string& output, int number)
{
    constexpr std::size_t Digits = 5;
    std::string text = std::to_string(number);
    text.insert(0, Digits - std::min(Digits, text.size()), '0');
    const std::size_t dot = output.rfind('.');
    return output.substr(0, dot) + '_' + text + output.substr(dot);
}

std::string Convert::target(int number) const
{
    return _arguments.all ? numberedName(_arguments.output, number) : _arguments.output;
}

MImage Convert::image(int number) const
{
    CrashGuard::note("converting image " + std::to_string(number) + ": " + _arguments.file);
    return _series.at(number);
}

int Convert::firstNumber() const
{
    return _arguments.all ? _series.first() : _arguments.frame.value_or(_opened);
}

int Convert::nextNumber(int number) const { return _arguments.all ? _series.next(number) : -1; }

void Convert::guardSources() const
{
    SourceGuard guard(_arguments.file, _series);
    if (_arguments.format == Arguments::Format::Hdf5)
        return guard.check(_arguments.output);
    for (int number = firstNumber(); number >= 0; number = nextNumber(number))
        guard.check(target(number));
}

void Convert::run()
{
    guardSources();
    if (_arguments.format == Arguments::Format::Hdf5)
        writeSeries();
    else
        writeFiles();
}

void Convert::writeFiles() const
{
    const MImageWriter::Format format =
        _arguments.format == Arguments::Format::Cbf ? MImageWriter::CBF : MImageWriter::TIFF;
    Progress progress(_series.last());
    const StopSignals stop;
    for (int number = firstNumber(); number >= 0; number = nextNumber(number)) {
        stop.check();
        progress.show(number);
        MImageWriter::write(image(number), target(number), format);
    }
}

void Convert::writeSeries() const
{
    // Set up before the staging folder exists: otherwise a signal would leave it there.
    const StopSignals stop;
    const StagingFolder staging(_arguments.output);
    {
        Progress progress(_series.last());
        std::unique_ptr<MHdf5Writer> writer;
        for (int number = firstNumber(); number >= 0; number = nextNumber(number)) {
            stop.check();
            progress.show(number);
            const MImage next = image(number);
            if (!writer)
                writer = std::make_unique<MHdf5Writer>(staging.path(), 0,
                                                       next.optionalData().nexusTree(),
                                                       MCompression::BITSHUFFLE_LZ4);
            writer->write(next);
        }
        if (writer)
            writer->flush();
    }
    stop.check();
    SourceGuard guard(_arguments.file, _series);
    staging.publish([&guard](const std::string& place) { guard.check(place); });
}

}  // namespace tarvik::tool

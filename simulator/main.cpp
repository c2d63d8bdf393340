// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// tarvik-control-unit-simulator: exit code 1 when it can't serve, 2 for wrong arguments.
#include "simulator/ControlUnit.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>

#include <cstdio>
#include <stdexcept>

using namespace tarvik::simulator;

namespace {

constexpr int MostSide = 16384;

QString description()
{
    return "A detector's control unit without a detector: parameters, series, stream and monitor "
           "as\n"
           "in docs/protocols/control-unit.md, with frames of a simulated crystal.\n\n"
           "A fault script has lines METHOD PATTERN [skip=N] [times=N] FAULT [ARGUMENT]. METHOD "
           "is\n"
           "GET, PUT, POST, * or STREAM; PATTERN a path with * for anything, or start, frame, end "
           "of\n"
           "the stream. The first line that matches counts; \"#\" begins a comment. For example\n"
           "  PUT */count_time times=1 delay 2000\n"
           "  STREAM frame skip=10 times=3 lose\n\n"
           "Faults:\n" +
           FaultScript::help();
}

QSize sizeOf(const QString& text)
{
    const auto match = QRegularExpression("^([0-9]{1,5})x([0-9]{1,5})$").match(text);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (size.width() < 16 || size.height() < 16 || size.width() > MostSide ||
        size.height() > MostSide)
        throw std::invalid_argument("a frame size is WIDTHxHEIGHT, 16 to 16384 each");
    return size;
}

quint16 portOf(const QString& text)
{
    bool good = false;
    const quint16 port = text.toUShort(&good);
    if (!good)
        throw std::invalid_argument("a port is a number from 0 (any free one) to 65535");
    return port;
}

void readFaults(const QString& path, FaultScript& faults)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::invalid_argument((path + ": " + file.errorString()).toStdString());
    faults.add(QString::fromUtf8(file.readAll()));
}

}  // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(description());
    parser.addHelpOption();
    parser.addOptions({{"port", "TCP port of the HTTP service; 0 takes any free one.", "P", "8080"},
                       {"frame-size", "Pixels of a frame.", "WxH", "2072x2168"},
                       {"faults", "A script of what shall go wrong.", "FILE"},
                       {"uninitialized", "Begin in error, until initialize is called."}});
    parser.process(application);
    try {
        UnitOptions options;
        options.port = portOf(parser.value("port"));
        options.frame = sizeOf(parser.value("frame-size"));
        options.initialized = !parser.isSet("uninitialized");
        FaultScript checked;
        if (parser.isSet("faults"))
            readFaults(parser.value("faults"), checked);
        ControlUnit unit(options);
        if (parser.isSet("faults"))
            readFaults(parser.value("faults"), unit.faults());
        std::printf("Listening on port %d\n", int(unit.port()));
        std::fflush(stdout);
        return QCoreApplication::exec();
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr, "tarvik-control-unit-simulator: %s\n", error.what());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tarvik-control-unit-simulator: %s\n", error.what());
        return 1;
    }
}

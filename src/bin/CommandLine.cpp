// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The options of the program and their special cases.
#include "bin/CommandLine.h"

namespace {

constexpr const char* usageText =
    "usage: tarvik [options] [ <image_file_1> [ image_file_2 [...]] ]\n"
    "\n"
    " options:\n"
    "  -h, -help, --help               Print this help text.\n"
    "  --disableGLSL                   Disable OpenGL shaders\n"
    "  --daemon <message queue id>  Run as daemon. For internal use only.\n"
    "  --preloader <message queue id>  Run as preloader. For internal use only.\n"
    "  --parent-pid <pid>  Pid of parent process. For internal use only.\n"
    "\n"
    "  <image_file 1> [ image_file _2 [...]] \n"
    "     Display image_file_1, image_file_2, ... in separate windows.\n";

void end(CommandLine& line, int exitCode, const std::string& text)
{
    line.exitCode = exitCode;
    line.text = text + '\n';
}

void endWrong(CommandLine& line, const QString& reason)
{
    end(line, 1, usageText);
    line.reason = "tarvik: " + reason.toStdString() + '\n';
}

/// Stores the value of an option. The value is not skipped: callers continue
/// with it as the next argument, so that the viewer takes it for an image file too.
void takeValue(CommandLine& line, const QString& option, const QString* value)
{
    if (!value)
        return endWrong(line, option + " needs a value");
    if (option == QLatin1String("--parent-pid")) {
        bool isInteger = false;
        line.parentPid = value->toInt(&isInteger, 10);
        if (!isInteger)
            endWrong(line, option + " needs a whole number, not \"" + *value + '"');
        return;
    }
    line.role = option == QLatin1String("--daemon") ? CommandLine::Role::Daemon
                                                    : CommandLine::Role::Preloader;
    line.queueId = *value;
}

/// An argument that is no option is a file, whatever its form.
void takeFile(CommandLine& line, const QString& argument)
{
    line.imageFiles.append(argument);
    if (argument.startsWith('-'))
        line.notes +=
            "tarvik: " + argument.toStdString() +
            " is no option and taken for an image file; tarvik --help lists the options\n";
}

}  // namespace

CommandLine CommandLine::parse(const QStringList& arguments, const std::string& version)
{
    static const QStringList helpOptions = {"-help", "--help"};  // "-h" is a file name
    static const QStringList versionOptions = {"-version", "--version"};
    static const QStringList valueOptions = {"--daemon", "--preloader", "--parent-pid"};

    CommandLine line;
    for (qsizetype i = 1; i < arguments.size() && !line.exitCode; ++i) {
        const QString& argument = arguments[i];
        if (helpOptions.contains(argument)) {
            end(line, 0, usageText);
        } else if (versionOptions.contains(argument)) {
            end(line, 0, version);
        } else if (valueOptions.contains(argument)) {
            const QString* value = i + 1 < arguments.size() ? &arguments[i + 1] : nullptr;
            takeValue(line, argument, value);
        } else if (argument == QLatin1String("--disableGLSL")) {
            line.glslEnabled = false;
        } else if (!argument.startsWith(QLatin1String("-psn_"))) {  // added by some desktops
            takeFile(line, argument);
        }
    }
    return line;
}

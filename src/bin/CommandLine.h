// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the arguments of the program ask for.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <string>

/// The meaning of a command line. Pure: parsing prints nothing and ends nothing.
struct CommandLine {
    enum class Role { Viewer = 0, Daemon = 1, Preloader = 2 };

    Role role = Role::Viewer;
    /// Message queue of the daemon or the preloader.
    QString queueId;
    /// Files that the viewer opens, each in a view of its own.
    QStringList imageFiles;
    /// The process ends when this one has ended; not used unless positive.
    int parentPid = 0;
    bool glslEnabled = true;

    /// Set if the process must print `text` on standard output, then `reason` on standard error,
    /// and end at once.
    std::optional<int> exitCode;
    std::string text;
    /// What is wrong with the arguments, in a line; empty if they are right.
    std::string reason;
    /// Lines for standard error about arguments that look like options but are taken for image
    /// files; one for each.
    std::string notes;

    /// @param arguments with the program's name first
    /// @param version what --version prints
    static CommandLine parse(const QStringList& arguments, const std::string& version);
};

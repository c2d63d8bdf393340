// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The folders where file dialogs start.
#pragma once

#include <QString>

#include <functional>

/// That of the open dialog is remembered among the user's settings under "ImageDirectory".
namespace open_directory {

/// The remembered folder, or that of a remembered file; the current folder if neither exists, or
/// their file system does not answer.
QString get();
/// A folder itself, or that of a file; empty if it doesn't exist, or its file system does not
/// answer. The dialog would wait there for ever.
QString answering(const QString& path);
/// What a question to a file system, asked on a thread of its own, gives within two seconds; empty
/// if it takes longer. The thread is left behind then.
QString inTime(std::function<QString()> question);
/// Remembers a folder, or the folder of a file. A path that doesn't exist is ignored.
void set(const QString& path);
/// The same on a worker, for a file system that may not answer. The last call counts.
void setSoon(const QString& path);

}  // namespace open_directory

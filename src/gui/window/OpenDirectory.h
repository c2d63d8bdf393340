// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The folder where the open dialog starts.
#pragma once

#include <QString>

/// Remembered among the user's settings under "ImageDirectory".
namespace open_directory {

/// The remembered folder, or that of a remembered file; the current folder if neither exists.
QString get();
/// Remembers a folder, or the folder of a file. A path that doesn't exist is ignored.
void set(const QString& path);
/// The same on a worker, for a file system that may not answer. The last call counts.
void setSoon(const QString& path);

}  // namespace open_directory

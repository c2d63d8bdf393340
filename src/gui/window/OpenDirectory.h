// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The folder where the next file is looked for.
#pragma once

#include <QString>

/// Remembered among the user's settings under "ImageDirectory".
namespace OpenDirectory {

/// The remembered folder, or that of a remembered file; the current folder where neither exists.
QString get();
/// Remembers a folder, or the folder of a file. What does not exist is ignored.
void set(const QString& path);

}  // namespace OpenDirectory

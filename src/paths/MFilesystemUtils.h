// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// File names as text: made absolute and tidy, and split into their parts.
#pragma once

#include <string>

namespace morvend::imglib::utils {

/// Separates the names of a path, on every system.
inline constexpr char pathSeparator = '/';

/// Makes a path absolute, from the working directory, and removes "//", "/./", "name/../" and a
/// trailing "/" from it. Works on the text only: files need not exist and links are not followed.
/// An empty path stays empty; a trailing "/.." or "/." stays as it is.
/// @throws MNoFileAccessException when a ".." leads above the root or the working directory is
/// not known; the path is unchanged then
void normalizePath(std::string& path);

/// Normalizes `fileName` and splits it: `directory` is all before the last "/" and empty for a file
/// in the root directory; the last "." of the name after it separates `baseName` from `extension`,
/// neither of which has the dot. The root alone has the directory "/".
/// @throws MNoFileAccessException as normalizePath does
void parseFileName(std::string& fileName, std::string& extension, std::string& baseName,
                   std::string& directory);

}  // namespace morvend::imglib::utils

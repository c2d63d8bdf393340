// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a user names to see an image: a file, and perhaps one of the data sets in it.
#pragma once

#include <string>

namespace morvend::imglib {

/// A file and a place in it. As a text "FILE::/path/in/file", which is how command lines, views and
/// the preloader pass it on; it is taken apart where the file is opened.
struct ImagePath {
    std::string file;
    /// From the root group of the file on, without a slash at its end. Empty for the images that
    /// the file shows by itself.
    std::string dataset;

    /// Takes a text apart. If the text names an existing file it is that file, whatever its
    /// name holds; else the shortest part before a "::/" that exists is; else the first part.
    /// Looks at the file system. Thread: any but the GUI's.
    static ImagePath of(const std::string& text);

    std::string text() const { return dataset.empty() ? file : file + "::" + dataset; }
};

}  // namespace morvend::imglib

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Construction of a named configuration file.
#include "logic/support/ConfigFile.h"

#include <utility>

ConfigFile::ConfigFile(std::string fileName, char separator)
    : _fileName(std::move(fileName))
    , _separator(separator)
{}

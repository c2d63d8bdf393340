// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A named configuration file.
#pragma once

#include <string>

/// Names a configuration file and the character that separates its keys from its values. It reads
/// nothing itself. No caller yet: configuration files of the window.
class ConfigFile {
public:
    ConfigFile(std::string fileName, char separator);

    /// 0 as long as nothing has failed.
    int fail() const { return _fail; }
    const std::string& fileName() const { return _fileName; }
    char separator() const { return _separator; }

private:
    std::string _fileName;
    char _separator;
    int _fail = 0;
};

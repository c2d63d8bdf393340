// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Why the header of a file was not rewritten.
#pragma once

#include "imagelib/image/MException.h"

#include <string>

/// A file that stays as it is. what() is a sentence with file and reason.
class HeaderFileError : public morvend::MRuntimeException {
public:
    explicit HeaderFileError(const std::string& reason)
        : HeaderFileError(reason, "Error: " + reason + '\n')
    {}
    /// @param printed  what a batch of the window prints on standard error; may be empty
    HeaderFileError(const std::string& reason, std::string printed)
        : MRuntimeException(reason)
        , _printed(std::move(printed))
    {}

    const std::string& printed() const { return _printed; }

private:
    std::string _printed;
};

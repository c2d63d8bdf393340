// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The header values that can be changed in files.
#pragma once

#include "imagelib/image/MImage.h"

#include <string>
#include <string_view>

namespace tarvik::tool {

struct HeaderField {
    using Values = morvend::imglib::MBasicImageOptionalData<>;

    std::string_view name;
    void (Values::*set)(const float&);

    /// @returns null for a name that none has
    static const HeaderField* find(std::string_view name);
    /// All names, for users.
    static std::string names();
};

}  // namespace tarvik::tool

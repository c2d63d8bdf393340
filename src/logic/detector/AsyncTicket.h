// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What travels with every request to a detector.
#pragma once

#include <QMetaType>

#include <cstdint>
#include <string>

/// Who chooses count time, trigger mode and threshold of a series: the program, or the user.
enum class HalvoMode { Automatic = 0, Manual = 1 };

/// The circumstances of a request when it was issued; later changes don't touch it. A value.
struct AsyncTicket {
    std::string host;  ///< its name or address, without scheme and port
    int port = 80;
    HalvoMode mode = HalvoMode::Automatic;
    std::uint32_t id = 0;  ///< rises from 1 on, never used twice
};

Q_DECLARE_METATYPE(AsyncTicket)

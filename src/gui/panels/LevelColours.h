// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The colours that intensities have under a contrast.
#pragma once

#include "logic/records/ContrastData.h"

#include <QRgb>

#include <vector>

namespace panels {

/// All black without a colour table.
std::vector<QRgb> levelColours(const std::vector<double>& intensities,
                               const ContrastData& contrast);

}  // namespace panels

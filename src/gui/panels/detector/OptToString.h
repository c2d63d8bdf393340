// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A number from the detector in a field that a user types in.
#pragma once

#include <QString>

#include <optional>

/// The text of a field after the detector has reported a value: what was typed stays if it means
/// the same, so that 1e-3 does not turn into 0.001.
/// @param present  the text in the field
/// @param value  empty if unknown: the result is empty then
QString optToString(const QString& present, std::optional<int> value);
QString optToString(const QString& present, std::optional<double> value);

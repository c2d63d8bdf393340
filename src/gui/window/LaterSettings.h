// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Writes of the user's settings that hold nothing up.
#pragma once

#include <QString>
#include <QVariant>

#include <functional>

/// Writes on a worker, one after the other in the order of the calls. Each write replaces the file
/// of the settings as a whole, so that a crash leaves the old one or the new one. Thread: any.
namespace later_settings {

void set(const QString& key, const QVariant& value);
/// The value set last, also while it is not written yet; else the stored one.
QVariant value(const QString& key);
/// Replaces a value by what is made of the stored one, which another program may have written
/// meanwhile.
void change(const QString& key, std::function<QVariant(const QVariant&)> change);
/// Waits until all is written, for a second at most. For the end of the program.
void finish();

}  // namespace later_settings

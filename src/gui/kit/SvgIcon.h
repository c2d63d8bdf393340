// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pictures of the resources as icons.
#pragma once

#include <QIcon>
#include <QSize>
#include <QString>

/// The SVG picture of a resource, rendered onto a transparent ground of the given size in pixels
/// (and of twice that size, for screens of high density); dimmed if disabled.
QIcon svgIcon(const QString& resource, const QSize& size);

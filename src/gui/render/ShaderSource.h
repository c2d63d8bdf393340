// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Texts of shaders from the resources.
#pragma once

#include <QByteArray>
#include <QString>

namespace render {

/// The whole text of a resource, with each line `#include "name"` replaced by the text of the
/// resource ":/name", so that shaders that differ only in a type share the rest. Line numbers in
/// messages of the compiler stay those of the resources, with 1 as the source of included lines.
/// A missing resource is a programmer's error and ends in an assertion.
QByteArray shaderSource(const QString& resource);

}  // namespace render

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Icons and shaders compiled into the program.
#pragma once

/// Registers the resources under ":/". They are in a static library, of which the linker takes
/// only what is referenced, so whoever reads a resource calls this first. Cheap when repeated.
void initResources();

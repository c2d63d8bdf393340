// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Icons and shaders compiled into the program.
#pragma once

/// Registers the resources under ":/". They stand in a static library, from which the linker takes
/// only what is called for, so whoever reads a resource calls this first. Cheap when repeated.
void initResources();

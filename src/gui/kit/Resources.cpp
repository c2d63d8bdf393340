// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Icons and shaders compiled into the program.
#include "gui/kit/Resources.h"

#include <QtCore/qglobal.h>

void initResources() { Q_INIT_RESOURCE(tarvik); }

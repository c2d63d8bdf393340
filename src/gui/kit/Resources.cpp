// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/Resources.h"

#include <QtCore/qglobal.h>

void initResources() { Q_INIT_RESOURCE(tarvik); }

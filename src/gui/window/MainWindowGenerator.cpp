// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/MainWindowGenerator.h"

#include "gui/window/MainWindow.h"

MainWindowGenerator::MainWindowGenerator(TarvikCore* core, bool glslEnabled)
    : ObjectGenerator(core)
    , _glslEnabled(glslEnabled)
{}

void* MainWindowGenerator::virtualmake() { return new MainWindow(*core(), _glslEnabled, false); }

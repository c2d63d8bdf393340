// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Makes main windows for callers on other threads.
#pragma once

#include "logic/core/ObjectGenerator.h"

/// Makes a MainWindow, not shown yet, which goes alone when it is closed.
class MainWindowGenerator : public ObjectGenerator {
    Q_OBJECT
public:
    MainWindowGenerator(TarvikCore* core, bool glslEnabled);

protected:
    void* virtualmake() override;

private:
    const bool _glslEnabled;
};

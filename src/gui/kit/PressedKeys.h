// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which keys are held down.
#pragma once

class QKeyEvent;

/// The keys of the keyboard that are down, for gestures of the mouse that depend on a held key.
/// Who filters the events of a window records them here. Thread: any.
class PressedKeys {
public:
    /// A key never seen is up.
    static bool pressed(int key);
    /// Takes a press or a release, those of Escape apart.
    static void record(const QKeyEvent& event);
    /// All keys are up, as when the keyboard goes to another program.
    static void clear();
};

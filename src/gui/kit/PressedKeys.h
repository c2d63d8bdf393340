// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which keys are held down.
#pragma once

class QKeyEvent;

/// The keys of the keyboard that are down, for gestures of the mouse that depend on a held key.
/// The event filter of a window records them here. Thread: any.
class PressedKeys {
public:
    /// True while the key is down; an unknown key is up.
    static bool pressed(int key);
    /// Records a press or a release; ignores Escape.
    static void record(const QKeyEvent& event);
    /// Sets all keys up, as when another program gets the keyboard.
    static void clear();
};

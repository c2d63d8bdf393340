// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which keys are held down.
#pragma once

class QEvent;

/// The keys of the keyboard that are down, for gestures of the mouse that depend on a held key.
///
/// A filter of events records them; it also tells when the keyboard goes to another program, which
/// leaves no key down, since nobody would hear of its release. Thread: any.
class PressedKeys {
public:
    /// A key never seen is up.
    static bool pressed(int key);
    /// Takes a key event, Escape apart, or a loss of the keyboard; other events are ignored.
    static void record(const QEvent& event);
    /// All keys are up.
    static void clear();
};

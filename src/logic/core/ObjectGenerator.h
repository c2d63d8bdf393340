// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Makes an object on the GUI thread for a caller on another thread.
#pragma once

#include <QObject>

#include <atomic>

class TarvikCore;

/// A subclass makes one kind of object. make() may be called from any thread; the caller must hold
/// no lock that the GUI thread needs, since it waits for that thread. No caller yet: the interface
/// for scripts.
class ObjectGenerator : public QObject {
    Q_OBJECT
public:
    explicit ObjectGenerator(TarvikCore* core);

    /// Makes the object on the GUI thread and returns it; the caller knows its type. Blocks until
    /// the GUI thread has served the call.
    void* make();
    /// The object made last, null before the first.
    void* object() const { return _object; }

protected:
    /// Makes the object. Runs on the GUI thread.
    virtual void* virtualmake() = 0;
    TarvikCore* core() const { return _core; }

private:
    TarvikCore* _core;
    std::atomic<void*> _object = nullptr;
};

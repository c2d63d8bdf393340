// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A setting that follows what changes often.
#pragma once

#include <QString>
#include <QTimer>
#include <QVariant>

#include <functional>

/// Writes a value among the user's settings a while after it has changed, and at the end of its
/// life: a crash loses the changes of two seconds. Thread: GUI only.
class SavedSetting {
public:
    /// Makes the value to write from the one written last; an invalid one is not written.
    using Value = std::function<QVariant(const QVariant& written)>;

    SavedSetting(QString key, Value value);
    ~SavedSetting();

    /// The value has changed.
    void changed();
    /// The value that was stored at the start; later writes don't change it.
    const QVariant& atFirst() const { return _atFirst; }

private:
    void _save();

    const QString _key;
    const Value _value;
    const QVariant _atFirst;
    QVariant _written;
    QTimer _timer;
};

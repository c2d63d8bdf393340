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
    /// What to write in place of the value written last; invalid for nothing.
    using Value = std::function<QVariant(const QVariant& written)>;

    SavedSetting(QString key, Value value);
    ~SavedSetting();

    /// The value has changed.
    void changed();
    /// As it was at the start, and not as it is written from then on.
    const QVariant& atFirst() const { return _atFirst; }

private:
    void _save();

    const QString _key;
    const Value _value;
    const QVariant _atFirst;
    QVariant _written;
    QTimer _timer;
};

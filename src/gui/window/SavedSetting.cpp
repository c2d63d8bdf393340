// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/SavedSetting.h"

#include "gui/window/LaterSettings.h"

#include <QSettings>

#include <chrono>
#include <utility>

SavedSetting::SavedSetting(QString key, Value value)
    : _key(std::move(key))
    , _value(std::move(value))
    , _atFirst(QSettings().value(_key))
    , _written(_atFirst)
{
    _timer.setSingleShot(true);
    _timer.setInterval(std::chrono::seconds(2));
    QObject::connect(&_timer, &QTimer::timeout, &_timer, [this] { _save(); });
}

SavedSetting::~SavedSetting()
{
    if (_timer.isActive())
        _save();
}

void SavedSetting::changed()
{
    // Not started again by each change, which would wait for the end of a movie.
    if (!_timer.isActive())
        _timer.start();
}

void SavedSetting::_save()
{
    const QVariant value = _value(_written);
    if (!value.isValid() || value == _written)
        return;
    _written = value;
    later_settings::set(_key, value);
}

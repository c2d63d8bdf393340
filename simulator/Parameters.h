// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The parameters of the simulated unit: types, limits, and what one does to the others.
#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QSize>
#include <QString>
#include <QStringList>

#include <map>
#include <optional>
#include <vector>

namespace tarvik::simulator {

/// Why a request failed, as status and words of the protocol.
struct Refusal {
    int status = 400;
    QString code;
    QString message;
};

/// One parameter as the protocol describes it.
struct Parameter {
    QString type;  ///< "bool", "int", "float", "string"
    QString access = "rw";
    QString unit;
    QJsonValue value;
    std::optional<double> min, max;
    QStringList allowed;

    QJsonObject described() const;
    /// Would it take that value now?
    std::optional<Refusal> objection(const QString& name, const QJsonValue& value) const;
};

/// All parameters by part and name, as in "detector/count_time". Thread: one at a time.
class Parameters {
public:
    explicit Parameters(const QSize& frame);

    /// Null if there is none.
    const Parameter* find(const QString& path) const;
    /// The names of a part, sorted.
    QStringList names(const QString& part) const;

    /// Writes, with all consequences. @returns the names that have another value or limit now, or
    /// why nothing was changed
    std::optional<Refusal> write(const QString& path, const QJsonValue& value,
                                 QStringList& changed);

    // For the unit itself, without checks.
    void put(const QString& path, const QJsonValue& value) { _all[path].value = value; }
    double number(const QString& path) const { return find(path)->value.toDouble(); }
    bool flag(const QString& path) const { return find(path)->value.toBool(); }
    QString text(const QString& path) const { return find(path)->value.toString(); }

private:
    void _add(const QString& path, Parameter parameter) { _all[path] = std::move(parameter); }
    void _addDetector(const QSize& frame);
    void _limitCountTime();
    void _followEnergy();
    void _followTrigger();
    void _consequences(const QString& path);

    std::map<QString, Parameter> _all;
};

}  // namespace tarvik::simulator

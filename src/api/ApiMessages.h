// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The requests of a script and the replies, as XML texts; docs/protocols/scripting.md.
#pragma once

#include <QList>
#include <QString>

#include <string>

/// A request, empty and for the object 0 where the text is no document or holds none; `fault` says
/// why then.
struct ApiRequest {
    quint64 object = 0;  ///< 0 is the application itself
    QString command;
    QList<QString> arguments;
    QString fault{};

    /// Any bytes: entities can't be declared, nothing is fetched, and depth is bounded.
    static ApiRequest parse(const std::string& text);
};

/// What a command came to.
struct ApiResult {
    bool success = false;
    QString text;
    QString reason{};  ///< of a failure, in words, where the text does not say it

    static ApiResult of(const QString& text = {}) { return {true, text}; }
    static ApiResult failure(const QString& text = {}, const QString& reason = {})
    {
        return {false, text, reason};
    }
};

/// A reply: one line, ended by a line feed.
std::string apiReply(const ApiResult& result);

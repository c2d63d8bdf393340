// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The requests of a script and the replies, as XML texts; docs/protocols/scripting.md.
#pragma once

#include <QList>
#include <QString>

#include <string>

/// A request, empty and for the object 0 where the text is no document or holds none.
struct ApiRequest {
    quint64 object = 0;  ///< 0 is the application itself
    QString command;
    QList<QString> arguments;

    /// Any bytes: entities are not expanded beyond a bound, nothing is fetched, and depth costs no
    /// stack.
    static ApiRequest parse(const std::string& text);
};

/// What a command came to.
struct ApiResult {
    bool success = false;
    QString text;

    static ApiResult of(const QString& text = {}) { return {true, text}; }
    static ApiResult failure(const QString& text = {}) { return {false, text}; }
};

/// A reply: one line, ended by a line feed.
std::string apiReply(const ApiResult& result);

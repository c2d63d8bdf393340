// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Failures reported to the user.
#pragma once

#include <QDialog>
#include <QSet>
#include <QString>

class QLabel;
class QPlainTextEdit;
class QScrollArea;

/// A modal dialog that shows one message, and all that come while it is open; deletes itself. It
/// grows with its messages up to a part of the screen, and then becomes a scrolling list.
class ErrorDialog : public QDialog {
    Q_OBJECT
public:
    /// @param message  UTF-8
    ErrorDialog(const char* message, QWidget* parent);

    /// Shows a message over the active window and waits until it is closed. If one is already
    /// shown, the message is added to it and the call returns at once: failures in a row
    /// need one click, not one each. Each message also goes to standard error, as a line that
    /// begins with "ERROR: ".
    static void showMessage(const char* message);

private:
    void _add(const QString& message);
    void _stayOnScreen();

    QLabel* const _text;
    QScrollArea* const _area;
    QPlainTextEdit* const _list;  // all messages, shown if there are many
    QSet<QString> _known;
    int _count = 0;
};

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A failure told to the user.
#pragma once

#include <QDialog>

class QLabel;

/// A modal stop that shows one message; deletes itself.
class ErrorDialog : public QDialog {
    Q_OBJECT
public:
    /// @param message  UTF-8
    ErrorDialog(const char* message, QWidget* parent);

    /// Shows a message over the active window and waits until it is closed. While one is shown
    /// already, a further one joins it, and the call returns at once: failures that come in a row
    /// need one click, not one each.
    static void showMessage(const char* message);

private:
    void _add(const QString& message);

    QLabel* const _text;
};

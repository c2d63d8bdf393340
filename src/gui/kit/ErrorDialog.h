// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A failure told to the user.
#pragma once

#include <QDialog>

/// A modal stop that shows one message; deletes itself.
class ErrorDialog : public QDialog {
    Q_OBJECT
public:
    /// @param message  UTF-8
    ErrorDialog(const char* message, QWidget* parent);

    /// Shows a message over the active window and waits until it is closed.
    static void showMessage(const char* message);
};

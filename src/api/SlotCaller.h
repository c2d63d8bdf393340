// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Calls a slot by its name and arguments as texts.
#pragma once

#include "api/ApiMessages.h"

class QObject;

/// Calls the first slot tagged API_CALLABLE whose signature contains the command and that has at
/// least as many parameters as there are arguments, on the thread of the object, and waits for its
/// end. Texts become int and double, 0 where they are no number, QString, and pointers to images
/// and drawing lists. A pointer to int, quint64, double or QString that follows the arguments is
/// the result.
///
/// Fails with "NoMethod" without such a slot; with an empty text and a reason if the command is not
/// its whole name or the number of arguments is not that of its parameters; with what an exception
/// says.
/// The object must stay alive; thread: any but the object's.
ApiResult callSlot(QObject& object, const QString& command, const QList<QString>& arguments);

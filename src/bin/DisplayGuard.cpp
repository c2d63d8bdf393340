// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Without a display the toolkit ends the process, and it offers no way to ask first. Its
// last message does pass through the message handler.
#include "bin/DisplayGuard.h"

#include "logic/support/Console.h"

#include <QStringList>
#include <QtGlobal>

#include <cstdlib>
#include <optional>
#include <utility>

namespace {

/// A message of the toolkit, with its origin.
struct Held {
    QtMsgType type;
    QByteArray category;
    QString text;
};

std::optional<QtMessageHandler> handlerBefore;
QList<Held> held;

std::string reason()
{
    const bool named = !qEnvironmentVariableIsEmpty("DISPLAY") ||
                       !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
                       !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
    if (!named)
        return "DISPLAY is not set";
    for (const Held& message : std::as_const(held))
        if (message.category.startsWith("qt.qpa."))
            return message.text.simplified().toStdString();
    return "the toolkit gives no reason";
}

void hold(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtFatalMsg) {
        console::warn("tarvik: There is no display to show windows on: " + reason() +
                      ". tarvik-image works without one.\n");
        std::_Exit(1);
    }
    held.append({type, context.category, text});
}

}  // namespace

DisplayGuard::DisplayGuard() { handlerBefore = qInstallMessageHandler(hold); }

DisplayGuard::~DisplayGuard() { release(); }

void DisplayGuard::release()
{
    if (!handlerBefore)
        return;
    qInstallMessageHandler(*handlerBefore);
    handlerBefore.reset();
    for (const Held& message : std::exchange(held, {})) {
        const QMessageLogContext context(nullptr, 0, nullptr, message.category.constData());
        qt_message_output(message.type, context, message.text);
    }
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/Look.h"

#include "logic/support/GlobalStyle.h"

#include <QApplication>
#include <QFont>
#include <QStyleFactory>
#include <QSurfaceFormat>

namespace look {

void beforeApplication()
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setVersion(3, 0);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    // Without this option some drivers hand out a core profile whatever profile is requested.
    format.setOption(QSurfaceFormat::DeprecatedFunctions);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    QSurfaceFormat::setDefaultFormat(format);
    QFont::insertSubstitution(GLOBALSTYLE::fontFamily, QStringLiteral("Nimbus Sans"));
}

void applyToApplication()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(darkPalette());
}

QPalette darkPalette()
{
    const QColor window = GLOBALSTYLE::sidebarColor;
    const QColor base(40, 40, 40);
    const QColor text(232, 232, 232);
    const QColor disabled(130, 130, 130);

    QPalette palette(window);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, QColor(50, 50, 50));
    palette.setColor(QPalette::Button, QColor(75, 75, 75));
    palette.setColor(QPalette::Highlight, QColor(20, 100, 220));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(110, 170, 255));
    palette.setColor(QPalette::ToolTipBase, base);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, disabled);
    }
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, disabled);
    return palette;
}

}  // namespace look

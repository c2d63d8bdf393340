// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/SvgIcon.h"

#include "gui/kit/Resources.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <utility>

QIcon svgIcon(const QString& resource, const QSize& size)
{
    initResources();
    QSvgRenderer renderer(resource);
    QIcon icon;
    for (const int density : {1, 2}) {
        for (const auto& [mode, opacity] :
             {std::pair(QIcon::Normal, 1.0), {QIcon::Disabled, 0.35}}) {
            QPixmap picture(size * density);
            picture.fill(Qt::transparent);
            QPainter painter(&picture);
            painter.setOpacity(opacity);
            renderer.render(&painter);
            painter.end();
            picture.setDevicePixelRatio(density);
            icon.addPixmap(picture, mode);
        }
    }
    return icon;
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/Session.h"

#include "imagelib/display/MColorTable.h"
#include "logic/service/TarvikService.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

/// No session has more, whatever the settings hold.
constexpr int MostViews = 1000;

QString text(const char* key) { return QString::fromLatin1(key); }

}  // namespace

Session::View Session::View::of(const QString& file, const TarvikService& service)
{
    const ViewportData viewport = service.viewportData();
    const ContrastData contrast = service.contrastData();
    const auto* table = contrast.colorTable ? contrast.colorTable : service.defaultColorTable();
    return {file,
            service.imageIndex(),
            viewport.offsetX,
            viewport.offsetY,
            viewport.zoomPower,
            contrast.foreground,
            contrast.background,
            table ? QString::fromStdString(table->identifier()) : QString()};
}

void Session::View::apply(TarvikService& service) const
{
    ViewportData viewport = service.viewportData();
    viewport.offsetX = offsetX;
    viewport.offsetY = offsetY;
    viewport.setZoomPower(zoomPower);
    viewport.defined = true;
    service.setViewportData(viewport);

    ContrastData contrast = service.contrastData();
    contrast.foreground = foreground;
    contrast.background = background;
    for (const auto* table : service.colorTables())
        if (QString::fromStdString(table->identifier()) == colours)
            contrast.colorTable = table;
    contrast.defined = true;
    contrast.dragUpdate = false;
    if (std::isfinite(foreground) && std::isfinite(background) && foreground > background)
        service.setContrastData(contrast);
    if (image >= 0 && image != service.imageIndex())
        service.openImage(image);
}

QByteArray Session::toJson() const
{
    QJsonArray list;
    for (const View& view : views)
        list.append(QJsonObject{{text("file"), view.file},
                                {text("image"), view.image},
                                {text("x"), view.offsetX},
                                {text("y"), view.offsetY},
                                {text("zoom"), view.zoomPower},
                                {text("foreground"), view.foreground},
                                {text("background"), view.background},
                                {text("colours"), view.colours}});
    QJsonArray columns;
    for (const QList<int>& sizes : layout) {
        QJsonArray column;
        for (const int size : sizes)
            column.append(size);
        columns.append(column);
    }
    return QJsonDocument(QJsonObject{{text("views"), list},
                                     {text("layout"), columns},
                                     {text("viewportsTied"), viewportsTied},
                                     {text("contrastsTied"), contrastsTied}})
        .toJson(QJsonDocument::Compact);
}

Session Session::fromJson(const QByteArray& json)
{
    Session session;
    const QJsonObject all = QJsonDocument::fromJson(json).object();
    for (const auto& value : all[text("views")].toArray()) {
        const QJsonObject view = value.toObject();
        const QString file = view[text("file")].toString();
        if (file.isEmpty() || session.views.size() == MostViews)
            continue;
        session.views.append({file, view[text("image")].toInt(-1), view[text("x")].toDouble(),
                              view[text("y")].toDouble(), view[text("zoom")].toInt(),
                              view[text("foreground")].toDouble(),
                              view[text("background")].toDouble(),
                              view[text("colours")].toString()});
    }
    for (const auto& column : all[text("layout")].toArray()) {
        QList<int> sizes;
        for (const auto& size : column.toArray())
            sizes.append(size.toInt());
        session.layout.append(sizes);
    }
    session.viewportsTied = all[text("viewportsTied")].toBool(true);
    session.contrastsTied = all[text("contrastsTied")].toBool(true);
    return session;
}

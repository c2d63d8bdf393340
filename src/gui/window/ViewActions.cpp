// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/ViewActions.h"

#include "gui/kit/SvgIcon.h"
#include "gui/render/ImageDrawerMain.h"
#include "gui/window/SubWindow.h"
#include "logic/service/TarvikService.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeySequence>

#include <utility>

namespace {

/// With overlays, in the pixels of the screen.
void copyPicture(SubWindow& view)
{
    ImageDrawerMain& drawer = *view.imageDrawer();
    QImage picture = drawer.grab(drawer.devicePixelRatioF());
    if (picture.isNull())
        return;
    picture.setDevicePixelRatio(1);
    QGuiApplication::clipboard()->setImage(picture);
    emit view.service()->noticeSignal(QStringLiteral("The picture of the view was copied"));
}

void copyValue(SubWindow& view)
{
    TarvikService& service = *view.service();
    const auto info = view.imageDrawer()->infoAtCursor();
    if (!info) {
        emit service.noticeSignal(QStringLiteral("The cursor is not on the image"));
        return;
    }
    QStringList parts;
    const QStringList keys = info->infoKeys();
    const QStringList values = info->infoValues();
    for (qsizetype i = 0; i < keys.size(); ++i)
        parts << keys[i] + ' ' + values[i];
    const QString text = parts.join(QStringLiteral(", "));
    QGuiApplication::clipboard()->setText(text);
    emit service.noticeSignal(QStringLiteral("Copied: ") + text);
}

}  // namespace

ViewActions::ViewActions(QWidget& window, std::function<SubWindow*()> activeView)
    : QObject(&window)
    , _activeView(std::move(activeView))
    , _window(window)
    , _fit(_add(QStringLiteral("Fit"), QStringLiteral("Show the whole image (Ctrl 0)"),
                QStringLiteral("fit"), QKeySequence(Qt::CTRL | Qt::Key_0),
                [](SubWindow& view) { view.imageDrawer()->fit(); }))
    , _oneToOne(_add(QStringLiteral("1:1"),
                     QStringLiteral("One screen pixel for each image pixel (Ctrl 1)"),
                     QStringLiteral("oneToOne"), QKeySequence(Qt::CTRL | Qt::Key_1),
                     [](SubWindow& view) { view.imageDrawer()->oneToOne(); }))
    , _copyPicture(_add(QStringLiteral("Copy Picture"),
                        QStringLiteral("Copy the view with all that is drawn over it (Ctrl C)"),
                        QStringLiteral("copyPicture"), QKeySequence::Copy, copyPicture))
    , _copyValue(_add(QStringLiteral("Copy Value"),
                      QStringLiteral("Copy position and value under the cursor (Ctrl Shift C)"),
                      QString(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C), copyValue))
{}

void ViewActions::silenceShortcuts(bool silent)
{
    const Qt::ShortcutContext context = silent ? Qt::WidgetShortcut : Qt::WindowShortcut;
    for (QAction* action : all()) {
        action->setShortcutContext(context);
        // One that its window doesn't know has no key there.
        silent ? _window.removeAction(action) : _window.addAction(action);
    }
}

template <class Act>
QAction* ViewActions::_add(const QString& text, const QString& tip, const QString& icon,
                           const QKeySequence& key, Act act)
{
    auto* action = new QAction(text, &_window);
    action->setToolTip(tip);
    if (!icon.isEmpty())
        action->setIcon(svgIcon(QStringLiteral(":icons/%1.svg").arg(icon), QSize(32, 32)));
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, [this, act] {
        if (SubWindow* view = _activeView())
            act(*view);
    });
    _window.addAction(action);
    return action;
}

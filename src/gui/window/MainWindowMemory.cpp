// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the main window remembers from one start to the next: its session, its place on the screen
// and its panels.
#include "gui/kit/ContainerSideBar.h"
#include "gui/kit/MdiArea.h"
#include "gui/window/LaterSettings.h"
#include "gui/window/MainWindow.h"
#include "gui/window/MainWindowActions.h"
#include "gui/window/RecentFiles.h"
#include "gui/window/SavedSetting.h"
#include "gui/window/Session.h"
#include "gui/window/SideBarColumn.h"
#include "gui/window/SubWindow.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QVariantMap>

#include <algorithm>

namespace {

const QString Frame = QStringLiteral("geometry");
const QString ColumnShown = QStringLiteral("columnShown");
const QString ColumnWidth = QStringLiteral("columnWidth");
const QString Unfolded = QStringLiteral("unfolded");

/// Room for the frame of a window, which nobody knows before it is shown.
constexpr QMargins WindowFrame(4, 32, 4, 4);

}  // namespace

void MainWindow::_createMemory()
{
    _sessionSetting = std::make_unique<SavedSetting>(
        QStringLiteral("Session"), [this](const QVariant&) { return _session(); });
    const Session last = Session::fromJson(_sessionSetting->atFirst().toByteArray());
    QStringList names;
    for (const Session::View& view : last.views)
        names << QFileInfo(view.file).fileName();
    _actions->setLastSession(names);
    connect(_actions->reopen, &QAction::triggered, this, &MainWindow::_reopenSession);
    connect(_actions->recent, &RecentFiles::chosen, this,
            [this](const QString& file) { openFiles({file}, activeSubWindow()); });
    connect(_splitter, &QSplitter::splitterMoved, this, &MainWindow::_placeChanged);
}

void MainWindow::_remember(SubWindow* window)
{
    const auto changed = [this] {
        if (_sessionSetting)
            _sessionSetting->changed();
    };
    const TarvikService* service = window->service();
    connect(service, &TarvikService::newImageSignal, this, changed);
    connect(service, &TarvikService::newViewportSignal, this, changed);
    connect(service, &TarvikService::newContrastSignal, this, changed);
}

QVariant MainWindow::_session() const
{
    Session session;
    for (const SubWindow* window : subWindows())
        if (!window->file().isEmpty())
            session.views.append(Session::View::of(window->file(), *window->service()));
    // The end of the last view is not worth remembering: it would be all that is left of a day.
    if (session.views.isEmpty())
        return {};
    session.viewportsTied = _core.synchronized<ViewportData>();
    session.contrastsTied = _core.synchronized<ContrastData>();
    session.layout.append(_mdiArea->mainSplitter()->sizes());
    for (int i = 0; i < _mdiArea->mainSplitter()->count(); ++i)
        if (const auto* column = qobject_cast<QSplitter*>(_mdiArea->mainSplitter()->widget(i)))
            session.layout.append(column->sizes());
    return session.toJson();
}

void MainWindow::_reopenSession()
{
    const Session session = Session::fromJson(_sessionSetting->atFirst().toByteArray());
    const bool alone = subWindows().isEmpty();
    _actions->syncViewport->setChecked(session.viewportsTied);
    _actions->syncContrast->setChecked(session.contrastsTied);
    QStringList files;
    for (const Session::View& view : session.views)
        files << view.file;
    const QList<SubWindow*> before = subWindows();
    openFiles(files);
    const QList<SubWindow*> views = subWindows().mid(before.size());
    for (qsizetype i = 0; i < views.size() && i < session.views.size(); ++i) {
        TarvikService* service = views[i]->service();
        auto* once = new QObject(service);
        connect(service, &TarvikService::newImageSignal, once,
                [once, service, view = session.views[i]] {
                    once->deleteLater();
                    QObject::disconnect(service, nullptr, once, nullptr);
                    view.apply(*service);
                });
    }
    if (alone)
        _layOut(session.layout);
}

void MainWindow::_layOut(const QList<QList<int>>& layout)
{
    MdiSplitter* columns = _mdiArea->mainSplitter();
    if (layout.size() != columns->count() + 1)
        return;
    columns->setSizes(layout[0]);
    for (int i = 0; i < columns->count(); ++i)
        if (auto* column = qobject_cast<QSplitter*>(columns->widget(i)))
            column->setSizes(layout[i + 1]);
}

void MainWindow::restorePlace()
{
    _placeSetting = std::make_unique<SavedSetting>(
        QStringLiteral("Window"), [this](const QVariant& written) { return _place(written); });
    const QVariantMap place = _placeSetting->atFirst().toMap();
    restoreGeometry(place[Frame].toByteArray());
    _keepOnScreen();
    _columnWidth = place.value(ColumnWidth, SideBarColumn::MaximumWidth).toInt();
    _columnWanted = place[ColumnShown].toBool();
    for (const QVariant& key : place[Unfolded].toList())
        SideBar::setDefaultVisibility(_firstPanelKey + key.toULongLong() % PanelKeys, true);
}

void MainWindow::_keepOnScreen()
{
    if (isMaximized() || isFullScreen())
        return;
    const QScreen* screen = QGuiApplication::screenAt(geometry().center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect room = screen->availableGeometry().marginsRemoved(WindowFrame);
    resize(size().boundedTo(room.size()));
    if (!testAttribute(Qt::WA_Moved))
        return;  // the desktop will choose the place
    QRect place = geometry();
    place.moveRight(std::min(place.right(), room.right()));
    place.moveBottom(std::min(place.bottom(), room.bottom()));
    place.moveLeft(std::max(place.left(), room.left()));
    place.moveTop(std::max(place.top(), room.top()));
    setGeometry(place);
}

QVariant MainWindow::_place(const QVariant& written) const
{
    // The panels of all views fold together: any will do.
    const auto made = std::find_if(_subFrames.begin(), _subFrames.end(),
                                   [](const SubFrame& frame) { return !frame.sideBar.isNull(); });
    QVariantList open;
    if (made != _subFrames.end())
        for (const SideBar* panel : made->sideBar->findChildren<SideBar*>())
            if (panel->visible())
                open.append(panel->syncClass() - _firstPanelKey);
    QVariantMap place{{Frame, saveGeometry()},
                      {ColumnShown, _columnWanted},
                      {ColumnWidth, _sideBars->visible() ? _sideBars->width() : _columnWidth}};
    place[Unfolded] = made == _subFrames.end() ? written.toMap()[Unfolded] : open;
    return place;
}

void MainWindow::_placeChanged()
{
    if (_placeSetting)
        _placeSetting->changed();
}

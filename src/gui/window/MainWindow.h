// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The top-level window: control bar, ribbon and the tiled image views.
#pragma once

#include "gui/kit/ApiCallable.h"
#include "gui/kit/ContainerSideBar.h"
#include "gui/window/PanelTree.h"
#include "gui/window/ViewHost.h"

#include <QMainWindow>
#include <QPointer>
#include <QVariant>

#include <memory>
#include <set>

class AbstractSubWindow;
class ControlBar;
class MainWindowActions;
class MainWindowEventControl;
class MdiArea;
class MdiSplitter;
class SavedSetting;
class ShortcutSheet;
class SideBar;
class SideBarColumn;
class TarvikCore;
class TarvikService;
class ViewActions;

/// The one top-level window of the graphical role. It makes image views with their services and
/// panels, sends its actions to the active one, and remembers for the user the folder of the last
/// opened file and the keyboard shortcut mode.
/// Thread: GUI only.
class MainWindow : public QMainWindow, public ViewHost {
    Q_OBJECT
public:
    /// @param core  outlives the window
    /// @param useGlsl  false colours all images on the processor
    /// @param quitOnClose  closing ends the application; otherwise only the window closes
    /// @param panels  makes the panels of a view when they are first shown; without it there are
    /// none
    MainWindow(TarvikCore& core, bool useGlsl, bool quitOnClose, PanelMaker panels = makePanels);
    ~MainWindow() override;

    /// Null without views.
    SubWindow* activeSubWindow() const;
    /// In order of creation.
    QList<SubWindow*> subWindows() const;
    /// The folder where the open dialog starts, see window/OpenDirectory.
    QString openDirectory() const;
    void setOpenDirectory(const QString& path);

    /// Restores the place on the screen and the panels of the last start. From now on they are
    /// remembered.
    void restorePlace();

    /// True if keys and drags with a held key act on the image, see SubWindowEventControl.
    bool keyboardShortcutMode() const { return _keyboardShortcutMode; }

    /// Opens each file, or the images of each folder, in a view of its own. A new view whose file
    /// can't be shown closes again.
    /// @param first  the view for the first one, unless null
    void openFiles(const QStringList& files, SubWindow* first = nullptr) override;
    void noteAnswer(const QString& file, bool shown) override;

    // The state of the actions; setting it triggers nothing.
    /// Whether there are panels to show.
    void enableSideBar(bool enabled);
    void enableMovieModeAction(bool enabled) override;
    void setMovieModeAction(bool on) override;
    void enableWatchSeriesModeAction(bool enabled) override;
    void setWatchSeriesModeAction(bool on) override;
    void setHalvoMonitorMode(bool on) override;
    void setHalvoMonitorHost(QString host, int port, double minPause) override;

    void enableAllSubWindows();
    /// Enables or disables every view but the active one.
    void enableNonActiveSubWindows(bool enabled);

public slots:
    /// Makes a view, shows it and makes it the active one.
    /// @param subwindow  takes the view too, unless null
    SubWindow* newSubWindow(SubWindow** subwindow);
    SubWindow* newSubWindow();
    /// A view without controls, for scripts. Shortcuts are off while the tool bar is hidden.
    API_CALLABLE void showToolBar();
    API_CALLABLE void hideToolBar();
    API_CALLABLE void enableKeyboardShortcuts();
    API_CALLABLE void disableKeyboardShortcuts();
    /// Shows or hides the panels of the active view; shown only if there is one.
    void toggleSideBar(bool on);
    API_CALLABLE void disableClose();
    API_CALLABLE void enableClose();
    /// Closes, even if disableClose() was called.
    void close();
    /// Appends a line with the identifier of each view, the decimal value of its address.
    API_CALLABLE void subFrames(QString* returnList);
    /// Check the box if the value is not 0, else uncheck it.
    API_CALLABLE void synchronizeViewport(int val);
    API_CALLABLE void synchronizeContrast(int val);
    API_CALLABLE void synchronizeStatistics(int val);

signals:
    void aboutToTerminate(QObject* window);
    void newSubWindowSignal(SubWindow* subwindow);

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private slots:
    void _about();
    void _open();
    void _openExportDialog();
    void _openSaveAsDialog();
    void _openHelpBrowser();
    void _toggleMovieMode(bool on);
    void _toggleWatchSeriesMode(bool on);
    void _toggleHalvoMonitorMode(bool on);
    void _setHalvoMonitorHost(const QString& host, int port, double minPause);
    void _handleCloseEvent(QObject* window);
    void _subWindowActivated(AbstractSubWindow* subWindow);
    void _setSideBarVisibleSlot(SideBar* panel);
    void _showShortcuts();
    void _reopenSession();
    void _placeChanged();
    void _setKeyboardShortcutMode(bool on);

private:
    /// The parts of one view.
    struct SubFrame {
        SubWindow* subWindow = nullptr;
        TarvikService* service = nullptr;
        // Made when it is first shown; goes before the view that its panels steer.
        mutable QPointer<ContainerSideBar> sideBar = {};
        bool operator<(const SubFrame& other) const { return subWindow < other.subWindow; }
    };

    SubWindow* _makeSubWindow();
    /// The parts of a view, the end of the set if it isn't one of this window.
    std::set<SubFrame>::const_iterator _frameOf(const QObject* subWindow) const;
    TarvikService* _activeService() const;
    void _connectActions();
    void _connectSynchronization();
    void _createLayout();
    void _createMemory();
    /// Makes the window no larger than its screen; if it was placed before, moves it into the
    /// screen.
    void _keepOnScreen();
    /// Shows the panels of a view in the column, and makes them the first time: they cost more
    /// than the view itself, and many views never show theirs. Call it only when the column is
    /// visible or becomes so.
    void _showPanels(const SubFrame& frame);
    ContainerSideBar* _makePanels(SubWindow& window);
    /// Has the session follow a view.
    void _remember(SubWindow* window);
    QVariant _session() const;
    QVariant _place(const QVariant& written) const;
    void _layOut(const QList<QList<int>>& layout);

    TarvikCore& _core;
    MdiArea* _mdiArea;
    MdiSplitter* _splitter;
    std::unique_ptr<MainWindowActions> _actions;
    std::unique_ptr<MainWindowEventControl> _eventControl;
    std::unique_ptr<ControlBar> _controlBar;
    std::unique_ptr<SideBarColumn> _sideBars;
    ViewActions* _viewActions;
    std::unique_ptr<SavedSetting> _sessionSetting;
    std::unique_ptr<SavedSetting> _placeSetting;  // null until restorePlace()
    QPointer<ShortcutSheet> _shortcutSheet;
    const PanelMaker _panelMaker;
    const unsigned long long _firstPanelKey;
    bool _columnWanted = false;  // by the user, also while there is no view
    int _columnWidth;            // in pixels, for the next time it is shown
    bool _keyboardShortcutMode = false;
    bool _useGlsl;
    bool _quitOnClose;
    bool _closeDisabled = false;
    std::set<SubFrame> _subFrames;
};

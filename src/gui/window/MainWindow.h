// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The top-level window: control bar, ribbon and the tiled image views.
#pragma once

#include <QMainWindow>

#include <memory>
#include <set>

class MainWindowActions;
class MainWindowEventControl;
class MdiArea;
class MdiSplitter;
class QToolBar;
class RibbonInterface;
class SubWindow;
class TarvikCore;
class TarvikService;

/// The one top-level window of the graphical role. It makes image views with their services, sends
/// its actions to the active one and remembers the folder of the last opened file.
/// Thread: GUI only.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    /// @param core  outlives the window
    /// @param useGlsl  false colours all images on the processor
    /// @param quitOnClose  closing ends the application; otherwise only the window closes
    MainWindow(TarvikCore& core, bool useGlsl, bool quitOnClose);
    ~MainWindow() override;

    /// Null without views.
    SubWindow* activeSubWindow() const;
    /// In order of creation.
    QList<SubWindow*> subWindows() const;
    /// The folder where the open dialog starts, see window/OpenDirectory.
    QString openDirectory() const;
    void setOpenDirectory(const QString& path);

    /// Opens each file in a view of its own. A new view whose file can't be shown closes again.
    /// @param first  takes the first file, unless null
    void openFiles(const QStringList& files, SubWindow* first = nullptr);

    void enableAllSubWindows();
    /// Enables or disables every view but the active one.
    void enableNonActiveSubWindows(bool enabled);

public slots:
    /// Makes a view, shows it and makes it the active one.
    /// @param subwindow  takes the view too, unless null
    SubWindow* newSubWindow(SubWindow** subwindow);
    SubWindow* newSubWindow();
    /// A view without controls, for scripts. Shortcuts are off while the tool bar is hidden.
    void showToolBar();
    void hideToolBar();
    void disableClose();
    void enableClose();
    /// Closes, even if disableClose() was called.
    void close();

signals:
    void aboutToTerminate(QObject* window);
    void newSubWindowSignal(SubWindow* subwindow);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private slots:
    void _open();
    void _handleCloseEvent(QObject* window);

private:
    /// The parts of one view.
    struct SubFrame {
        SubWindow* subWindow = nullptr;
        TarvikService* service = nullptr;
        bool operator<(const SubFrame& other) const { return subWindow < other.subWindow; }
    };

    SubWindow* _makeSubWindow();
    void _createMenus();
    void _createLayout();

    TarvikCore& _core;
    MdiArea* _mdiArea;
    MdiSplitter* _splitter;
    std::unique_ptr<MainWindowActions> _actions;
    std::unique_ptr<MainWindowEventControl> _eventControl;
    QToolBar* _controlBar;
    RibbonInterface* _ribbon;
    bool _useGlsl;
    bool _quitOnClose;
    bool _closeDisabled = false;
    std::set<SubFrame> _subFrames;
};

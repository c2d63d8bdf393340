// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The rows of controls at the top of the main window.
#pragma once

class MainWindowActions;
class QMainWindow;
class QToolBar;
class QWidget;
class RibbonInterface;
class ViewActions;

/// Tabs, the tool bar of the chosen tab, and the tool bar at its right that all tabs share.
/// Thread: GUI only.
class ControlBar {
public:
    /// Puts the tabs on top of the window and the actions on their tool bars.
    ControlBar(QMainWindow& window, const MainWindowActions& actions,
               const ViewActions& viewActions);

    /// The second row: the ribbon and the tool bar at its right, for the window's layout.
    QWidget* row() const { return _row; }
    RibbonInterface* ribbon() const { return _ribbon; }
    void setVisible(bool visible);

private:
    void _fillRibbon(const MainWindowActions& actions);

    QToolBar* _controlBar;
    QWidget* _row;
    RibbonInterface* _ribbon;
    QToolBar* _rightToolBar;
};

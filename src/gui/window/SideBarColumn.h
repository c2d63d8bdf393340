// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The column of panels at the right of the image views.
#pragma once

class QScrollArea;
class QSplitter;
class QStackedWidget;
class QWidget;

/// A scrolled stack with the panels of each view, of which one view's are shown. Hidden at first.
/// Thread: GUI only.
class SideBarColumn {
public:
    /// Largest width in pixels.
    static constexpr int MaximumWidth = 360;

    /// Becomes the last child of the splitter.
    explicit SideBarColumn(QSplitter& splitter);

    /// Takes over the panels of a view.
    void add(QWidget* panels);
    void setCurrent(QWidget* panels);
    bool visible() const;
    /// When shown, it takes its width from the views.
    void setVisible(bool visible, int width = MaximumWidth);
    int width() const;
    /// Scrolls so that a part of the panels on show can be seen.
    /// @param above  pixels above the part that belong to it
    void ensureVisible(QWidget& part, int above = 0);

private:
    QSplitter& _splitter;
    QScrollArea* _sideBarScrollArea;
    QStackedWidget* _sideBarStack;
};

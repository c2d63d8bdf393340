// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The image area of the main window: frames tiled in a near-square grid.
#pragma once

#include "gui/kit/AbstractSubWindow.h"
#include "gui/kit/MdiSplitter.h"

#include <QList>
#include <QWidget>

#include <memory>
#include <vector>

class QSvgRenderer;

/// Tiles its frames and knows which one is active. Frames are never moved by hand; the
/// borders between them are, until a frame comes or goes. Without frames it shows the logo.
class MdiArea : public QWidget {
    Q_OBJECT
public:
    explicit MdiArea(QWidget* parent = nullptr);
    ~MdiArea() override;

    /// Number of frames in each column, from left to right; one empty column without frames.
    static std::vector<int> columnHeights(int frames);

    /// Takes over a frame, tiles again and makes it the active one.
    void addSubWindow(AbstractSubWindow* frame) { addSubWindows({frame}); }
    /// The same for several, tiled once; the last one becomes active.
    void addSubWindows(const QList<AbstractSubWindow*>& frames);
    /// Hides a frame and deletes it from the event loop; ignores unknown frames. If it
    /// was active, the first of the others becomes active.
    void removeSubWindow(AbstractSubWindow* frame);
    /// Null without frames.
    AbstractSubWindow* activeSubWindow() const { return _activeSubWindow; }
    /// In order of creation.
    const QList<AbstractSubWindow*>& subWindowList() const { return _subWindows; }
    MdiSplitter* mainSplitter() const { return _mainSplitter; }

    /// However many frames there are: they share the room of their window and don't widen it.
    QSize sizeHint() const override { return {200, 150}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

public slots:
    void _closeActiveSubwindow();
    void _processGotActivated(AbstractSubWindow* frame);

protected:
    void paintEvent(QPaintEvent* event) override;

private slots:
    void _removeSlot(AbstractSubWindow* frame);

private:
    /// Takes a frame, which may be gone already, out of the list. @returns whether it was in it
    bool _take(AbstractSubWindow* frame);
    void _rearrange();
    void _rearrangeSoon();
    void _shareOut(const std::vector<int>& heights);
    MdiSplitter* _column(int index) const;

    QList<AbstractSubWindow*> _subWindows;
    AbstractSubWindow* _activeSubWindow = nullptr;
    bool _rearrangeDue = false;
    MdiSplitter* _mainSplitter;
    std::unique_ptr<QSvgRenderer> _logo;
};

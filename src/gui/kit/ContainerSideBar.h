// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A panel of panels.
#pragma once

#include "gui/kit/SideBar.h"

#include <QPointer>
#include <QVBoxLayout>

#include <map>
#include <set>
#include <vector>

class QScrollArea;
class QScrollBar;
class SideBarTitle;

/// Stacks panels, each below a title that folds it. Containers may stand in containers; the root of
/// such a tree stays at level 0 and is shown by its owner, or stands in its scrollArea().
class ContainerSideBar : public SideBar {
    Q_OBJECT
public:
    using TitleWidget = SideBarTitle;

    explicit ContainerSideBar(unsigned long long syncClass, QWidget* parent = nullptr);
    ~ContainerSideBar() override;

    /// Takes a panel over, below those that were added before; it leaves the container it was in.
    void addSideBar(SideBar* sideBar);
    /// The panels from top to bottom.
    std::vector<SideBar*>::const_iterator begin() const { return _sideBars.begin(); }
    std::vector<SideBar*>::const_iterator end() const { return _sideBars.end(); }

    void setLevel(unsigned int level) override;
    using SideBar::ensureVisible;
    /// Scrolls the area around this container, if it made one, so that a panel can be seen.
    void ensureVisible(SideBar* sideBar);
    /// A scroll area around this container, made by the first call. It belongs to whom it is given
    /// as a child, and then owns the container. Areas of one key scroll together.
    QScrollArea* scrollArea();

public slots:
    void toggleVisible(bool on) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void _removeSideBar(SideBar* sideBar);
    /// The width of the titles is that of the widget around this one.
    void _updateTitleWidths();
    static void _linkScrollBar(unsigned long long syncClass, QScrollBar* bar);

    // Children of this widget, both in the order of the layout. A deleted panel takes its title
    // with it.
    std::vector<SideBar*> _sideBars;
    std::vector<TitleWidget*> _titleWidgets;
    QVBoxLayout* _layout;
    QPointer<QScrollArea> _scrollArea;
    /// Vertical scroll bars by key; they belong to their areas.
    static std::map<unsigned long long, std::set<QScrollBar*>> _syncMap;
};

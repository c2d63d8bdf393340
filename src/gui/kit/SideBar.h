// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The base of all panels of the panel column.
#pragma once

#include <QString>
#include <QWidget>

#include <map>
#include <set>

class ContainerSideBar;

/// A panel that its title in a ContainerSideBar folds and unfolds.
///
/// Every view has panels of its own. Those that were made with the same key fold together, and one
/// that is made later starts folded as they are. Starts hidden. Thread: GUI only.
class SideBar : public QWidget {
    Q_OBJECT
public:
    /// Of a panel, in pixels.
    static constexpr int maxSideBarWidth = 350;

    /// @param syncClass  the key
    explicit SideBar(unsigned long long syncClass, QWidget* parent = nullptr);
    ~SideBar() override;

    void setTitle(const QString& title);
    /// The tooltip of the title.
    void setInfoText(const QString& infoText);
    const QString& title() const { return _title; }
    const QString& infoText() const { return _infoText; }
    /// Depth in the tree; 0 for its root, which can't be folded.
    virtual void setLevel(unsigned int level);
    unsigned int level() const { return _level; }
    unsigned long long syncClass() const { return _syncClass; }
    /// Null for a panel that stands in no other. For the container, which takes it back when it
    /// goes.
    ContainerSideBar* parentSideBar() const { return _parentSideBar; }
    void setParentSideBar(ContainerSideBar* parent) { _parentSideBar = parent; }

    /// Height of the title in pixels, 0 for the root.
    virtual int titleHeight() const;
    /// True if the panels of this key are unfolded.
    bool visible() const;
    /// How panels of a key start that has no panel yet; folded without a call.
    static void setDefaultVisibility(unsigned long long syncClass, bool visible);
    /// Scrolls the column so that the panel can be seen.
    void ensureVisible();
    /// The same for a part of the panel, such as one that has just been shown.
    void ensureVisible(QWidget& part);

public slots:
    /// Folds or unfolds this panel and all others of its key.
    virtual void toggleVisible(bool on);

signals:
    /// Comes from the panel that was toggled, not from those that follow it.
    void toggledVisible(bool on);
    void gotVisbile(SideBar* sideBar);  // the spelling is part of the interface
    /// To the container: title, text or level have changed.
    void titleChangedSignal();
    void ensureVisibleSignal(SideBar* sideBar);
    void ensurePartVisibleSignal(QWidget* part);

protected:
    void showEvent(QShowEvent* event) override;

private:
    ContainerSideBar* _parentSideBar = nullptr;
    unsigned int _level = 0;
    QString _title;
    QString _infoText;
    const unsigned long long _syncClass;

    // By key. The panels are owned by their Qt parents and leave the table when they are deleted.
    static std::map<unsigned long long, std::set<SideBar*>> _syncMap;
    static std::map<unsigned long long, bool> _globalVisibleMap;
    static std::map<unsigned long long, bool> _defaultVisibleMap;
    /// False while the panels of a key follow one of them: ends the echo between them.
    static bool _emitSignal;
};

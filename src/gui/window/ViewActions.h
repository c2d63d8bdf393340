// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What can be done with the picture of a view.
#pragma once

#include <QAction>
#include <QList>
#include <QObject>

#include <functional>

class SubWindow;

/// Actions for the active view, with texts, tool tips, icons and keys of their own: whole image,
/// 1:1, and copies to the clipboard. Their keys work in the window that they were made for; a
/// field of text with the focus keeps its own.
class ViewActions : public QObject {
    Q_OBJECT
public:
    /// @param window  owns the actions
    /// @param activeView  the view to act on, null for none
    ViewActions(QWidget& window, std::function<SubWindow*()> activeView);

    QAction* fitAction() const { return _fit; }
    QAction* oneToOneAction() const { return _oneToOne; }
    QAction* copyPictureAction() const { return _copyPicture; }
    /// Position and value under the cursor.
    QAction* copyValueAction() const { return _copyValue; }
    QList<QAction*> all() const { return {_fit, _oneToOne, _copyPicture, _copyValue}; }

    /// Silent keys do nothing; the actions stay.
    void silenceShortcuts(bool silent);

private:
    template <class Act>
    QAction* _add(const QString& text, const QString& tip, const QString& icon,
                  const QKeySequence& key, Act act);

    const std::function<SubWindow*()> _activeView;
    QWidget& _window;
    QAction* _fit;
    QAction* _oneToOne;
    QAction* _copyPicture;
    QAction* _copyValue;
};

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Random deeds on all that a window shows.
#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <random>
#include <vector>

class MainWindow;

namespace tarvik::tests {

/// Clicks, drags, wheels, types and opens, wherever something visible takes it: also in the dialogs
/// and menus that come of it, where it looks for a way out more often than elsewhere. Each deed
/// comes from the event loop, so that it goes on within the loop of a dialog.
class Monkey : public QObject {
    Q_OBJECT
public:
    /// @param files  that it opens
    Monkey(MainWindow& window, QStringList files, unsigned seed);

    /// Acts this often, then ends all dialogs and menus.
    void act(int deeds);
    /// What it did last, for whoever looks into a failure.
    const QStringList& deeds() const { return _deeds; }

private:
    using Deed = std::function<void(QWidget*)>;

    void _next();
    void _do();
    QWidget* _target();
    void _note(const QString& deed, const QObject* target);
    int _below(int end) { return end < 2 ? 0 : std::uniform_int_distribution(0, end - 1)(_random); }
    QPoint _pointIn(const QWidget* widget);
    Qt::KeyboardModifiers _modifiers();

    void _click(QWidget* widget);
    void _drag(QWidget* widget);
    void _wheel(QWidget* widget);
    void _type(QWidget* widget);
    void _key(QWidget* widget);
    void _trigger();
    void _open();
    void _close();
    void _resize();

    QPointer<MainWindow> _window;
    const QStringList _files;
    std::mt19937 _random;
    QStringList _deeds;
    int _left = 0;
    bool _done = false;
};

}  // namespace tarvik::tests

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "tests/gui/monkey/Monkey.h"

#include "gui/window/MainWindow.h"
#include "gui/window/SubWindow.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>

#include <cstdio>
#include <utility>

namespace tarvik::tests {

namespace {

constexpr int MostViews = 6;
constexpr int Remembered = 60;

/// Whether a user could reach it with the mouse now.
bool reachable(const QWidget* widget, const QWidget* under)
{
    return widget->isVisible() && widget->isEnabled() && widget->width() > 0 &&
           widget->height() > 0 && (widget == under || under->isAncestorOf(widget));
}

}  // namespace

Monkey::Monkey(MainWindow& window, QStringList files, unsigned seed)
    : _window(&window)
    , _files(std::move(files))
    , _random(seed)
{}

void Monkey::act(int deeds)
{
    _left = deeds;
    _done = false;
    _next();
    while (!_done)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1000);
}

void Monkey::_next()
{
    QTimer::singleShot(0, this, [this] {
        const bool over = _left <= 0;
        // The loop of a dialog or a menu ends only from within.
        if (over && !QApplication::activePopupWidget() && !QApplication::activeModalWidget()) {
            _done = true;
            return;
        }
        --_left;
        // Before the deed, which may stay in a dialog of its own for a while.
        _next();
        if (over)
            _close();
        else
            _do();
    });
}

void Monkey::_do()
{
    if (!_window)
        return;
    const bool inTheWay = QApplication::activePopupWidget() || QApplication::activeModalWidget();
    if (inTheWay && _below(4) == 0)
        return _close();
    QWidget* widget = _target();
    switch (_below(inTheWay ? 10 : 16)) {
    case 0:
    case 1:
    case 2:
    case 3:
    case 4:
        return _click(widget);
    case 5:
    case 6:
        return _drag(widget);
    case 7:
        return _wheel(widget);
    case 8:
        return _type(widget);
    case 9:
        return _key(widget);
    case 10:
    case 11:
        return _trigger();
    case 12:
    case 13:
        return _open();
    case 14:
        return _resize();
    default:
        return QTest::qWait(_below(20));
    }
}

QWidget* Monkey::_target()
{
    QWidget* under = QApplication::activePopupWidget();
    if (!under)
        under = QApplication::activeModalWidget();
    std::vector<QWidget*> found;
    for (QWidget* widget : QApplication::allWidgets())
        if (reachable(widget, under ? under : widget->window()))
            found.push_back(widget);
    return found.empty() ? _window.data()
                         : found[static_cast<std::size_t>(_below(static_cast<int>(found.size())))];
}

void Monkey::_note(const QString& deed, const QObject* target)
{
    _deeds << QStringLiteral("%1 %2 %3")
                  .arg(deed, target->metaObject()->className(), target->objectName());
    if (_deeds.size() > Remembered)
        _deeds.removeFirst();
}

QPoint Monkey::_pointIn(const QWidget* widget)
{
    return {_below(widget->width()), _below(widget->height())};
}

Qt::KeyboardModifiers Monkey::_modifiers()
{
    static constexpr Qt::KeyboardModifier some[] = {Qt::ShiftModifier, Qt::ControlModifier,
                                                    Qt::AltModifier};
    return _below(5) == 0 ? some[_below(3)] : Qt::NoModifier;
}

void Monkey::_click(QWidget* widget)
{
    _note(QStringLiteral("click"), widget);
    const QPoint at = _pointIn(widget);
    const Qt::MouseButton button = _below(8) == 0 ? Qt::RightButton : Qt::LeftButton;
    const QPointer guard(widget);
    if (_below(8) == 0)
        QTest::mouseDClick(widget, button, _modifiers(), at);
    else
        QTest::mouseClick(widget, button, _modifiers(), at);
}

void Monkey::_drag(QWidget* widget)
{
    _note(QStringLiteral("drag"), widget);
    const QPointer guard(widget);
    const QPoint from = _pointIn(widget);
    QTest::mousePress(widget, Qt::LeftButton, _modifiers(), from);
    for (int i = 0; i < 4 && guard; ++i)
        QTest::mouseMove(widget, _pointIn(widget));
    if (guard)
        QTest::mouseRelease(widget, Qt::LeftButton, Qt::NoModifier, _pointIn(widget));
}

void Monkey::_wheel(QWidget* widget)
{
    _note(QStringLiteral("wheel"), widget);
    const QPoint at = _pointIn(widget);
    QWheelEvent event(at, widget->mapToGlobal(QPointF(at)), {}, {0, _below(2) ? 120 : -120},
                      Qt::NoButton, _modifiers(), Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

void Monkey::_type(QWidget* widget)
{
    static const QString texts[] = {"",    "0",  "-1",     "1e300", "nan", "99999999999",
                                    "0.5", "Cu", "x_?.h5", "ä€\n"};
    const QString text = texts[_below(static_cast<int>(std::size(texts)))];
    _note(QStringLiteral("type \"%1\" into").arg(text), widget);
    const QPointer guard(widget);
    widget->setFocus();
    QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
    for (const QChar letter : text)
        if (guard)
            QTest::sendKeyEvent(QTest::Click, widget, static_cast<Qt::Key>(0), letter,
                                Qt::NoModifier);
    if (guard && _below(2))
        QTest::keyClick(widget, Qt::Key_Return);
}

void Monkey::_key(QWidget* widget)
{
    static constexpr Qt::Key keys[] = {
        Qt::Key_Escape, Qt::Key_Return, Qt::Key_Tab,   Qt::Key_Left,  Qt::Key_Right,
        Qt::Key_Up,     Qt::Key_Down,   Qt::Key_Space, Qt::Key_N,     Qt::Key_P,
        Qt::Key_Plus,   Qt::Key_Minus,  Qt::Key_F,     Qt::Key_B,     Qt::Key_F1,
        Qt::Key_Delete, Qt::Key_Home,   Qt::Key_End,   Qt::Key_PageUp};
    const Qt::Key key = keys[_below(static_cast<int>(std::size(keys)))];
    _note(QStringLiteral("key %1 to").arg(key, 0, 16), widget);
    QTest::keyClick(widget, key, _modifiers());
}

void Monkey::_trigger()
{
    const QList<QAction*> actions = _window->findChildren<QAction*>();
    if (actions.isEmpty())
        return;
    QAction* action = actions[_below(static_cast<int>(actions.size()))];
    _note(QStringLiteral("trigger \"%1\"").arg(action->text()), action);
    action->trigger();
}

void Monkey::_open()
{
    const QList<SubWindow*> views = _window->subWindows();
    const QString file = _files[_below(static_cast<int>(_files.size()))];
    _note(QStringLiteral("open %1 in").arg(file), _window);
    if (views.size() >= MostViews)
        views[_below(static_cast<int>(views.size()))]->close();
    else if (views.isEmpty() || _below(3) == 0)
        _window->openFiles({file});
    else
        views[_below(static_cast<int>(views.size()))]->loadFile(file);
}

void Monkey::_resize()
{
    _note(QStringLiteral("resize"), _window);
    _window->resize(300 + _below(700), 200 + _below(500));
}

void Monkey::_close()
{
    QWidget* popup = QApplication::activePopupWidget();
    QWidget* top = popup ? popup : QApplication::activeModalWidget();
    _note(QStringLiteral("close"), top ? top : _window.data());
    if (auto* dialog = qobject_cast<QDialog*>(top))
        dialog->reject();
    else if (top)
        top->close();
}

}  // namespace tarvik::tests

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Panels that drop from buttons, content that comes out of its place, and slow line edits.
#include "gui/kit/DelayedLineEdit.h"
#include "gui/kit/DropDownWidget.h"
#include "gui/kit/FloatingContainer.h"
#include "gui/kit/FloatingWidget.h"
#include "gui/kit/PopupButton.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QSignalSpy>
#include <QToolBar>
#include <QVBoxLayout>

#include <memory>

namespace {

TEST(PopupButtonTest, TheKeyboardWorksInThePanel)
{
    auto* panel = new QWidget;
    auto* layout = new QVBoxLayout(panel);
    auto* first = new QLineEdit;
    auto* second = new QLineEdit;
    layout->addWidget(first);
    layout->addWidget(second);
    panel->setFocusProxy(first);
    PopupButton button(panel);
    button.setPopupMode(QToolButton::InstantPopup);
    button.show();
    settle();
    QTimer::singleShot(0, [&] {
        QWidget* menu = QApplication::activePopupWidget();
        ASSERT_TRUE(menu);
        EXPECT_EQ(menu->focusWidget(), first);
        QTest::keyClicks(menu->focusWidget(), "ab");
        QTest::keyClick(menu->focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(menu->focusWidget(), second);
        QTest::keyClicks(menu->focusWidget(), "c");
        button.hideMenu();
    });
    button.showMenu();
    EXPECT_EQ(first->text() + second->text(), "abc");
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    button.setText("Monitor");
    EXPECT_EQ(button.sizeHint().width(), button.fontMetrics().horizontalAdvance("Monitor") + 30);
}

TEST(DropDownTest, OpensAtTheButtonNextToTheCursor)
{
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* drop = new DropDownWidget(&window);
    drop->setFixedSize(60, 40);
    std::array<QToolBar*, 2> bars{};
    for (QToolBar*& bar : bars) {
        bar = new QToolBar;
        bar->setFixedHeight(60);
        layout->addWidget(bar);
        bar->addAction("Other");
        bar->addAction(drop->action());
    }
    drop->action()->setText("Contrast");
    window.show();
    settle();
    for (QToolBar* bar : bars) {
        QWidget* button = bar->widgetForAction(drop->action());
        const QPoint corner = button->mapToGlobal(QPoint(0, button->height()));
        QCursor::setPos(corner + QPoint(2, -2));
        drop->action()->trigger();
        QWidget* menu = QApplication::activePopupWidget();
        ASSERT_TRUE(menu);
        EXPECT_EQ(menu->pos(), corner);
        menu->hide();
    }
    delete drop;
    settle();
}

class FloatingTest : public testing::Test {
protected:
    FloatingTest()
    {
        window->resize(500, 400);
        window->move(20, 20);
        child->setMinimumSize(120, 80);
        place = new FloatingWidget(child, "Region", QColor(60, 60, 60), window.get());
        place->setGeometry(100, 100, 200, 150);
        window->show();
        settle();
    }
    QWidget* container() const { return child->parentWidget(); }
    /// One event to a widget, as it comes from the mouse. @param at  global
    static void mouse(QWidget* widget, QEvent::Type type, QPoint at)
    {
        const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, widget->mapFromGlobal(at), at,
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, {});
        QApplication::sendEvent(widget, &event);
    }

    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
    QPointer<QLabel> child = new QLabel("numbers");
    FloatingWidget* place;
};

TEST_F(FloatingTest, AChildIsTornOutByADragAndComesHomeByADropOrAClose)
{
    EXPECT_TRUE(place->childIsCatched());
    EXPECT_EQ(child->size(), place->size());
    const QSignalSpy released(place, &FloatingWidget::released);
    const QPoint inside = place->mapToGlobal(QPoint(50, 50));
    const QPoint outside = place->mapToGlobal(QPoint(260, 50));
    mouse(child, QEvent::MouseButtonPress, inside);
    mouse(child, QEvent::MouseMove, inside + QPoint(20, 0));
    EXPECT_TRUE(place->childIsCatched());
    mouse(child, QEvent::MouseMove, outside);
    ASSERT_FALSE(place->childIsCatched());
    EXPECT_TRUE(container()->isWindow() && container()->isVisible());
    EXPECT_EQ(container()->pos(), outside);
    EXPECT_EQ(container()->windowTitle(), "Region");

    // Dropped elsewhere it stays out, wherever it was held.
    const QPoint grip = container()->pos() + QPoint(30, 30);
    mouse(child, QEvent::MouseButtonPress, grip);
    mouse(child, QEvent::MouseMove, grip + QPoint(10, 5));
    EXPECT_EQ(container()->pos(), outside + QPoint(10, 5));
    QCursor::setPos(outside + QPoint(40, 40));
    mouse(child, QEvent::MouseButtonRelease, grip + QPoint(10, 5));
    EXPECT_FALSE(place->childIsCatched());

    container()->move(inside - QPoint(5, 5));
    QCursor::setPos(inside);
    mouse(child, QEvent::MouseButtonPress, inside);
    mouse(child, QEvent::MouseButtonRelease, inside);
    EXPECT_TRUE(place->childIsCatched());
    EXPECT_EQ(child->size(), place->size());

    place->releaseChild(true);
    EXPECT_FALSE(container()->close());
    EXPECT_TRUE(place->childIsCatched());
    EXPECT_EQ(released.count(), 4);
}

TEST_F(FloatingTest, OnlyADragThatBeganOnTheChildTearsItOut)
{
    mouse(window.get(), QEvent::MouseButtonPress, window->mapToGlobal(QPoint(5, 5)));
    for (const int x : {5, 150, 400})
        mouse(window.get(), QEvent::MouseMove, window->mapToGlobal(QPoint(x, 150)));
    EXPECT_TRUE(place->childIsCatched());
}

TEST_F(FloatingTest, TheWindowFollowsItsPlaceAndEndsWithIt)
{
    place->releaseChild();
    place->hide();
    EXPECT_TRUE(container()->isHidden());
    place->show();
    EXPECT_TRUE(container()->isVisible());
    window.reset();
    EXPECT_FALSE(child);
    QMouseEvent late(QEvent::MouseMove, {}, {}, Qt::NoButton, Qt::LeftButton, {});
    QLabel other;
    QApplication::sendEvent(&other, &late);  // no filter is left
}

TEST(DelayedLineEditTest, ReportsEachChangeOnceAndNothingElse)
{
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* edit = new DelayedLineEdit("start", 1);
    auto* patient = new DelayedLineEdit(Patience);
    layout->addWidget(edit);
    layout->addWidget(patient);
    window.show();
    QApplication::setActiveWindow(&window);
    QSignalSpy reports(edit, &DelayedLineEdit::delayedTextEdited);
    edit->setFocus();
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    ASSERT_TRUE(waitFor([&] { return reports.count() == 1; }));
    EXPECT_EQ(reports.takeFirst()[0].toString(), "");
    edit->setText("from the program");
    patient->setFocus();
    EXPECT_EQ(reports.count(), 0);

    QSignalSpy late(patient, &DelayedLineEdit::delayedTextEdited);
    QTest::keyClicks(patient, "12");
    EXPECT_EQ(late.count(), 0);
    QTest::keyClick(patient, Qt::Key_Return);
    edit->setFocus();
    ASSERT_EQ(late.count(), 1);
    EXPECT_EQ(late[0][0].toString(), "12");
}

}  // namespace

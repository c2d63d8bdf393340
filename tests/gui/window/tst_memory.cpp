// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a window brings back from the one before: recent files, the last session, panels and place.
#include "gui/kit/ContainerSideBar.h"
#include "gui/kit/MdiArea.h"
#include "gui/window/LaterSettings.h"
#include "gui/window/RecentFiles.h"
#include "gui/window/Session.h"
#include "gui/window/ShortcutSheet.h"
#include "imagelib/display/MColorTable.h"
#include "tests/gui/window/MainWindowTest.h"

#include <QScrollArea>
#include <QSettings>
#include <QShortcut>
#include <QStackedWidget>

namespace {

using morvend::imglib::MColorTable;

class MemoryTest : public MainWindowTest {
protected:
    /// Ends the window and makes the one of the next start.
    void restart(const PanelMaker& panels = makePanels)
    {
        _window.reset();
        settle();
        _window = std::make_unique<MainWindow>(_core, true, true, panels);
        _window->resize(500, 300);
        _window->restorePlace();
        _window->show();
    }
    QAction* action(const char* text) const { return find<QAction>(_window.get(), text); }
    RecentFiles* recent() const { return _window->findChild<RecentFiles*>(); }
};

TEST_F(MemoryTest, RecentFilesAreTheTwentyShownLastAndVanishedOnesAreGrey)
{
    SubWindow* window = opened(2);
    _window->openFiles({path("missing_00001.edf")});
    EXPECT_TRUE(errorWasShown());
    for (const int number : {3, 2, 4}) {
        window->loadFile(file(number));
        ASSERT_TRUE(waitForImage(window, number));
    }
    const QStringList newest{file(4), file(2), file(3)};
    EXPECT_EQ(recent()->files().mid(0, 3), newest);
    for (int i = 0; i < 40; ++i)
        recent()->add(path("old" + std::to_string(i)));
    for (const int number : {3, 2, 4})
        recent()->add(file(number));

    restart();
    EXPECT_EQ(recent()->files().mid(0, 3), newest);
    ASSERT_EQ(recent()->files().size(), RecentFiles::Most);
    recent()->popup({});
    const QList<QAction*> entries = recent()->actions();
    EXPECT_EQ(entries[0]->text(), QString::fromStdString(name(4)));
    EXPECT_EQ(entries[0]->toolTip(), QString::fromStdString(_folder.path()));
    EXPECT_TRUE(waitFor([&entries] { return !entries[3]->isEnabled(); })) << "no such file";
    EXPECT_TRUE(entries[0]->isEnabled());
    entries[1]->trigger();
    recent()->hide();
    ASSERT_EQ(_window->subWindows().size(), 1);
    EXPECT_TRUE(waitForImage(_window->subWindows()[0], 2));
}

TEST_F(MemoryTest, TheLastSessionComesBackWithImagesContrastAndLayout)
{
    _window->synchronizeContrast(0);
    _window->synchronizeViewport(0);
    SubWindow* first = opened(1);
    SubWindow* second = opened(5);
    first->goTo(3);
    ASSERT_TRUE(waitForImage(first, 3));
    settle();
    first->setContrast(7, 2);
    first->setColorMode("GS");
    first->setViewport(1, 2, 3);
    second->setContrast(9, 1);
    auto* columns = _window->findChild<MdiArea*>()->mainSplitter();
    columns->setSizes({350, 148});
    settle();
    const QList<int> sizes = columns->sizes();
    const ViewportData viewport = first->service()->viewportData();
    const ContrastData contrast = first->service()->contrastData();

    restart();
    _window->synchronizeContrast(1);
    ASSERT_TRUE(action("Last Session")->isEnabled());
    EXPECT_TRUE(action("Last Session")->toolTip().contains("x_00001.edf"));
    action("Last Session")->trigger();
    ASSERT_EQ(_window->subWindows().size(), 2);
    first = _window->subWindows()[0];
    ASSERT_TRUE(waitForImage(first, 3) && waitForImage(_window->subWindows()[1], 5));
    settle();
    EXPECT_EQ(first->service()->viewportData(), viewport);
    EXPECT_EQ(_window->findChild<MdiArea*>()->mainSplitter()->sizes(), sizes);
    EXPECT_EQ(first->service()->contrastData(), contrast) << "not that of the other view";

    // Without views nothing replaces it.
    restart();
    restart();
    EXPECT_TRUE(action("Last Session")->isEnabled());
    _window->synchronizeContrast(1);
    _window->synchronizeViewport(1);
}

TEST(SessionText, OfAnyOriginGivesWhatCanBeUnderstood)
{
    EXPECT_TRUE(Session::fromJson("").views.isEmpty());
    EXPECT_TRUE(Session::fromJson(R"({"views":{"file":3},"layout":[[["x"]]]})").views.isEmpty());
    Session session;
    session.views = {{"/a/b::/c", 3, 1.5, -2, 4, 100, 1, "Heat"}, {}};
    session.layout = {{1, 2}, {3}};
    const Session read = Session::fromJson(session.toJson());
    ASSERT_EQ(read.views.size(), 1) << "one without a file";
    EXPECT_EQ(read.views[0].file, "/a/b::/c");
    EXPECT_EQ(read.views[0].foreground, 100);
    EXPECT_EQ(read.layout, session.layout);
}

TEST_F(MemoryTest, ThePanelColumnFollowsTheActiveViewAndComesBack)
{
    EXPECT_FALSE(action("Tools")->isEnabled());
    restart(nullptr);
    _window->newSubWindow();
    EXPECT_FALSE(action("Tools")->isEnabled()) << "without panels there is nothing to show";

    const PanelMaker panels = [](TarvikService&, ImageDrawerMain&, unsigned long long key) {
        auto* root = new ContainerSideBar(key);
        for (int i = 1; i < 3; ++i)
            root->addSideBar(new SideBar(key + static_cast<unsigned>(i)));
        return root;
    };
    for (const bool again : {false, true}) {
        restart(panels);
        auto* stack = _window->findChild<QStackedWidget*>();
        auto* area = _window->findChild<QScrollArea*>();
        EXPECT_TRUE(area->isHidden());
        SubWindow* first = _window->newSubWindow();
        ASSERT_TRUE(action("Tools")->isEnabled());
        EXPECT_EQ(action("Tools")->isChecked(), again);
        action("Tools")->setChecked(true);
        EXPECT_TRUE(area->isVisible());
        EXPECT_EQ(area->maximumWidth(), 360);
        const QWidget* panelsOfFirst = stack->currentWidget();
        auto* unfolded = stack->findChildren<SideBar*>().value(2);
        EXPECT_EQ(unfolded->visible(), again);
        unfolded->setMinimumHeight(1000);
        unfolded->toggleVisible(true);
        if (!again) {
            EXPECT_EQ(unfolded->mapTo(area->viewport(), QPoint()).y(), unfolded->titleHeight());
        }
        SubWindow* second = _window->newSubWindow();
        EXPECT_NE(stack->currentWidget(), panelsOfFirst);
        first->setActivated(true);
        EXPECT_EQ(stack->currentWidget(), panelsOfFirst);
        EXPECT_EQ(stack->count(), 2);
        if (again) {
            first->close();
            second->close();
            settle();
            EXPECT_TRUE(area->isHidden());
            EXPECT_EQ(stack->count(), 0);
            EXPECT_FALSE(action("Tools")->isEnabled() || action("Tools")->isChecked());
        }
    }
}

TEST_F(MemoryTest, ThePlaceOnTheScreenComesBack)
{
    restart();
    _window->setGeometry(40, 60, 640, 444);
    settle();
    restart();
    EXPECT_EQ(_window->size(), QSize(640, 444));
}

TEST_F(MemoryTest, TheSheetHasEveryKeyOfTheWindow)
{
    QTest::keyClick(_window.get(), Qt::Key_F1);
    auto* sheet = _window->findChild<ShortcutSheet*>();
    ASSERT_TRUE(sheet && sheet->isVisible() && !sheet->isModal());
    QStringList texts;
    for (const QLabel* label : sheet->findChildren<QLabel*>())
        texts << label->text();
    for (const QShortcut* shortcut : _window->findChildren<QShortcut*>())
        EXPECT_TRUE(texts.contains(shortcut->key().toString()))
            << shortcut->key().toString().toStdString();
    for (const QAction* withKey : _window->findChildren<QAction*>())
        EXPECT_TRUE(withKey->shortcut().isEmpty() ||
                    texts.contains(withKey->shortcut().toString()));
    for (const char* text : {"F", "B", "N", "P", "+", "-", "Wheel", "Right drag",
                             "Drag on the strip", "Open Image File"})
        EXPECT_TRUE(texts.contains(text)) << text;
    EXPECT_EQ(ShortcutSheet::effectOf("Open it (now) (Ctrl O)\nMore"), "Open it (now)");
}

}  // namespace

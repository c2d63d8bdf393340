// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The tool bars of the main window, and how they follow the active view.
#include "gui/kit/RibbonInterface.h"
#include "gui/window/HalvoWidget.h"
#include "gui/window/RecentFiles.h"
#include "tests/gui/window/MainWindowTest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLineEdit>
#include <QSettings>
#include <QSignalSpy>

namespace {

class ToolBarTest : public MainWindowTest {
protected:
    QAction* action(const char* text) const { return find<QAction>(_window.get(), text); }
    template <class Widget>
    Widget* named(const QString& text) const
    {
        for (Widget* widget : _window->findChildren<Widget*>())
            if (widget->text() == text)
                return widget;
        return nullptr;
    }
};

TEST_F(ToolBarTest, HasFourTabsWithTheirEntries)
{
    const QList<std::pair<QString, QStringList>> tabs{
        {"File", {"New Window", "Open", "Save As", "Export"}},
        {"Synchronize", {"Synchronize Viewport", "Synchronize Contrast", "Synchronize Statistics"}},
        {"Auto Load", {"Movie Mode", "Watch Series", "HALVO Monitor"}},
        {"Help", {"Documentation", "About"}}};
    _window->resize(1200, 300);
    auto* ribbon = _window->findChild<RibbonInterface*>();
    for (const auto& [tab, texts] : tabs) {
        QTest::mouseClick(named<QToolButton>(tab), Qt::LeftButton);
        int right = -1;
        for (const QString& text : texts) {
            auto* entry = named<QAbstractButton>(text);
            ASSERT_TRUE(entry) << text.toStdString();
            EXPECT_TRUE(entry->isVisible()) << text.toStdString();
            EXPECT_EQ(entry->parentWidget(), ribbon->toolBar(tab)) << text.toStdString();
            EXPECT_GT(entry->x(), right) << text.toStdString();
            right = entry->geometry().right();
        }
    }
    for (const char* text : {"Movie Mode", "Watch Series", "Tools"}) {
        EXPECT_TRUE(action(text)->isCheckable()) << text;
        EXPECT_FALSE(action(text)->isEnabled()) << text;
    }
    auto* monitor = named<QToolButton>("HALVO Monitor");
    EXPECT_TRUE(monitor->isEnabled() && !monitor->isChecked());
    EXPECT_EQ(monitor->popupMode(), QToolButton::MenuButtonPopup);
}

TEST_F(ToolBarTest, EverythingCanBeReachedInANarrowWindow)
{
    auto* recent = _window->findChild<RecentFiles*>();
    recent->add(file(1));
    for (const int width : {1024, 512}) {
        _window->resize(width, 300);
        auto* ribbon = _window->findChild<RibbonInterface*>();
        for (const char* tab : {"File", "Synchronize", "Auto Load", "Help"}) {
            QTest::mouseClick(named<QToolButton>(tab), Qt::LeftButton);
            settle();
            QToolBar* bar = ribbon->toolBar(tab);
            auto* more = bar->findChild<QToolButton*>("qt_toolbar_ext_button");
            QStringList offered;
            const auto readMenu = [&] {
                auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                for (const QAction* entry : menu->actions())
                    offered << entry->text();
                menu->close();
            };
            if (more->isVisible()) {
                EXPECT_TRUE(more->isEnabled() && bar->rect().contains(more->geometry().center()))
                    << tab;
                QTimer::singleShot(0, more, readMenu);
                QTest::mouseClick(more, Qt::LeftButton);
            }
            for (QAction* action : bar->actions()) {
                const auto* button = qobject_cast<QAbstractButton*>(bar->widgetForAction(action));
                if (!button)
                    continue;
                EXPECT_TRUE(!button->isVisible() || button->width() >= button->sizeHint().width())
                    << tab << width;
                EXPECT_EQ(button->isVisible(), !offered.contains(button->text()))
                    << tab << ' ' << button->text().toStdString();
            }
        }
    }

    QTest::mouseClick(named<QToolButton>("Synchronize"), Qt::LeftButton);
    settle();
    auto* box = named<QCheckBox>("Synchronize Contrast");
    const bool before = box->isChecked();
    auto* more = box->parentWidget()->findChild<QToolButton*>("qt_toolbar_ext_button");
    QTimer::singleShot(0, more, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        auto* entry = find<QAction>(menu, box->text());
        EXPECT_EQ(entry->isChecked(), before);
        menu->setActiveAction(entry);
        QTest::keyClick(menu, Qt::Key_Return);
    });
    QTest::mouseClick(more, Qt::LeftButton);
    EXPECT_NE(box->isChecked(), before);
}

TEST_F(ToolBarTest, ManyViewsDoNotWidenTheWindow)
{
    for (int i = 0; i < 17; ++i)
        _window->newSubWindow();
    settle();
    EXPECT_LE(_window->minimumSizeHint().width(), 512);
}

/// Takes the place of the browser.
class Browser : public QObject {
    Q_OBJECT
public:
    Browser() { QDesktopServices::setUrlHandler("file", this, "open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler("file"); }
    QList<QUrl> opened;
public slots:
    void open(const QUrl& url) { opened.append(url); }
};

TEST_F(ToolBarTest, DocumentationIsOpenedInTheBrowser)
{
    const Browser browser;
    action("Documentation")->trigger();
    ASSERT_EQ(browser.opened.size(), 1);
    EXPECT_TRUE(browser.opened[0].path().endsWith("/tarvik_doc/index.html"));
    EXPECT_TRUE(QFileInfo(browser.opened[0].toLocalFile()).isFile());
}

TEST_F(ToolBarTest, ShowsTheModesOfTheActiveView)
{
    SubWindow* first = opened(1);
    SubWindow* second = opened(2);
    EXPECT_TRUE(action("Movie Mode")->isEnabled() && action("Watch Series")->isEnabled());
    first->service()->setWatchSeriesMode(true);
    EXPECT_FALSE(action("Watch Series")->isChecked()) << "another view is active";
    first->setActivated(true);
    EXPECT_TRUE(action("Watch Series")->isChecked());
    second->setActivated(true);
    EXPECT_FALSE(action("Watch Series")->isChecked());
    EXPECT_TRUE(first->service()->watchSeriesMode()) << "showing a mode changes none";

    action("Watch Series")->trigger();
    EXPECT_TRUE(second->service()->watchSeriesMode());
    _window->newSubWindow();
    EXPECT_FALSE(action("Watch Series")->isEnabled() || action("Watch Series")->isChecked());
    first->setActivated(true);
    for (SubWindow* view : _window->subWindows())
        view->close();
    settle();
    for (const char* text : {"Movie Mode", "Watch Series", "Tools"})
        EXPECT_FALSE(action(text)->isEnabled() || action(text)->isChecked()) << text;
}

TEST_F(ToolBarTest, AMovieGoesOnAndOffFromBothBars)
{
    SubWindow* window = opened(1);
    QToolButton* play = nullptr;
    for (auto* button : window->titleBar()->findChildren<QToolButton*>())
        if (button->toolTip() == "Start/Stop Movie Mode")
            play = button;
    ASSERT_TRUE(play && play->isEnabled());
    auto* steps = window->titleBar()->findChild<QComboBox*>();
    steps->setCurrentText("5");
    EXPECT_EQ(window->service()->movieModeStep(), 5);
    const qint64 idle = play->icon().cacheKey();
    QTest::mouseClick(play, Qt::LeftButton);
    EXPECT_TRUE(window->service()->movieMode());
    EXPECT_TRUE(action("Movie Mode")->isChecked());
    EXPECT_NE(play->icon().cacheKey(), idle);
    EXPECT_TRUE(waitForImage(window, 11)) << "from 1 in steps of 5";
    action("Movie Mode")->trigger();
    EXPECT_FALSE(window->service()->movieMode());
    EXPECT_FALSE(play->isChecked());
    EXPECT_EQ(play->icon().cacheKey(), idle);
}

TEST_F(ToolBarTest, BoxesAndCoreFollowEachOther)
{
    const QList<std::tuple<const char*, void (TarvikCore::*)(bool), void (TarvikCore::*)(bool),
                           void (MainWindow::*)(int)>>
        rows{{"Synchronize Viewport", &TarvikCore::synchronizeViewportSlot,
              &TarvikCore::synchronizeViewportSignal, &MainWindow::synchronizeViewport},
             {"Synchronize Contrast", &TarvikCore::synchronizeContrastSlot,
              &TarvikCore::synchronizeContrastSignal, &MainWindow::synchronizeContrast},
             {"Synchronize Statistics", &TarvikCore::synchronizeStatisticsSlot,
              &TarvikCore::synchronizeStatisticsSignal, &MainWindow::synchronizeStatistics},
             {"Synchronize Statistics", &TarvikCore::synchronizePeaksSlot,
              &TarvikCore::synchronizePeaksSignal, &MainWindow::synchronizeStatistics}};
    for (const auto& [text, slot, signal, number] : rows) {
        auto* box = named<QCheckBox>(text);
        EXPECT_TRUE(box->isChecked()) << text << ", as in the core";
        QSignalSpy spy(&_core, signal);
        box->click();
        EXPECT_EQ(spy.count(), 1) << text;
        (_core.*slot)(true);
        EXPECT_TRUE(box->isChecked()) << text;
        (_window.get()->*number)(0);
        EXPECT_FALSE(box->isChecked()) << text;
        (_window.get()->*number)(2);
        EXPECT_TRUE(box->isChecked()) << text;
        EXPECT_EQ(spy.count(), 4) << text;
    }
}

TEST_F(ToolBarTest, TheMonitorMakesAViewOfItsOwnAndItsHostGoesWhereItBelongs)
{
    auto* widget = _window->findChild<HalvoWidget*>();
    const QList<QLineEdit*> fields = widget->findChildren<QLineEdit*>();
    fields[1]->setText("8080");
    emit fields[1]->textEdited("8080");
    EXPECT_EQ(QSettings().value("HalvoPort").toInt(), 8080) << "the default, without view";
    named<QToolButton>("HALVO Monitor")->click();
    ASSERT_EQ(_window->subWindows().size(), 1);
    TarvikService& service = *_window->activeSubWindow()->service();
    EXPECT_TRUE(service.halvoMonitorMode());
    EXPECT_EQ(service.halvoMonitorPort(), 8080);
    service.setHalvoMonitorHost("10.0.0.7", 81, 0.5);
    EXPECT_EQ(fields[0]->text() + fields[1]->text() + fields[2]->text(), "10.0.0.7810.5");
    named<QToolButton>("HALVO Monitor")->click();
    EXPECT_FALSE(service.halvoMonitorMode());
    _window->activeSubWindow()->close();
    settle();
}

TEST(HalvoWidgetTest, AnnouncesOnlyAddresses)
{
    for (const auto& [host, port, valid] : {std::tuple("10.0.0.1", 80, true),
                                            {"HTTP://detector", 80, true},
                                            {"detector", -1, false},
                                            {"detector", 70000, false},
                                            {"a b", 80, false}})
        EXPECT_EQ(HalvoWidget::urlValid(host, port), valid) << host << ":" << port;
    HalvoWidget widget;
    widget.setHost("h", 80, 0);
    QSignalSpy spy(&widget, &HalvoWidget::newHost);
    const QList<QLineEdit*> fields = widget.findChildren<QLineEdit*>();
    for (const auto& [field, text, count] : {std::tuple(1, "x", 0), {1, "81", 1}, {2, "-", 2}}) {
        fields[field]->clear();
        QTest::keyClicks(fields[field], text);
        EXPECT_EQ(spy.count() > 0, count > 0) << text;
        const QColor colour = fields[0]->palette().color(QPalette::Text);
        EXPECT_EQ(colour, count ? QColor(Qt::black) : QColor(Qt::red)) << text;
    }
    EXPECT_EQ(spy.last(), QList<QVariant>({"h", 81, 0.0}));
}

}  // namespace

#include "tst_toolbar.moc"

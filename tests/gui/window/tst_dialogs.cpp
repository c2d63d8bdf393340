// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The dialogs of a view, driven as a user does, and its actions with the clipboard.
#include "gui/kit/ErrorDialog.h"
#include "gui/kit/SaveFileDialog.h"
#include "gui/render/ImageDrawerMain.h"
#include "gui/window/About.h"
#include "gui/window/ExportDialog.h"
#include "gui/window/MainWindow.h"
#include "gui/window/SubWindow.h"
#include "gui/window/ViewActions.h"
#include "imagelib/image/MException.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"
#include "tests/gui/render/MouseEvents.h"
#include "tests/support/EdfFile.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTextEdit>
#include <QTimer>

#include <functional>
#include <list>
#include <map>

namespace {

template <class Widget>
Widget* named(QWidget& parent, const QString& text)
{
    for (Widget* widget : parent.findChildren<Widget*>())
        if (widget->text() == text)
            return widget;
    return nullptr;
}

class Dialogs : public testing::Test {
protected:
    Dialogs()
    {
        QSettings().clear();
        _core.setDefaultColorTable("High Dynamic Range");
        _window = std::make_unique<MainWindow>(_core, true, false);
        _window->resize(500, 300);
        _window->show();
        (void)QTest::qWaitForWindowExposed(_window.get(), Patience);
        _window->activateWindow();
        (void)QTest::qWaitForWindowActive(_window.get(), Patience);
        tarvik::tests::writeEdf(_folder, "x.edf", 100, std::vector(10000, 7));
        _view = _window->newSubWindow();
        _view->loadFile(path("x.edf"));
        EXPECT_TRUE(waitFor([this] { return _view->service()->imageLoaded(); }));
        settle();
        QObject::connect(&_poll, &QTimer::timeout, [this] { answer(); });
        _poll.start(5);
    }
    ~Dialogs() override
    {
        EXPECT_TRUE(_answers.empty()) << "a dialog never came";
        _window.reset();
        settle();
    }

    QString path(const QString& name) const
    {
        return QString::fromStdString(_folder.path()) + '/' + name;
    }
    /// What the user does with the next modal dialog of a kind.
    template <class Dialog>
    void expectDialog(std::function<void(Dialog&)> act)
    {
        _answers.push_back([act = std::move(act)](QWidget* widget) {
            auto* dialog = qobject_cast<Dialog*>(widget);
            if (dialog)
                act(*dialog);
            return dialog != nullptr;
        });
    }
    /// Chooses a name, and a format if one is given.
    void chooseFile(const QString& name, const QString& filter = {})
    {
        expectDialog<SaveFileDialog>([=, this](SaveFileDialog& dialog) {
            auto* line = dialog.findChild<QLineEdit*>("fileNameEdit");
            line->setText(path(name));
            auto* filters = dialog.findChild<QComboBox*>("fileTypeCombo");
            for (int i = 0; !filter.isEmpty() && i < filters->count(); ++i)
                if (filters->currentText() != filter)
                    QTest::keyClick(filters, Qt::Key_Down);
            dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)->click();
        });
    }
    void pressExport(bool currentView, bool colorBar)
    {
        expectDialog<ExportDialog>([=](ExportDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), "Export");
            EXPECT_TRUE(named<QRadioButton>(dialog, "Entire Image")->isChecked());
            EXPECT_TRUE(named<QCheckBox>(dialog, "Color Bar")->isChecked());
            EXPECT_TRUE(named<QPushButton>(dialog, "Export")->isDefault());
            if (currentView)
                named<QRadioButton>(dialog, "Current View")->click();
            if (!colorBar)
                named<QCheckBox>(dialog, "Color Bar")->click();
            named<QPushButton>(dialog, "Export")->click();
        });
    }
    void closeError()
    {
        expectDialog<ErrorDialog>([this](ErrorDialog& dialog) {
            _error = dialog.findChild<QLabel*>()->text();
            dialog.findChild<QPushButton*>()->click();
        });
    }
    static QString setting(const QString& key) { return QSettings().value(key).toString(); }
    QString folder() const { return path("").chopped(1); }

    tarvik::tests::TempFolder _folder;
    TarvikCore _core;
    std::unique_ptr<MainWindow> _window;
    SubWindow* _view = nullptr;
    QString _error;

private:
    void answer()
    {
        QWidget* dialog = QApplication::activeModalWidget();
        if (_answers.empty() || !dialog || !dialog->isVisible() || dialog == _last)
            return;
        const QPointer<QWidget> before = std::exchange(_last, dialog);
        const auto act = _answers.front();
        _answers.pop_front();
        if (!act(dialog)) {
            _answers.push_front(act);
            _last = before;
        }
    }

    QTimer _poll;
    std::list<std::function<bool(QWidget*)>> _answers;
    QPointer<QWidget> _last;
};

TEST_F(Dialogs, TheNameFollowsTheFormat)
{
    testing::internal::CaptureStdout();
    SaveFileDialog dialog(nullptr, {"png", "jpg"}, "Export", folder());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "0 " + _folder.path() + "\n");
    EXPECT_EQ(dialog.nameFilters(), QStringList({"png ( *.png)", "jpg ( *.jpg)"}));
    const QStringList directory = dialog.selectedFiles();
    const auto choose = [&dialog](const QString& filter) {
        dialog.selectNameFilter(filter);
        emit dialog.filterSelected(filter);
    };
    const std::pair<QString, QString> names[] = {
        {"a.png", "a.jpg"}, {"b", "b.jpg"}, {"c.d.png", "c.d.jpg"}};
    choose("jpg ( *.jpg)");
    EXPECT_EQ(dialog.selectedFiles(), directory);
    for (const auto& [before, after] : names) {
        dialog.selectFile(path(before));
        choose("jpg ( *.jpg)");
        EXPECT_EQ(dialog.selectedFiles(), QStringList(path(after)));
    }
    EXPECT_EQ(dialog.extension(), "jpg");
    EXPECT_EQ(dialog.defaultSuffix(), "jpg");
    dialog.setExtension("png");
    EXPECT_EQ(dialog.extension(), "png");
}

TEST_F(Dialogs, PicturesOfImageAndViewAreExported)
{
    const QSize view = _view->displaySize();
    const QSize legend(150, 400);
    const struct {
        QString name;
        bool currentView;
        bool colorBar;
        QSize size;
    } rows[] = {{"image.png", false, false, {100, 100}},
                {"imagebar.png", false, true, {250, 400}},
                {"view.png", true, false, view},
                {"viewbar.png", true, true, {view.width() + 150, 400}}};
    ASSERT_LT(view.height(), legend.height());
    for (const auto& row : rows) {
        chooseFile(row.name);
        pressExport(row.currentView, row.colorBar);
        _view->openExportDialog();
        EXPECT_EQ(QImage(path(row.name)).size(), row.size) << row.name.toStdString();
    }
    const QImage shown = _view->imageDrawer()->grab();
    const QImage picture(path("viewbar.png"));
    EXPECT_EQ(picture.copy(QRect(QPoint(), view)).convertToFormat(shown.format()), shown);
    EXPECT_EQ(picture.pixel(0, 399), qRgb(255, 255, 255)) << "below the view";
    EXPECT_EQ(picture.copy(QRect(QPoint(view.width(), 0), legend)).convertToFormat(shown.format()),
              _view->service()->colorLegend(150, 400));
    EXPECT_EQ(setting("ExportDirectory"), folder());
}

TEST_F(Dialogs, AFailedExportIsReportedAndLeavesNoTrace)
{
    for (const bool currentView : {true, false}) {
        QDir(folder()).mkdir("closed");
        chooseFile("closed/x.png");
        expectDialog<ExportDialog>([=, this](ExportDialog& dialog) {
            QDir(folder()).rmdir("closed");
            if (currentView)
                named<QRadioButton>(dialog, "Current View")->click();
            named<QPushButton>(dialog, "Export")->click();
        });
        closeError();
        _view->openExportDialog();
        EXPECT_EQ(_error, "Cannot write to " + path("closed/x.png"));
    }
    EXPECT_EQ(setting("ExportDirectory"), "");
    EXPECT_THROW(_view->exportToFile(path("closed/x.png"), "png"), morvend::MNoFileAccessException);
}

TEST_F(Dialogs, CancelWritesNothing)
{
    chooseFile("x.png");
    expectDialog<ExportDialog>([](ExportDialog& dialog) {
        named<QPushButton>(dialog, "Export")->click();
        named<QPushButton>(dialog, "Cancel")->click();
    });
    _view->openExportDialog();
    settle();
    EXPECT_EQ(QDir(folder()).entryList(QDir::Files | QDir::Hidden), QStringList("x.edf"));
    EXPECT_EQ(setting("ExportDirectory"), "");
}

TEST_F(Dialogs, AViewMayCloseUnderItsDialogs)
{
    expectDialog<SaveFileDialog>([this](SaveFileDialog& dialog) {
        _view->close();
        settle();
        dialog.reject();
    });
    _view->openExportDialog();
    _view = _window->newSubWindow();
    _view->loadFile(path("x.edf"));
    ASSERT_TRUE(waitFor([this] { return _view->service()->imageLoaded(); }));
    chooseFile("x.png");
    expectDialog<ExportDialog>([this](ExportDialog&) { _view->close(); });
    _view->openExportDialog();
    EXPECT_FALSE(QFile::exists(path("x.png")));
}

TEST_F(Dialogs, CopiesAreSavedInTheChosenFormat)
{
    for (const QString extension : {"cbf", "tif", "h5"}) {
        chooseFile("copy", extension + " ( *." + extension + ')');
        _view->openSaveAsDialog();
        EXPECT_TRUE(waitFor([&] { return QFile::exists(path("copy." + extension)); }));
        QSignalSpy shown(_view->service(), &TarvikService::newImageSignal);
        _view->loadFile(path("copy." + extension));
        ASSERT_TRUE(shown.wait(Patience));
        EXPECT_EQ(_view->service()->intensityString(99, 99), "7");
    }
    EXPECT_EQ(setting("SaveAsDirectory"), folder());
    for (const auto& [name, begin] : std::initializer_list<std::pair<QString, QByteArray>>{
             {"named.tif", "II"}, {"named.TIFF", "II"}, {"named.hdf5", "\x89H"}}) {
        chooseFile(name);
        _view->openSaveAsDialog();
        ASSERT_TRUE(waitFor([&] { return QFile::exists(path(name)); }));
        QFile named(path(name));
        ASSERT_TRUE(named.open(QIODevice::ReadOnly));
        EXPECT_EQ(named.read(2), begin) << "the ending decides over the filter";
    }
    QDir(folder()).mkdir("y_data_000001.h5");
    chooseFile("y", "h5 ( *.h5)");
    closeError();
    _view->openSaveAsDialog();
    EXPECT_TRUE(waitFor([this] { return !_error.isEmpty(); }));
    EXPECT_FALSE(QFile::exists(path("y.h5")));
}

TEST_F(Dialogs, AboutShowsItsTextsWhenAsked)
{
    About about(_window.get());
    about.show();
    // What the X server still says about its first size would undo the next one.
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&about, Patience));
    settle();
    const auto labels = about.findChildren<QLabel*>();
    ASSERT_EQ(labels.size(), 2);
    EXPECT_EQ(labels[0]->text(), "TARVIK Viewer");
    EXPECT_TRUE(QRegularExpression("^\nVersion: 3\\.2\\.0 \\d\\d-\\d\\d-\\d{4}$")
                    .match(labels[1]->text())
                    .hasMatch());
    const QSize small = about.size();
    const auto texts = about.findChildren<QTextEdit*>();
    ASSERT_EQ(texts.size(), 2);
    EXPECT_TRUE(texts[0]->toPlainText().startsWith("# Changes"));
    EXPECT_TRUE(texts[1]->toPlainText().contains("MIT"));
    const QString names[] = {"Changelog", "License"};
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(texts[i]->isHidden());
        named<QPushButton>(about, names[i])->click();
        EXPECT_TRUE(texts[i]->isVisible());
        EXPECT_TRUE(waitFor([&] { return about.height() > small.height() + 400; }));
        named<QPushButton>(about, names[i])->click();
        EXPECT_TRUE(texts[i]->isHidden());
        EXPECT_TRUE(waitFor([&] { return about.size() == small; }));
    }
    named<QPushButton>(about, "Close")->click();
    EXPECT_EQ(about.result(), QDialog::Accepted);
}

TEST_F(Dialogs, KeysFitTheImageAndCopyFromTheView)
{
    ViewActions* actions = _window->findChild<ViewActions*>();
    if (!actions)
        actions = new ViewActions(*_window, [this] { return _window->activeSubWindow(); });
    ImageDrawerMain& drawer = *_view->imageDrawer();
    const auto zoom = [this] { return _view->service()->viewportData().zoomPower; };
    const auto press = [this](Qt::Key key, Qt::KeyboardModifiers keys = Qt::ControlModifier) {
        QTest::keyClick(_window.get(), key, keys);
    };
    _view->resize(500, 300);
    settle();
    press(Qt::Key_0);
    EXPECT_EQ(zoom(), 1) << "100 pixels in the height of " << drawer.height();
    EXPECT_EQ(_view->visibileRange(), QRectF(0, 0, 100, 100));
    mouse::send(drawer, QEvent::MouseButtonDblClick, drawer.rect().center(), Qt::LeftButton,
                Qt::LeftButton);
    EXPECT_EQ(zoom(), 0);
    mouse::send(drawer, QEvent::MouseButtonDblClick, drawer.rect().center(), Qt::LeftButton,
                Qt::LeftButton);
    EXPECT_EQ(zoom(), 1);
    press(Qt::Key_1);
    EXPECT_EQ(zoom(), 0);

    press(Qt::Key_C);
    const QImage copied = QGuiApplication::clipboard()->image();
    EXPECT_EQ(copied.convertToFormat(QImage::Format_RGB32),
              drawer.grab().convertToFormat(QImage::Format_RGB32));
    const QPoint pixel(drawer.screenX(12.5), drawer.screenY(34.5));
    mouse::enter(drawer, pixel);
    mouse::hover(drawer, pixel);
    press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(),
              QStringLiteral("Image X %1, Image Y %2, Intensity 7")
                  .arg(int(drawer.imgX(pixel.x())))
                  .arg(int(drawer.imgY(pixel.y()))));

    actions->silenceShortcuts(true);
    press(Qt::Key_0);
    EXPECT_EQ(zoom(), 0);
    actions->silenceShortcuts(false);
    press(Qt::Key_0);
    EXPECT_EQ(zoom(), 1);
}

}  // namespace

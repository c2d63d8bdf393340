// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The panel of the region of interest under mouse and keyboard.
#include "gui/kit/FloatingWidget.h"
#include "gui/panels/ResultField.h"
#include "gui/panels/RoiPlotter.h"
#include "gui/panels/RoiSeries.h"
#include "gui/panels/RoiSideBar.h"
#include "gui/panels/TuneRoi.h"
#include "gui/plot/Plotter.h"
#include "tests/gui/render/DrawnImage.h"
#include "tests/support/EdfFile.h"
#include "tests/support/HeldRegions.h"
#include "tests/support/Regions.h"
#include "tests/support/SourcePath.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QThread>

#include <cstdlib>
#include <fstream>

namespace {

using tarvik::tests::sourcePath;

QString textOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

class RoiSideBarTest : public testing::Test {
protected:
    RoiSideBarTest()
        : bar(1, view.service)
        , plotter((bar.show(), *bar.findChild<RoiPlotter*>()))
    {}
    void open() { ASSERT_TRUE(view.open(images::patterned(60, 40))); }
    void set(const StatisticsData& region)
    {
        view.service->setStatisticsData(region);
        (void)view.service->roiStatistics();
        settle();
    }
    StatisticsData region() const { return view.service->statisticsData(); }
    template <class Widget>
    Widget& child(const QString& text) const
    {
        for (auto* each : bar.findChildren<Widget*>())
            if (each->text() == text)
                return *each;
        throw std::out_of_range(text.toStdString());
    }
    /// Visible boxes for numbers, in reading order of the page.
    QList<QAbstractSpinBox*> boxes() const
    {
        QList<QAbstractSpinBox*> found;
        for (auto* each : bar.findChild<TuneRoi*>()->findChildren<QAbstractSpinBox*>())
            if (each->isVisible())
                found << each;
        return found;
    }
    static void type(QAbstractSpinBox* box, const QString& text)
    {
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, text);
    }
    QString results() const
    {
        for (auto* each : plotter.findChildren<ResultField*>())
            if (each->isVisible())
                return each->getString();
        return {};
    }
    int shownCurves() const
    {
        int count = 0;
        for (auto* plot : plotter.findChildren<Plotter*>())
            count += plot->isVisible() && !plot->picture().rows.empty();
        return count;
    }
    void press(const QString& button)
    {
        QTest::mouseClick(&child<QPushButton>(button), Qt::LeftButton);
    }

    DrawnImage view{QSize(300, 200)};
    RoiSideBar bar;
    RoiPlotter& plotter;
};

TEST_F(RoiSideBarTest, TheBoxesOfKindsExcludeEachOther)
{
    QCheckBox& line = child<QCheckBox>("Line Plot");
    EXPECT_FALSE(line.isEnabled());
    open();
    const struct {
        const char* text;
        int kind;
        const char* help;
    } kinds[] = {{"Line Plot", 1, "<i> Select region by right clicking"},
                 {"Box Plot", 2, "<i> Select region by right clicking"},
                 {"Circle Plot", 3, "<i> Select region by right clicking"},
                 {"Powder Plot", 4, "<i> Ctrl + right click to set the beam centre<p/>"}};
    for (const auto& kind : kinds) {
        set(regions::box(5, 5, 10, 10));
        if (kind.kind == StatisticsData::Box)
            child<QCheckBox>("Box Plot").click();  // off, to be checked anew
        const QSignalSpy wanted(&bar, &SideBar::ensureVisibleSignal);
        child<QCheckBox>(kind.text).click();
        EXPECT_EQ(wanted.count(), 1) << "the new page is scrolled into sight";
        EXPECT_EQ(region().roiType, kind.kind);
        EXPECT_FALSE(region().roiActive);
        for (auto* each : bar.findChildren<QCheckBox*>())
            EXPECT_EQ(each->isChecked(), each->text() == kind.text) << kind.text;
        EXPECT_TRUE(bar.toolTip().startsWith(kind.help)) << kind.text;
    }
    child<QCheckBox>("Powder Plot").click();
    EXPECT_EQ(region().roiType, StatisticsData::None);
    EXPECT_TRUE(boxes().isEmpty());
    EXPECT_EQ(results(), "");
    EXPECT_TRUE(bar.toolTip().startsWith("<i> Ctrl")) << "the old text stays";
}

TEST_F(RoiSideBarTest, EachSpinBoxSetsItsField)
{
    open();
    const auto expect = [this](StatisticsData start, const QStringList& typed,
                               const StatisticsData& expected) {
        set(start);
        ASSERT_EQ(boxes().size(), typed.size());
        for (int i = 0; i < typed.size(); ++i)
            type(boxes().at(i), typed[i]);
        EXPECT_EQ(region(), expected);
        EXPECT_NEAR(region().theta, expected.theta, 1e-12);
        EXPECT_EQ(QString::number(region().powderX), QString::number(expected.powderX));
    };
    expect(regions::line(1, 2, 3, 4), {"12", "23", "34", "35"}, regions::line(12, 23, 34, 35));
    expect(regions::box(1, 2, 3, 4), {"60", "40", "34", "35"}, regions::box(60, 40, 34, 35));
    expect(regions::circle(9, 9, 4), {"30", "20", "15", "-90.5"},
           regions::circle(30, 20, 15, -90.5 * 0.017453292519943295));
    StatisticsData ring = regions::powder(20, 20, 5, 9);
    expect(ring, {"7", "30", "20.25", "19.5"}, regions::powder(20.25, 19.5, 7, 30));
    type(boxes().at(1), "6");
    EXPECT_EQ(region().outerRadius, 30) << "the outer circle stays outside of the inner one";
    set(regions::powder(20, 20, 12, 8));
    EXPECT_EQ(boxes().at(0)->text(), "12") << "what the view has set is shown as it is";
    EXPECT_EQ(boxes().at(1)->text(), "8");
}

TEST_F(RoiSideBarTest, NumbersAndCurvesAreThoseOfTheService)
{
    open();
    const struct {
        StatisticsData region;
        int curves;
        const char* lastResult;
    } kinds[] = {{regions::line(2, 3, 50, 30), 1, "# Max:  "},
                 {regions::box(2, 3, 50, 30), 2, "# Max:  "},
                 {regions::circle(30, 20, 8), 1, "# Centroid:  ("},
                 {regions::powder(30, 20, 3, 12), 1, "# Max:  "}};
    for (const auto& kind : kinds) {
        set(kind.region);
        const RoiStatistics& numbers = view.service->roiStatistics();
        EXPECT_EQ(shownCurves(), kind.curves);
        EXPECT_GT(plotter.height(), 200 * kind.curves) << "the panel makes room";
        EXPECT_TRUE(
            results().contains("# Integral:  " + QString::number(numbers.integral, 'g', 4) + '\n'));
        EXPECT_TRUE(results().contains("# Sigma:  " + QString::number(numbers.sigma, 'g', 4)));
        EXPECT_TRUE(results().contains(kind.lastResult)) << results().toStdString();
        press("Copy");
        EXPECT_EQ(QApplication::clipboard()->text(), view.service->roiStatisticsToString());
    }
    StatisticsData noCentre = regions::ofType(StatisticsData::CentredCircle);
    set(noCentre);
    EXPECT_EQ(shownCurves(), 0);
    EXPECT_TRUE(results().startsWith("# Integral:  "));
}

TEST_F(RoiSideBarTest, RoomToSpareGoesToThePlot)
{
    open();
    set(regions::line(2, 3, 50, 30));
    bar.resize(345, 1500);
    settle();
    const auto& boxes = *bar.findChild<TuneRoi*>();
    EXPECT_EQ(boxes.height(), boxes.sizeHint().height());
}

TEST_F(RoiSideBarTest, SaveAndCopyAreForAnActiveRegion)
{
    open();
    StatisticsData box = regions::box(2, 3, 10, 10);
    for (const bool active : {false, true, false}) {
        box.roiActive = active;
        set(box);
        EXPECT_EQ(child<QPushButton>("Save").isEnabled(), active);
        EXPECT_EQ(child<QPushButton>("Copy").isEnabled(), active);
        EXPECT_EQ(results().contains("Mean:  \n"), !active) << "not valid";
    }
}

TEST_F(RoiSideBarTest, OldNumbersStayWhileNewOnesAreComputed)
{
    open();
    set(regions::box(0, 0, 10, 10));
    const QString before = results();
    {
        const tarvik::tests::HeldRegions held;
        view.service->setStatisticsData(regions::box(0, 0, 30, 30));
        press("Copy");
        EXPECT_EQ(results(), before);
        EXPECT_EQ(shownCurves(), 2);
    }
    ASSERT_TRUE(waitFor([&] { return !view.service->regionPending(); }));
    EXPECT_NE(results(), before);
    EXPECT_EQ(QApplication::clipboard()->text(), view.service->roiStatisticsToString());
}

/// Three spots in a row, with a masked stretch of columns after them.
images::MImage spotted()
{
    images::MImage image = images::of<int>(48, 16, [](int x, int y) {
        return y == 8 && (x == 3 || x == 8 || x == 14) ? 300 + x : (x + 2 * y) % 4;
    });
    const images::MImage mask =
        images::of<unsigned>(48, 16, [](int x, int) { return x >= 17 && x < 20; });
    image.optionalData().set_pixel_mask(mask);
    tarvik::tests::setGeometry(image.optionalData(), 12, 8, 100e-6F, 100e-6F, 0.1F, 1);
    return image;
}

/// The kept file is written anew when TARVIK_UPDATE_REGIONS is set.
TEST_F(RoiSideBarTest, FileAndClipboardHaveTheKeptReportOfEachKind)
{
    ASSERT_TRUE(view.open(spotted()));
    const tarvik::tests::TempFolder folder;
    const QString file = QString::fromStdString(folder / "report.txt");
    const QString directory = QFileInfo(file).absolutePath();
    QString reports;
    for (const StatisticsData& kind :
         {regions::line(1, 8, 46, 8), regions::box(12, 5, 21, 11), regions::circle(14, 8, 4, 0.5),
          regions::powder(14.3, 8.1, 2, 7)}) {
        SCOPED_TRACE(kind.roiType);
        set(kind);
        press("Copy");
        press("Save");
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        EXPECT_EQ(dialog->labelText(QFileDialog::Accept), "Save");
        EXPECT_FALSE(child<QPushButton>("Save").isDown());
        QSettings().remove("RegionDirectory");
        QFile::remove(file);
        dialog->findChild<QLineEdit*>()->setText(file);
        QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Return);
        // No event of this thread is needed for it.
        for (int i = 0; i < 60'000 && QSettings().value("RegionDirectory") != directory; ++i)
            QThread::msleep(1);
        settle();
        EXPECT_EQ(QSettings().value("RegionDirectory").toString(), directory);
        const QString report = textOf(file);
        EXPECT_EQ(report, QApplication::clipboard()->text());
        EXPECT_EQ(report, view.service->roiStatisticsToString());
        reports += report;
    }
    const QString kept = QString::fromStdString(sourcePath("/tests/data/reports.txt"));
    if (std::getenv("TARVIK_UPDATE_REGIONS"))
        std::ofstream(kept.toStdString()) << reports.toStdString();
    EXPECT_EQ(reports, textOf(kept));
}

TEST_F(RoiSideBarTest, TheResultsComeOutAndHome)
{
    open();
    set(regions::line(2, 3, 50, 30));
    auto& floating = *bar.findChild<FloatingWidget*>();
    press("Pop Out");
    EXPECT_FALSE(floating.childIsCatched());
    EXPECT_EQ(plotter.window()->windowTitle(), "TARVIK ROI");
    EXPECT_EQ(shownCurves(), 1);
    plotter.window()->close();
    settle();
    EXPECT_TRUE(floating.childIsCatched());
    EXPECT_FALSE(child<QPushButton>("Pop Out").isChecked());
    press("Pop Out");
    const QSignalSpy wanted(&bar, &SideBar::ensurePartVisibleSignal);
    press("Pop In");
    EXPECT_TRUE(floating.childIsCatched());
    EXPECT_EQ(wanted.count(), 1) << "what comes home is scrolled into sight";
}

/// A series of files, whose images 3, 5 and 6 have no numbers in the region.
class RoiSeriesTest : public RoiSideBarTest {
protected:
    RoiSeriesTest()
        : series(*bar.findChild<RoiSeries*>())
    {
        for (const int number : {1, 2, 3, 4, 5, 7, 8})
            write(number, number == 5 ? -1 : 10 * number);
        folder.write("x_3.edf", "no image");
        view.service->openImage((folder / "x_1.edf").c_str());
        EXPECT_TRUE(waitFor([&] { return view.service->imageLoaded(); }));
    }
    void write(int number, int value) const
    {
        using tarvik::tests::writeEdf;
        writeEdf(folder, "x_" + std::to_string(number) + ".edf", 20,
                 std::vector<std::int32_t>(400, value));
    }
    QComboBox& choice() const { return *series.findChild<QComboBox*>(); }
    Plotter& plot() const { return *series.findChild<Plotter*>(); }
    void run()
    {
        const QSignalSpy wanted(&bar, &SideBar::ensurePartVisibleSignal);
        press("Plot Series");
        EXPECT_EQ(wanted.count(), 1) << "the plot is scrolled into sight";
        EXPECT_EQ(child<QPushButton>("Stop").isEnabled(), true);
        ASSERT_TRUE(waitFor([&] { return !series.curve().running(); }));
        settle();
    }

    const tarvik::tests::TempFolder folder;
    RoiSeries& series;
};

TEST_F(RoiSeriesTest, PlotsTheRegionOverTheImagesWithGaps)
{
    EXPECT_FALSE(series.isVisible()) << "without a kind of region";
    set(regions::box(2, 2, 6, 6));
    EXPECT_FALSE(plot().isVisible());
    run();
    const plot::Rows expected{{1, 10, 0}, {2, 20, 0}, {3, 0, 1},  {4, 40, 0},
                              {5, 0, 1},  {6, 0, 1},  {7, 70, 0}, {8, 80, 0}};
    EXPECT_EQ(plot().picture().rows, expected);
    EXPECT_EQ(plot().picture().marker, 1.0);
    child<QLabel>("2 of 7 images without numbers");
    choice().setCurrentText("Sum");
    EXPECT_EQ(plot().picture().rows[0][1], 160);
    EXPECT_EQ(plot().picture().yLabel, "Sum");
    EXPECT_EQ(choice().findText("Intensity"), -1);
}

TEST_F(RoiSeriesTest, AClickGoesToTheImage)
{
    set(regions::box(2, 2, 6, 6));
    run();
    const auto click = [this](double x) {
        const int pixel = int(std::lround(plot().picture().scale.pixelOf(x)));
        QTest::mouseClick(&plot(), Qt::LeftButton, {}, {pixel, 80});
    };
    click(6.8);
    EXPECT_TRUE(waitFor([&] { return view.service->imageIndex() == 7; }));
    EXPECT_EQ(plot().picture().marker, 7.0);
    click(3.2);
    EXPECT_TRUE(waitFor([&] { return view.service->imageIndex() == 4; }))
        << "the next with a number";
    EXPECT_EQ(series.curve().points().size(), 7U) << "the curve stays";
}

TEST_F(RoiSeriesTest, EndsWithItsRegionAndItsFile)
{
    set(regions::circle(10, 10, 4));
    choice().setCurrentText("Intensity");
    run();
    EXPECT_EQ(plot().picture().yLabel, "Intensity");
    set(regions::circle(10, 10, 5));
    EXPECT_FALSE(plot().isVisible());
    EXPECT_FALSE(child<QPushButton>("Save Curve").isEnabled());
    run();
    open();
    EXPECT_TRUE(series.curve().points().empty());
    EXPECT_FALSE(child<QPushButton>("Plot Series").isEnabled()) << "images without file";
}

}  // namespace

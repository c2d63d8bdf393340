// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the panels say, and what becomes of typed values.
#include "gui/info/FieldEdit.h"
#include "gui/info/HeaderPreviewDialog.h"
#include "gui/info/InfoBarCursor.h"
#include "gui/info/InfoBarImage.h"
#include "gui/info/InfoBarRaw.h"
#include "gui/info/WriteHeaderToFilesDialog.h"
#include "imagelib/io/MImageWriter.h"
#include "tests/logic/service/ServiceTest.h"
#include "tests/support/TempFolder.h"

#include <QPushButton>
#include <QTextCursor>
#include <QTextDocument>

namespace {

using namespace tarvik::tests;

class InfoBars : public ServiceTest {
protected:
    InfoBars()
    {
        MImage first = image(8, 4, 7);
        auto& header = first.optionalData();
        header.set_description(std::string("PIXEL 1, S/N 12-34"));
        header.set_detector_number(std::string("12-34"));
        header.set_data_collection_date(std::string("2026-01-02"));
        header.set_x_pixel_size(75e-6F);
        header.set_y_pixel_size(75e-6F);
        header.set_wavelength(0.9795F);
        header.set_beam_center_x(3.5F);
        header.set_beam_center_y(2.25F);
        header.set_saturation_value(7);
        header.set_rawHeader(std::string("# 100% raw"));
        show(view, first);
    }
    template <class Bar>
    static QStringList lines(const Bar& bar)
    {
        QStringList found = bar.fieldEdit()->toPlainText().split('\n');
        for (QString& line : found)
            line = line.trimmed();
        return found;
    }
    static void type(FieldEdit& text, const QString& key, const char* number)
    {
        const QTextCursor found = text.document()->find(key);
        QTextCursor cursor = text.textCursor();
        cursor.setPosition(found.selectionEnd());
        text.setTextCursor(cursor);
        QTest::keyClicks(&text, number);
    }

    TarvikService* const view = newView();
};

TEST_F(InfoBars, ImageShowsWhatTheHeaderAndTheStatisticsSay)
{
    InfoBarImage bar(1, view);
    EXPECT_EQ(lines(bar), QStringList{""}) << "no work while it is folded";
    bar.show();
    const QStringList expected{"Detector",
                               "PIXEL 1, S/N 12-34",
                               "",
                               "Date: 2026-01-02",
                               "Number of pixels in X-direction: 8",
                               "Number of pixels in Y-direction: 4",
                               "Pixel size (m): 7.5e-05",
                               "Number of defective: 0",
                               "",
                               "",
                               "Image",
                               "Total intensity: 2.240e+02",
                               "Maximum intensity: 7.000e+00",
                               "# zeros: 0",
                               "# saturated pixels: 32",
                               "Saturation Intensity (Count cutoff): 7",
                               "",
                               "",
                               "Beamline",
                               "Start angle (deg):",
                               "Oscillation range (deg):",
                               "Beam Centre: ( 3.5  , 2.25   )",
                               "Wavelength (\u212B): 0.9795",
                               "Beam energy (eV): 1.266e+04",
                               "Distance (m):",
                               "Filter transmission:"};
    EXPECT_EQ(lines(bar), expected);
    MImage other = image(8, 4, 7);
    other.optionalData().set_x_pixel_size(1e-4F);
    other.optionalData().set_y_pixel_size(2e-4F);
    show(view, other);
    EXPECT_TRUE(lines(bar).contains("Y pixel size (m): 0.0002"));
}

TEST_F(InfoBars, TypedValuesApplyToTheSeriesUntilTheyAreReset)
{
    InfoBarImage bar(1, view);
    bar.show();
    type(*bar.fieldEdit(), "Distance (m): ", "0.25");
    type(*bar.fieldEdit(), "Start angle (deg): ", "-");
    bar.apply();
    EXPECT_EQ(view->optionalData().detector_distance().value_or(-1), 0.25F);
    EXPECT_EQ(view->optionalData().wavelength().value_or(-1), 0.9795F);
    EXPECT_FALSE(view->globalHeader().rotation_angle()) << "a minus is no number";
    EXPECT_TRUE(lines(bar).contains("Distance (m): 0.25"));
    show(view, image(8, 4, 8));
    EXPECT_EQ(view->optionalData().detector_distance().value_or(-1), 0.25F);
    bar.reset();
    EXPECT_FALSE(view->optionalData().detector_distance());
    for (const QPushButton* button : bar.findChildren<QPushButton*>())
        EXPECT_EQ(button->isEnabled(), button->text() != "Write To All") << "no CBF file";
}

/// The only dialog of a class, once it is there and its work is done.
template <class Dialog>
Dialog* waitForDialog()
{
    Dialog* found = nullptr;
    waitFor([&] {
        for (QWidget* widget : QApplication::topLevelWidgets())
            found = found ? found : qobject_cast<Dialog*>(widget);
        return found != nullptr;
    });
    return found;
}

QPushButton* buttonOf(QWidget* widget, const QString& text)
{
    for (auto* button : widget->findChildren<QPushButton*>())
        if (button->text() == text)
            return button;
    return nullptr;
}

/// Agrees to what a preview shows. @returns its text and that of the report at the end
QStringList agree(const QString& button)
{
    auto* const preview = waitForDialog<HeaderPreviewDialog>();
    waitFor([&] { return buttonOf(preview, button)->isEnabled(); });
    QStringList texts{preview->findChild<HeaderReportView*>()->toPlainText()};
    buttonOf(preview, button)->click();
    auto* const dialog = waitForDialog<WriteHeaderToFilesDialog>();
    waitFor([&] { return buttonOf(dialog, "Close")->isEnabled(); });
    texts += dialog->findChild<HeaderReportView*>()->toPlainText();
    buttonOf(dialog, "Close")->click();
    settle();
    return texts;
}

TEST_F(InfoBars, AWriteToAllFilesIsShownBeforeAndCanBeUndone)
{
    const TempFolder folder;
    const auto content = [&](int number) {
        std::ifstream file(folder / ("x_" + std::to_string(number) + ".cbf"), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    for (const char* name : {"x_1.cbf", "x_2.cbf"})
        morvend::imglib::MImageWriter::write(image(), folder / name,
                                             morvend::imglib::MImageWriter::CBF);
    const std::string before = content(2);
    view->openImage((folder / "x_1.cbf").c_str());
    arrive(view);
    InfoBarImage bar(1, view);
    bar.show();
    type(*bar.fieldEdit(), "Filter transmission: ", "0.5");
    buttonOf(&bar, "Write To All")->click();
    auto* const preview = waitForDialog<HeaderPreviewDialog>();
    waitFor([&] { return buttonOf(preview, "Write")->isEnabled(); });
    EXPECT_EQ(content(2), before) << "nothing is written before the user agrees";
    const QStringList written = agree("Write");
    EXPECT_TRUE(written[0].startsWith("2 files will change in ")) << written[0].toStdString();
    EXPECT_TRUE(written[0].contains("+# Filter_transmission 0.5"));
    EXPECT_TRUE(written[1].startsWith("2 files changed in "));
    EXPECT_NE(content(2).find("# Filter_transmission 0.5\r\n"), std::string::npos);
    buttonOf(&bar, "Undo Last Write")->click();
    EXPECT_TRUE(agree("Put Back")[1].startsWith("2 files put back in "));
    EXPECT_EQ(content(2), before);
}

TEST_F(InfoBars, CursorAndRawHeaderFollow)
{
    InfoBarCursor cursor(2, view);
    InfoBarRaw raw(3, view);
    cursor.show();
    raw.show();
    EXPECT_EQ(lines(raw), QStringList{"# 100% raw"});
    view->setCursorCoordinates(3, 2);
    const QStringList found = lines(cursor);
    ASSERT_EQ(found.size(), 5);
    EXPECT_EQ(found[0], CursorInfo::imgXKey() + ": 3");
    EXPECT_EQ(found[2], CursorInfo::intensityKey() + ": 7");
}

}  // namespace

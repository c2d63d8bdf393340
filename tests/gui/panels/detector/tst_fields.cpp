// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The parts of the detector's panel, without a detector.
#include "gui/panels/detector/InfoField.h"
#include "gui/panels/detector/OptToString.h"
#include "gui/panels/detector/SeriesLine.h"
#include "gui/panels/detector/TextEdit.h"
#include "gui/panels/detector/TextField.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

namespace {

TEST(OptToString, KeepsWhatWasTypedForTheSameNumber)
{
    struct Row {
        const char* present;
        std::optional<double> value;
        const char* result;
    };
    const Row rows[] = {{"1e-3", 0.001, "1e-3"},
                        {"0.001", 0.0010001, "0.0010001"},
                        {"0.1", {}, ""},
                        {"0.1", 0.1000000001, "0.1"},
                        {"", 0.0, ""},
                        {"abc", 0.0, "abc"},
                        {"0.000", 0.0, "0.000"},
                        {"abc", 2.5, "2.5"},
                        {"1", -1.0, "-1"},
                        {"1", 12398.4, "12398.4"},
                        {"", 1234567.0, "1.23457e+06"}};
    for (const Row& row : rows)
        EXPECT_EQ(optToString(row.present, row.value).toStdString(), row.result) << row.present;
    EXPECT_EQ(optToString("0100", std::optional(100)), "0100");
    EXPECT_EQ(optToString("1e2", std::optional(100)), "100") << "no integer";
    EXPECT_EQ(optToString("1", std::optional(2'000'000'000)), "2000000000");
    EXPECT_EQ(optToString("5", std::optional<int>()), "");
}

TEST(TextField, BreaksAPathWhereverTheLineEnds)
{
    TextField field;
    field.resize(100, 20);
    const QString path = "/data/visitor/20261124/a_long_name_of_a_sample_007_master.h5";
    field.setText(path);
    EXPECT_EQ(field.text().remove('\n'), path);
    EXPECT_EQ(field.fullText(), path);
    const int lines = 1 + static_cast<int>(field.text().count('\n'));
    EXPECT_GT(lines, 3);
    for (const QString& line : field.text().split('\n'))
        EXPECT_LT(field.fontMetrics().horizontalAdvance(line.chopped(1)), 95);
    EXPECT_GT(field.minimumSizeHint().height(), (lines - 1) * field.fontMetrics().height());
    EXPECT_EQ(field.sizeHint(),
              QSize(field.fontMetrics().horizontalAdvance(path) + 5, field.fontMetrics().height()));
    field.resize(field.sizeHint().width() + 1, 20);
    field.show();  // the size reaches what is shown
    EXPECT_EQ(field.text(), path);
}

TEST(InfoField, TakesNoMarkupFromAReport)
{
    InfoField field;
    EXPECT_TRUE(field.isHidden());
    field.reportError("<img src=x> & more");
    EXPECT_EQ(field.text(), "<i>&lt;img src=x&gt; &amp; more</i>");
    EXPECT_FALSE(field.isHidden());
    field.report("<b>plain</b>");
    EXPECT_EQ(field.textFormat(), Qt::PlainText);
    field.report("Pattern /data/" + QString(500, 'x') + " appears to often");
    EXPECT_LT(field.minimumSizeHint().width(), 350);
    field.report({});
    EXPECT_TRUE(field.isHidden());
}

TEST(TextEdit, ClearsTheLastReport)
{
    QWidget window;
    auto* info = new InfoField(&window);
    auto* field = new TextEdit("help", info, &window);
    window.show();
    EXPECT_EQ(field->toolTip(), "help");
    info->report("old");
    QTest::keyClicks(field, "5");
    EXPECT_TRUE(info->isHidden() && info->text().isEmpty());
    info->report("old");
    QFocusEvent enters(QEvent::FocusIn);
    QApplication::sendEvent(field, &enters);
    EXPECT_TRUE(info->isHidden());

    QSignalSpy reports(field, &TextEdit::delayedTextEdited);
    EXPECT_TRUE(field->pending());
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(reports.size(), 1);
    EXPECT_FALSE(field->pending());
}

TEST(SeriesLine, SaysHowTheSeriesIsGettingOn)
{
    using S = SeriesLine;
    SeriesProgress progress;
    EXPECT_EQ(S::texts(progress)[S::Disk], "\u2013");
    progress.expected = 1000;
    progress.received = 300;
    progress.written = 290;
    progress.shown = 120;
    progress.leftOut = 175;
    progress.rate = 99.96;
    progress.diskSeconds = 6.2;
    EXPECT_EQ(S::texts(progress),
              (std::array<QString, S::Counts>{"300", "290", "0", "120", "5", "100", "6 s"}));
    EXPECT_TRUE(S::alarming(progress, S::Disk)) << "710 frames are to come";
    EXPECT_FALSE(S::alarming(progress, S::Lost));
    progress.lost = 1;
    EXPECT_TRUE(S::alarming(progress, S::Lost));

    const std::pair<double, const char*> durations[] = {
        {0, "0 s"}, {119, "119 s"}, {180, "3 min"}, {7300, "2 h"}, {4e5, "5 d"}, {1e300, "999 d"}};
    for (const auto& [seconds, text] : durations) {
        progress.diskSeconds = seconds;
        EXPECT_EQ(S::texts(progress)[S::Disk], text);
    }
    progress.rate = 1234.4;
    EXPECT_EQ(S::texts(progress)[S::Rate], "1234");

    SeriesLine line;
    EXPECT_TRUE(line.isHidden());
    line.setProgress(progress);
    EXPECT_FALSE(line.isHidden());
    line.clear();
    EXPECT_TRUE(line.isHidden());
}

}  // namespace

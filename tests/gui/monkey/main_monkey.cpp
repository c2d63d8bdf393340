// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Random deeds on the whole window. The variable DEEDS says how many, SEED which:
//
//     DEEDS=100000 SEED=7 xvfb-run -a build/asan/bin/monkey
#include "gui/window/MainWindow.h"
#include "logic/core/TarvikCore.h"
#include "tests/gui/monkey/Monkey.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <memory>

namespace {

using namespace tarvik::tests;

/// Series of all formats, one with a gap, a file that is cut off and one that is not there.
QStringList series(const QString& folder)
{
    EXPECT_EQ(QProcess::execute(TARVIK_DEMO_DATA, {folder, "--small"}), 0);
    QStringList result{folder + "/no_such_0001.cbf"};
    for (QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories); files.hasNext();)
        result << files.next();
    result.sort();
    const QStringList cbf = result.filter(".cbf");
    EXPECT_TRUE(QFile(cbf.value(2)).resize(1000));
    EXPECT_TRUE(QFile::remove(cbf.value(3)));
    return result;
}

struct Browser : QObject {
    Q_OBJECT
public slots:
    void show(const QUrl&) {}
};

QStringList* warnings = nullptr;

void keepWarnings(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    // The test library's own remark: keys go to whatever has no use for them.
    if (text.startsWith("Keyboard event not accepted"))
        return;
    if (type != QtDebugMsg && type != QtInfoMsg)
        warnings->append(text);
}

TEST(Monkey, FindsNothing)
{
    const int deeds = qEnvironmentVariable("DEEDS", "3000").toInt();
    const unsigned seed = qEnvironmentVariable("SEED", "1").toUInt();
    const TempFolder folder;
    // What it saves by chance stays in the folder.
    QDir::setCurrent(QString::fromStdString(folder / ""));
    Browser browser;
    QDesktopServices::setUrlHandler("file", &browser, "show");
    QStringList said;
    warnings = &said;
    const auto before = qInstallMessageHandler(keepWarnings);
    {
        TarvikCore core;
        core.setDefaultColorTable("High Dynamic Range");
        MainWindow window(core, true, false);
        window.setOpenDirectory(QDir::currentPath());
        window.resize(800, 600);
        window.show();
        Monkey monkey(window, series(QDir::currentPath()), seed);
        monkey.act(deeds);
        EXPECT_TRUE(said.isEmpty()) << said.join('\n').toStdString() << "\nThe last deeds:\n"
                                    << monkey.deeds().join('\n').toStdString();
    }
    qInstallMessageHandler(before);
    QDesktopServices::unsetUrlHandler("file");
    QDir::setCurrent("/");
}

}  // namespace

#include "main_monkey.moc"

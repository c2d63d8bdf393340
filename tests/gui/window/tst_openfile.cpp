// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which files the open dialog shows, and where it looks for them.
#include "gui/window/OpenDirectory.h"
#include "gui/window/OpenFileDialog.h"
#include "logic/loading/WorkerPool.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSettings>
#include <QTimer>

#include <chrono>
#include <future>

namespace {

TEST(OpenFileFilters, ShowImagesAndMastersFirstThenAllContainersThenEverything)
{
    EXPECT_EQ(OpenFileDialog::doubleUpper({".cbf", ".h5"}),
              QStringList({".cbf", ".CBF", ".h5", ".H5"}));
    EXPECT_EQ(OpenFileDialog::filter("Name", {".a", ".b"}), "Name(*.a *.b )");
    const QStringList filters = OpenFileDialog::imageFilters();
    const QString images = "*.cbf *.CBF *.tif *.TIF *.tiff *.TIFF *.edf *.EDF "
                           "*.cbf.gz *.cbf.bz2 *.CBF.gz *.CBF.bz2 *.tif.gz *.tif.bz2 "
                           "*.TIF.gz *.TIF.bz2 *.tiff.gz *.tiff.bz2 *.TIFF.gz *.TIFF.bz2 "
                           "*.edf.gz *.edf.bz2 *.EDF.gz *.EDF.bz2 ";
    EXPECT_EQ(filters,
              QStringList({"Morvend images(" + images +
                               "*_master.h5 *_master.H5 *_master.hdf5 *_master.HDF5 "
                               "*.nxs *.NXS )",
                           "Image files(" + images + "*.h5 *.H5 *.hdf5 *.HDF5 *.nxs *.NXS )",
                           "All files(*)"}));
}

TEST(OpenDirectoryTest, IsTheRememberedFolderAsLongAsItExists)
{
    const tarvik::tests::TempFolder folder;
    const QString path = QString::fromStdString(folder.path());
    const QString file = QString::fromStdString(folder.write("x_00001.cbf", "x"));
    QSettings().remove("ImageDirectory");
    EXPECT_EQ(open_directory::get(), QDir::currentPath());

    open_directory::set(file);
    EXPECT_EQ(QSettings().value("ImageDirectory").toString(), path);
    EXPECT_EQ(open_directory::get(), path);
    open_directory::set(path + "/missing/x.cbf");
    EXPECT_EQ(open_directory::get(), path) << "what does not exist is ignored";
    for (const QString& soon : {QDir::rootPath(), file + "::/entry/data", QDir::rootPath(), path})
        open_directory::setSoon(soon);
    EXPECT_TRUE(waitFor([] {
        const auto pool = WorkerPool::process().usage();
        return pool.busy + pool.queued == 0;
    }));
    EXPECT_EQ(open_directory::get(), path) << "the last one counts";

    QSettings().setValue("ImageDirectory", file);
    EXPECT_EQ(open_directory::get(), path) << "a path that turned into a file gives its folder";
    for (const QString& gone : {path + "/gone", QString()}) {
        QSettings().setValue("ImageDirectory", gone);
        EXPECT_EQ(open_directory::get(), QDir::currentPath());
    }
}

TEST(OpenDirectoryTest, WaitsForNoFileSystemThatDoesNotAnswer)
{
    std::promise<void> back;
    const auto hung = [mount = back.get_future().share()] {
        mount.wait_for(std::chrono::minutes(1));
        return QStringLiteral("/late");
    };
    EXPECT_EQ(open_directory::inTime(hung), QString());
    back.set_value();
    EXPECT_EQ(open_directory::inTime(hung), "/late");
}

TEST(OpenFileDialogTest, StartsInTheOpenDirectoryAndRemembersWhereFilesWereChosen)
{
    const tarvik::tests::TempFolder folder;
    const QString file = QString::fromStdString(folder.write("x_00001.cbf", "x"));
    const QString other = QString::fromStdString(folder.write("y_00001.cbf", "y"));
    open_directory::set(QDir::rootPath());
    OpenFileDialog dialog(nullptr);
    EXPECT_EQ(dialog.directory(), QDir::root());
    EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFiles);
    EXPECT_TRUE(dialog.testOption(QFileDialog::ReadOnly));

    QTimer::singleShot(0, &dialog, [&dialog, &file] {
        dialog.setDirectory(QFileInfo(file).absolutePath());
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        name->setText("\"x_00001.cbf\" \"y_00001.cbf\"");
        QTest::keyClick(name, Qt::Key_Return);
    });
    EXPECT_EQ(dialog.choose(), QStringList({file, other}));
    EXPECT_EQ(open_directory::get(), QFileInfo(file).absolutePath());

    OpenFileDialog cancelled(nullptr);
    QTimer::singleShot(0, &cancelled, [&cancelled] {
        cancelled.setDirectory(QDir::root());
        cancelled.reject();
    });
    EXPECT_TRUE(cancelled.choose().isEmpty());
    EXPECT_EQ(open_directory::get(), QFileInfo(file).absolutePath());
}

}  // namespace

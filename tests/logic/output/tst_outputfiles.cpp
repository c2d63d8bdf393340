// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pictures and copies of an image on disk.
#include "logic/output/OutputFiles.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/MImageSeries.h"
#include "imagelib/io/formats/base/Cancellation.h"
#include "tests/logic/output/Shown.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>

#include <functional>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using tarvik::tests::shown;

class OutputFiles : public testing::Test {
protected:
    QString path(const QString& name) const
    {
        return QString::fromStdString(_folder.path()) + '/' + name;
    }
    void put(const QString& name, const QByteArray& bytes) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray bytes(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList names() const
    {
        return QDir(path(".")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    tarvik::tests::TempFolder _folder;
    const ImageSnapshot _shown = shown(120, 80);
};

TEST_F(OutputFiles, PicturesAreWrittenInAllFormats)
{
    for (const QByteArray& format : QImageWriter::supportedImageFormats()) {
        const QString file = path("x." + QString::fromLatin1(format));
        output::exportImage(_shown, file, QString::fromLatin1(format), {});
        QImageReader reader(file);
        EXPECT_EQ(reader.size(), QSize(120, 80)) << format.constData();
    }
    EXPECT_EQ(QImage(path("x.png")).convertToFormat(QImage::Format_ARGB32_Premultiplied),
              pictures::ofImage(_shown));
    output::exportImage(_shown, path("y.png"), "png", MRect(120, 0, 150, 400));
    EXPECT_EQ(QImage(path("y.png")).size(), QSize(270, 400));
    output::exportImage({}, path("nothing.png"), "png", {});
    EXPECT_FALSE(names().contains("nothing.png"));
}

TEST_F(OutputFiles, WhatCannotBeWrittenIsNamedAndKeepsTheOldFile)
{
    put("old.png", "old");
    QDir(path(".")).mkdir("folder");
    const std::pair<QString, QString> targets[] = {{path("old.png"), "xyz"},
                                                   {path("missing/x.png"), "png"},
                                                   {path("folder"), "png"},
                                                   {QString(), "png"}};
    for (const auto& [file, format] : targets) {
        try {
            output::exportImage(_shown, file, format, {});
            ADD_FAILURE() << file.toStdString();
        } catch (const MNoFileAccessException& failure) {
            EXPECT_EQ(failure.what(), "Cannot write to " + file.toStdString());
        }
    }
    EXPECT_EQ(bytes("old.png"), "old");
    EXPECT_EQ(names(), QStringList({"folder", "old.png"}));
}

TEST_F(OutputFiles, CopiesHoldPixelsAndHeader)
{
    for (const QString extension : {"cbf", "CBF", "tif", "TIFF", "h5", "hdf5"}) {
        const QString file = path("copy_" + extension + '.' + extension.toLower());
        output::saveAs(_shown.image, file, extension);
        MImageSeries series(0);
        const MImage copy = series.at(series.open(file.toStdString()));
        ASSERT_EQ(copy.size(), _shown.image.size());
        for (int y = 0; y < 80; ++y)
            for (int x = 0; x < 120; ++x)
                ASSERT_EQ(copy.pixel<int>(x, y, -1), (x + y) % 100) << extension.toStdString();
        EXPECT_FLOAT_EQ(copy.optionalData().wavelength().get_value_or(0), 1.25F);
        EXPECT_EQ(copy.optionalData().saturation_value().get_value_or(0), 90);
    }
    const QStringList before = names();
    try {
        output::saveAs(_shown.image, path("x.jpg"), "jpg");
        ADD_FAILURE();
    } catch (const MBadParameterException& failure) {
        EXPECT_STREQ(failure.what(), "Unrecognized file format");
    }
    EXPECT_EQ(names(), before);
}

TEST_F(OutputFiles, DataOfAnotherSeriesIsNeverReplaced)
{
    put("raw_master.h5", "master");
    put("raw_data_000001.h5", "frames");
    const auto refused = [this](const QString& name) {
        EXPECT_THROW(output::saveAs(_shown.image, path(name), "h5"), MBadParameterException);
        EXPECT_EQ(bytes("raw_data_000001.h5"), "frames");
        EXPECT_EQ(bytes("raw_master.h5"), "master");
        EXPECT_EQ(names().filter(".raw"), QStringList());
    };
    refused("raw.h5");
    put("raw.h5", "here already");
    refused("raw.h5");
    for (int i = 0; i < 2; ++i)
        output::saveAs(_shown.image, path("own.h5"), "h5");
    EXPECT_EQ(names().filter("own").size(), 2);
}

TEST_F(OutputFiles, ACancelLeavesNothingAndKeepsTheOldFile)
{
    std::stop_source stop;
    const CancelScope scope(stop.get_token());
    const QStringList targets{"x.png", "x.jpg", "x.cbf", "x.tif", "x.h5"};
    for (const QString& name : targets)
        put(name, "old");
    const auto cancelsAfterwards = [&](double) { stop.request_stop(); };
    EXPECT_THROW(output::exportImage(_shown, path("x.png"), "png", {}, cancelsAfterwards),
                 MTerminateException);
    for (const QString& name : targets) {
        const QString extension = name.mid(2);
        if (name == "x.png" || name == "x.jpg")
            EXPECT_THROW(
                output::writePicture(QImage(99, 99, QImage::Format_RGB32), path(name), extension),
                MTerminateException);
        else
            EXPECT_THROW(output::saveAs(_shown.image, path(name), extension), MTerminateException);
        EXPECT_EQ(bytes(name), "old");
    }
    EXPECT_EQ(names().size(), targets.size());
}

}  // namespace

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What images from the preloader carry, and when it is not asked.
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageSeries.h"
#include "imagelib/io/MImageWriter.h"
#include "imagelib/ipc/MMessageQueue.h"
#include "logic/loading/ImageLoader.h"
#include "logic/preload/PreloaderClient.h"
#include "logic/preload/PreloaderProcess.h"
#include "tests/support/EdfFile.h"
#include "tests/support/HangingReads.h"
#include "tests/support/WaitFor.h"

#include <gmock/gmock.h>

#include <csignal>
#include <optional>

namespace {

using namespace morvend::imglib;
using tarvik::tests::edfFrame;
using tarvik::tests::HangingReads;
using tarvik::tests::TempFolder;
using Header = MBasicImageOptionalData<>;

class WithPreloader : public testing::Test {
protected:
    explicit WithPreloader(const char* kind = "")
    {
        qputenv("TARVIK_TEST_PRELOADER", kind);
        process.emplace(TARVIK_PRELOADER);
        qunsetenv("TARVIK_TEST_PRELOADER");
        EXPECT_TRUE(waitFor([&] { return queue.connected(); }));
    }
    ~WithPreloader() override
    {
        const auto pid = static_cast<pid_t>(process->processId());
        process.reset();  // or it would start another one
        if (pid > 0)
            kill(pid, SIGKILL);
        EXPECT_TRUE(waitFor([&] { return !queue.connected(); }));
    }

    const TempFolder folder;
    MMessageQueue queue{PreloaderClient::messageQueueId().c_str()};
    std::optional<PreloaderProcess> process;
    PreloaderClient client;
};

std::string text(const std::string& value) { return value; }
template <class Number>
std::string text(Number value)
{
    return QByteArray::number(double(value), 'g', 17).toStdString();
}
std::string text(const MImage& mask)
{
    std::string all = std::to_string(mask.width()) + " x " + std::to_string(mask.height());
    for (std::size_t i = 0; i < mask.size(); ++i)
        all += ' ' + std::to_string(mask.pixel<unsigned>(int(i), 0, 99U));
    return all;
}

/// All fields that are set, a line each.
std::string described(const Header& header)
{
    std::string all;
    header.forEachField([&](const char* name, const auto& value) {
        if (value)
            all += std::string(name) + " = " + text(*value) + '\n';
    });
    return all;
}

/// A value for a number or a text, none for a mask.
template <class T>
boost::optional<T> some(float number)
{
    if constexpr (std::is_arithmetic_v<T>)
        return T(number);
    else
        return boost::none;
}

Header everyField(float number)
{
    Header header;
#define TARVIK_FIELD(T, name) header.set_##name(some<T>(number += 1));
    TARVIK_HEADER_FIELDS(TARVIK_FIELD)
#undef TARVIK_FIELD
    header.set_data_collection_date(std::string("2026-11-23T10:11:12.123"));
    header.set_description(std::string("detector"));
    header.set_detector_number(std::string("E-01-0001"));
    return header;
}

class Handover : public WithPreloader {
protected:
    /// Compares images 2 to 4 of a series from the preloader with those from the file.
    void compare(const std::string& format, const std::string& path)
    {
        SCOPED_TRACE(format);
        MImageSeries series(1);
        ASSERT_EQ(series.open(path), 1);
        EXPECT_EQ(series.formatName(), format);
        client.setEnabled(false);
        client.put(1, path);
        const MImage opened = series.at(1);
        client.setDefaultOptData(opened.optionalData());
        for (unsigned long number = 2; number <= 4; ++number) {
            MImage image;
            ASSERT_TRUE(waitFor([&] {
                if (client.get(image, number))
                    return true;
                client.put(number - 1, path);
                return false;
            }));
            const MImage ofFile = series.at(number);
            const Header& header = std::as_const(image).optionalData();
            EXPECT_EQ(described(header), described(ofFile.optionalData())) << number;
            EXPECT_EQ(header.nexusTree().toText(), ofFile.optionalData().nexusTree().toText());
            EXPECT_EQ(header.sharesNexusTree(opened.optionalData()), format == "HDF5")
                << "equal trees are one";
        }
    }
    /// Files of which each has fewer fields than the one before.
    void writeFiles(const std::string& ending, MImageWriter::Format format)
    {
        MImage image(3, 2, 7);
        image.setOptionalData(everyField(1));
        write(image, 1, ending, format);
        image.setOptionalData(everyField(2));
        write(image, 2, ending, format);
        Header few;
        few.set_wavelength(1.5F);
        image.setOptionalData(few);
        write(image, 3, ending, format);
        image.setOptionalData({});
        write(image, 4, ending, format);
    }
    void write(const MImage& image, int number, const std::string& ending,
               MImageWriter::Format format) const
    {
        MImageWriter::write(image, folder / ("x_" + std::to_string(number) + ending), format);
    }
};

TEST_F(Handover, GivesTheHeaderOfTheFile)
{
    writeFiles(".cbf", MImageWriter::CBF);
    compare("CBF", folder / "x_1.cbf");
    writeFiles(".tif", MImageWriter::TIFF);
    compare("TIFF", folder / "x_1.tif");

    const std::string frame = edfFrame({1, 2});
    for (int i = 1; i <= 4; ++i) {
        const std::string key = i < 4 ? "WaveLength = " + std::to_string(i) + "e-10 ;\n" : "";
        std::string text = frame;
        text.insert(2, key).erase(1022, key.size());  // as many blanks
        folder.write("x_" + std::to_string(i) + ".edf", text);
    }
    compare("EDF", folder / "x_1.edf");
}

TEST_F(Handover, GivesTreeAndMaskOfAnHdf5File)
{
    for (const bool masked : {true, false}) {
        const std::string path = folder / (masked ? "m_master.h5" : "n_master.h5");
        morvend::nexus::MBasicNeXusTree tree;
        tree.setNumber("/entry/instrument/beam/wavelength", 0.9, "angstrom");
        tree.node("/entry/instrument/detector/omega").value = std::vector<double>{1, 2, 3, 4};
        MHdf5Writer writer(path, 4, tree, MCompression::NONE);
        for (int i = 1; i <= 4; ++i) {
            MImage image(3, 2, i);
            MImage mask(3, 2, 0U);
            static_cast<unsigned*>(mask.data())[1] = 1;
            if (masked)
                image.optionalData().set_pixel_mask(mask);
            writer.write(image);
        }
        writer.flush();
        compare("HDF5", path);
    }
}

/// A preloader that gives its own image for each number of each series.
class WithWillingPreloader : public WithPreloader {
protected:
    WithWillingPreloader()
        : WithPreloader("willing")
    {}
    /// Of the record that comes, 0 without any.
    int firstPixel(ImageLoader::Task task, const ImageLoader::Data& wanted)
    {
        loader.open(task, wanted, true);
        EXPECT_TRUE(waitFor([&] { return !loader.loading(); }));
        std::list<ImageLoader::Data> records;
        loader.results(records);
        return records.empty() ? 0 : records.front().image.pixel<int>(0, 0, 0);
    }
    static constexpr int itsPixel = -77;
    ImageLoader loader;
    ImageLoader::Data request;
};

TEST_F(WithWillingPreloader, IsNotAskedForImagesInMemory)
{
    request.path = folder.write("x_1.edf", edfFrame({11, 1}));
    EXPECT_EQ(firstPixel(ImageLoader::TaskOpenSeries, request), 11);
    request.index = 1;
    EXPECT_EQ(firstPixel(ImageLoader::TaskOpenIndex, request), itsPixel);
    request.image = MImage(2, 1, 22);
    EXPECT_EQ(firstPixel(ImageLoader::TaskPushImage, request), 22);
    request.index = 0;
    EXPECT_EQ(firstPixel(ImageLoader::TaskOpenIndex, request), 22);
}

TEST_F(WithWillingPreloader, ReadsAheadAgainWhenAFileThatHangsGivesWayToOneThatFails)
{
    request.path = folder.write("x_1.edf", edfFrame({11, 1}));
    EXPECT_EQ(firstPixel(ImageLoader::TaskOpenSeries, request), 11);
    request.path = folder.write("hangs.edf", edfFrame({22, 1}));
    const HangingReads hang(request.path);
    loader.open(ImageLoader::TaskOpenSeries, request, true);
    ASSERT_TRUE(HangingReads::waitFor(1));
    request.path = "/nowhere/y_1.edf";
    EXPECT_EQ(firstPixel(ImageLoader::TaskOpenSeries, request), 0);
    request.index = 1;
    EXPECT_EQ(firstPixel(ImageLoader::TaskOpenIndex, request), itsPixel);
}

TEST_F(WithWillingPreloader, IsNotAskedForASeriesThatItCouldNotBeTold)
{
    MImage image;
    client.put(1, "/a");
    EXPECT_TRUE(client.get(image, 2));
    EXPECT_EQ(image.pixel<int>(0, 0, 0), itsPixel);
    testing::internal::CaptureStderr();
    client.put(1, std::string(MMessageQueue::LongestText, 'b'));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("too long"));
    EXPECT_FALSE(client.get(image, 2)) << "what it holds is of the series before";
}

}  // namespace

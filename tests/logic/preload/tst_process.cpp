// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A view's questions to a real preloader process, and what becomes of them when it dies.
#include "imagelib/ipc/MMessageQueue.h"
#include "logic/loading/ImageLoader.h"
#include "logic/loading/StepTimes.h"
#include "logic/preload/PreloaderClient.h"
#include "logic/preload/PreloaderProcess.h"
#include "tests/support/EdfFile.h"
#include "tests/support/WaitFor.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <optional>

namespace {

using morvend::imglib::MImage;
using morvend::imglib::MMessageQueue;
using tarvik::tests::TempFolder;
using tarvik::tests::writeEdf;

constexpr int side = 300;  // 360,000 bytes a frame: it travels in shared memory
constexpr int frames = 24;

class WithProcess : public testing::Test {
protected:
    WithProcess()
    {
        for (int i = 1; i <= frames; ++i)
            writeEdf(folder, name(i), side, std::vector<std::int32_t>(side * side, 1000 + i));
    }
    static std::string name(int number) { return "x_" + std::to_string(number) + ".edf"; }
    static bool shows(const MImage& image, int number)
    {
        const int* pixels = image.pixels<int>();
        return image.size() == side * side &&
               std::all_of(pixels, pixels + image.size(),
                           [&](int p) { return p == 1000 + number; });
    }
    ~WithProcess() override
    {
        const auto pid = static_cast<pid_t>(process->processId());
        process.reset();  // or it would start another one
        if (pid > 0)
            kill(pid, SIGKILL);
        EXPECT_TRUE(waitFor([&] { return !queue.connected(); }));
    }
    /// Waits for a preloader that came after the one of that generation.
    bool connected(MMessageQueue::Peer after = MMessageQueue::NoPeer)
    {
        return waitFor([&] { return queue.connected() && queue.generation() > after; });
    }
    void signalProcess(int signal) const
    {
        ASSERT_GT(process->processId(), 0);
        ASSERT_EQ(kill(static_cast<pid_t>(process->processId()), signal), 0);
    }
    /// Begins to read ahead and waits for the process and the first image.
    void begin()
    {
        client.put(1, folder / name(1));
        ASSERT_TRUE(connected());
        ASSERT_TRUE(hits(2));
    }
    /// Takes an image from the preloader, which may be reading yet.
    bool hits(unsigned long index)
    {
        return waitFor([&] {
            if (client.get(image, index))
                return true;
            client.put(index - 1, folder / name(1));
            return false;
        });
    }

    const TempFolder folder;
    MMessageQueue queue{PreloaderClient::messageQueueId().c_str()};
    std::optional<PreloaderProcess> process{std::in_place, TARVIK_PRELOADER};
    PreloaderClient client;
    MImage image;
};

TEST_F(WithProcess, HandsOverWhatItHasReadAhead)
{
    EXPECT_FALSE(client.get(image, 1, folder / name(1))) << "not enabled before the first put";
    client.put(1, folder / name(1));
    PreloaderClient::Header header;
    header.set_wavelength(0.9F);
    client.setDefaultOptData(header);
    ASSERT_TRUE(connected());
    ASSERT_TRUE(hits(2));
    EXPECT_TRUE(shows(image, 2));
    EXPECT_TRUE(image.imageData().buffer()->readOnly()) << "the pixels are the preloader's";
    EXPECT_FALSE(std::as_const(image).optionalData().wavelength()) << "no other header counts";
    EXPECT_TRUE(hits(3));

    EXPECT_TRUE(waitFor([&] { return !client.get(image, 3); })) << "what was handed over goes";
    const MImage before = image;
    EXPECT_FALSE(client.get(image, 3));
    EXPECT_EQ(image.identity(), before.identity()) << "a miss leaves the image";
    EXPECT_FALSE(client.get(image, frames + 1));
    EXPECT_FALSE(client.get(image, 1, folder / "nothing.edf"));
    client.setEnabled(false);
    EXPECT_FALSE(client.get(image, 4, folder / name(1)));
    EXPECT_FALSE(client.defaultOptData().wavelength().has_value());
}

TEST_F(WithProcess, FramesThatAreShownStayAsTheyAre)
{
    begin();
    std::vector<MImage> shown;
    for (int round = 0; round < 2; ++round)
        for (int i = 3; i <= frames; ++i) {
            ASSERT_TRUE(hits(static_cast<unsigned long>(i)));
            ASSERT_TRUE(shows(image, i));
            if (i % 5 == 0)
                shown.push_back(image);
            for (std::size_t k = 0; k < shown.size(); ++k)
                ASSERT_TRUE(shows(shown[k], 5 * (int(k) % (frames / 5) + 1)));
            if (i == frames)
                client.put(1, folder / name(1));
        }
    const auto owner = queue.generation();
    signalProcess(SIGKILL);
    ASSERT_TRUE(connected(owner));
    for (std::size_t k = 0; k < shown.size(); ++k)
        EXPECT_TRUE(shows(shown[k], 5 * (int(k) % (frames / 5) + 1))) << "also without its owner";
}

TEST_F(WithProcess, ADeadPreloaderOnlyMissesAndComesAgain)
{
    begin();
    for (int round = 0; round < 2; ++round) {
        const qint64 old = process->processId();
        const auto before = queue.generation();
        signalProcess(SIGKILL);
        client.get(image, 3);  // comes back
        ASSERT_TRUE(connected(before));
        EXPECT_NE(process->processId(), old);
        EXPECT_FALSE(client.get(image, 4));
        // Its successor reads ahead without a PUT; it may not have got to 5 yet, and
        // begins after 4 once more when it is asked for that.
        ASSERT_TRUE(waitFor([&] { return client.get(image, 5) || (client.get(image, 4), false); }));
        EXPECT_TRUE(shows(image, 5));
    }
}

TEST_F(WithProcess, AStoppedPreloaderCostsAQuarterOfASecond)
{
    begin();
    signalProcess(SIGSTOP);
    testing::internal::CaptureStderr();
    for (unsigned long i = 3; i < 9; ++i)
        EXPECT_FALSE(client.get(image, i));
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::MatchesRegex("[^\n]*left alone[^\n]*\n"))
        << "it is waited for only once";
    signalProcess(SIGCONT);
    ASSERT_TRUE(hits(9));
    EXPECT_TRUE(shows(image, 9)) << "no answer to an earlier question";
}

/// A view's loader beside the process.
class WithLoader : public WithProcess {
protected:
    WithLoader()
    {
        QObject::connect(&loader, &ImageLoader::newImage, &receiver,
                         [&] { loader.results(records); });
        QObject::connect(&loader, &ImageLoader::loadError, &receiver, [&] { ++errors; });
    }
    void load(ImageLoader::Task task, const std::string& path, int index)
    {
        ImageLoader::Data request;
        request.path = path;
        request.index = index;
        records.clear();
        errors = 0;
        loader.open(task, request, true);
        EXPECT_TRUE(waitFor([&] { return !records.empty() || errors; })) << index;
    }
    /// Loads an image of the series of the process's tests.
    void step(ImageLoader::Task task, int index)
    {
        load(task, folder / name(1), index);
        ASSERT_EQ(records.size(), 1U);
        EXPECT_TRUE(shows(records.front().image, index)) << index;
        EXPECT_EQ(records.front().index, index);
        EXPECT_EQ(records.front().path, folder / name(index));
    }
    /// Steps from the first frame until most come from the process, which may be late where the
    /// machine is busy.
    bool stepsFromCache()
    {
        return waitFor([&] {
            step(ImageLoader::TaskOpenSeries, 1);
            const auto before = StepTimes::now().hits;
            for (int i = 2; i <= 8; ++i)
                step(ImageLoader::TaskOpenIndex, i);
            return StepTimes::now().hits - before >= 4;
        });
    }
    ImageLoader loader;
    QObject receiver;
    std::list<ImageLoader::Data> records;
    int errors = 0;
};

TEST_F(WithLoader, StepsThroughKillsWithTheRightPixels)
{
    testing::internal::CaptureStdout();
    EXPECT_TRUE(stepsFromCache());
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                testing::ContainsRegex("\nTIME LOADING IMAGE FROM CACHE: [0-9]+\n"
                                       "TIME COMPUTING MASK: "));
    for (int i = 9; i <= frames; ++i) {
        const bool dies = i % 6 == 0;
        const auto generation = queue.generation();
        if (dies)
            signalProcess(SIGKILL);
        step(ImageLoader::TaskOpenIndex, i);
        EXPECT_TRUE(connected(dies ? generation : generation - 1));
    }
    EXPECT_TRUE(stepsFromCache()) << "read-ahead has come back";
}

TEST(WithoutProcess, EveryQuestionIsAMissAtOnce)
{
    PreloaderClient client;
    client.put(1, "/nowhere/x_1.edf");
    MImage image;
    for (unsigned long i = 0; i < 10000; ++i)  // waits would add up to most of an hour
        EXPECT_FALSE(client.get(image, i));
}

TEST(PreloaderProcess, ThatCanNotBeStartedIsTriedAgain)
{
    const TempFolder folder;
    const std::string script = folder / "program";
    PreloaderProcess process(QString::fromStdString(script));
    EXPECT_EQ(process.processId(), 0);
    folder.write("program", "#!/bin/sh\necho $@ >> \"$0.log\"\nexec sleep 100\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    ASSERT_TRUE(waitFor([&] { return process.processId() > 0; }));
    std::string line;
    EXPECT_TRUE(waitFor([&] { return bool(std::getline(std::ifstream(script + ".log"), line)); }));
    kill(static_cast<pid_t>(process.processId()), SIGKILL);
    const std::string pid = std::to_string(getpid());
    EXPECT_EQ(line, "--preloader PRELOADER_" + pid + " --parent-pid " + pid);
}

}  // namespace

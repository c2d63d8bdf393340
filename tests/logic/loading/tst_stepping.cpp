// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Steps through a series: what they count from, go over and say.
#include "imagelib/image/MException.h"
#include "imagelib/io/MImageSeries.h"
#include "logic/loading/ImageLoader.h"
#include "logic/loading/Steps.h"
#include "tests/support/EdfFile.h"
#include "tests/support/WaitFor.h"

#include <QSemaphore>

#include <gmock/gmock.h>

namespace {

using morvend::imglib::MImage;
using morvend::imglib::MImageSeries;
using tarvik::tests::edfFrame;
using tarvik::tests::TempFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Files : public testing::Test {
protected:
    static std::string name(int number) { return "x_" + std::to_string(number) + ".edf"; }
    std::string path(int number) const { return folder / name(number); }
    void write(int number) { folder.write(name(number), edfFrame({number, 1, 2, 3})); }
    void writeAll(int first, int last)
    {
        for (int i = first; i <= last; ++i)
            write(i);
    }
    void cut(int number) { folder.write(name(number), edfFrame({1, 2, 3}).substr(0, 1030)); }
    void remove(int number) { std::filesystem::remove(path(number)); }

    const TempFolder folder;
};

TEST_F(Files, StepsLeadOverGapsAndNotBeyondTheEnds)
{
    for (const int number : {1, 2, 4, 5, 9})
        write(number);
    MImageSeries series(1);
    series.open(path(1));
    struct Row {
        int from;
        std::vector<int> steps;
        int to;
        const char* leftOut;
    };
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    for (const Row& row : {Row{1, {1}, 2, ""},
                           {2, {1}, 4, "image 3 is missing"},
                           {1, {1, 1, 1}, 5, "image 3 is missing"},
                           {5, {1}, 9, "images 6 to 8 are missing"},
                           {2, {1, 1, 1}, 9, "4 images from 3 to 8 are missing"},
                           {5, {2, -1}, 5, "images 6 to 8 are missing"},
                           {9, {-2}, 5, "images 6 to 7 are missing"},
                           {4, {1, -1}, 4, ""},
                           {1, {2}, 4, "image 3 is missing"},
                           {4, {100}, 9, ""},
                           {9, {1}, 9, ""},
                           {9, {most}, 9, ""},
                           {2, {least}, 1, ""},
                           {1, {-1}, 1, ""},
                           {500, {1}, 500, ""},
                           {500, {-1}, 9, ""}}) {
        Steps steps(series);
        int number = row.from;
        for (const int n : row.steps)
            number = steps.to(number, n);
        EXPECT_EQ(number, row.to) << row.from << " to " << row.to;
        EXPECT_EQ(steps.leftOut().text(), row.leftOut) << row.from << " to " << row.to;
    }
    write(10);
    EXPECT_EQ(Steps(series).to(9, 1), 10) << "it has come since the last look";
}

TEST_F(Files, SearchesEndAfterAFewCrashes)
{
    using morvend::MReaderGoneException;
    writeAll(1, 9);
    MImageSeries series(1);
    series.open(path(1));
    Steps steps(series);
    ASSERT_EQ(steps.to(1, 1), 2);
    EXPECT_EQ(steps.beyond(2, Steps::Failure(morvend::MRuntimeException("damaged"))), 3);
    const Steps::Failure crash(MReaderGoneException("the reader has crashed"));
    EXPECT_EQ(steps.beyond(3, crash), 4);
    EXPECT_EQ(steps.beyond(4, crash), 5);
    EXPECT_FALSE(steps.gaveUp());
    EXPECT_EQ(steps.beyond(5, crash), std::nullopt);
    EXPECT_TRUE(steps.gaveUp());
    EXPECT_EQ(steps.leftOut().text(), "images 2 to 5 can't be read, the first: damaged");
}

TEST(AwaitedImage, IsOverdueOnceWhenItsFileHasStayedAsItIs)
{
    using morvend::imglib::FileStamp;
    using std::chrono::milliseconds;
    const TempFolder folder;
    const std::string path = folder.write("x", "a");
    const AwaitedImage::Time begin{};
    AwaitedImage awaited;
    EXPECT_FALSE(awaited.is(7));
    const auto overdue = [&](int number, milliseconds after) {
        return awaited.isOverdue(number, FileStamp(path), begin + after);
    };
    const milliseconds patience = AwaitedImage::patience;
    EXPECT_FALSE(overdue(7, {}));
    EXPECT_TRUE(awaited.is(7));
    EXPECT_FALSE(overdue(7, patience - milliseconds(1)));
    folder.write("x", "longer");
    EXPECT_FALSE(overdue(7, patience)) << "it grows";
    EXPECT_FALSE(overdue(7, 2 * patience - milliseconds(1)));
    EXPECT_TRUE(overdue(7, 2 * patience));
    EXPECT_FALSE(overdue(7, 3 * patience)) << "said once";
    EXPECT_FALSE(overdue(8, 3 * patience)) << "another image";
    EXPECT_TRUE(overdue(8, 4 * patience));
    awaited.clear();
    EXPECT_FALSE(awaited.is(8));
    EXPECT_FALSE(overdue(8, 5 * patience));
}

/// A loader that can be held up at the end of a load, with what comes of it.
class Stepping : public Files {
protected:
    Stepping()
    {
        QObject::connect(
            &loader, &ImageLoader::newImage, &loader,
            [this] {
                if (held) {
                    begun.release();
                    goOn.acquire();
                }
            },
            Qt::DirectConnection);
        QObject::connect(&loader, &ImageLoader::loadError, &receiver,
                         [this](const QString& text) { errors.push_back(text.toStdString()); });
        QObject::connect(&loader, &ImageLoader::notice, &receiver,
                         [this](const QString& text) { notices.push_back(text.toStdString()); });
    }
    ~Stepping() override { goOn.release(1000); }

    void open(const std::string& file)
    {
        ImageLoader::Data request;
        request.path = file;
        loader.open(ImageLoader::TaskOpenSeries, request, true);
    }
    void goTo(int number)
    {
        ImageLoader::Data request;
        request.index = number;
        loader.open(ImageLoader::TaskOpenIndex, request, true);
    }
    void step(int n, bool signalLoadError = true) { loader.step(n, {}, signalLoadError); }
    /// Asks for an image and returns when it is about to be handed over, and its job goes on with
    /// release().
    template <class Request>
    void hold(Request&& request)
    {
        held = true;
        request();
        begun.acquire();
        held = false;
    }
    void release() { goOn.release(); }
    /// Waits until nothing is under way and returns the numbers that came.
    std::vector<int> numbers()
    {
        EXPECT_TRUE(waitFor([&] { return !loader.loading(); }));
        QCoreApplication::processEvents();
        std::list<ImageLoader::Data> records;
        loader.results(records);
        std::vector<int> numbers;
        for (const ImageLoader::Data& record : records) {
            EXPECT_EQ(record.image.pixel<int>(0, 0, -1), record.index);
            numbers.push_back(record.index);
        }
        return numbers;
    }

    std::atomic<bool> held = false;
    QSemaphore begun, goOn;
    QObject receiver;
    std::vector<std::string> errors, notices;
    ImageLoader loader;
};

TEST_F(Stepping, CountsFromTheNumberLastAskedForAndReadsNoneThatIsOvertaken)
{
    writeAll(1, 30);
    struct Row {
        const char* situation;
        std::function<void()> requests;
        std::vector<int> shown;  // after the 2 that is held up
    };
    for (const Row& row : std::initializer_list<Row>{
             {"twenty clicks",
              [&] {
                  for (int i = 0; i < 20; ++i)
                      step(1);
              },
              {22}},
             {"both ways", [&] { step(10), step(-4), step(1); }, {9}},
             {"there and back", [&] { step(1), step(-1); }, {}},
             {"a number, then steps", [&] { goTo(15), step(1), step(1); }, {17}},
             {"steps, then a number", [&] { step(1), step(1), goTo(5); }, {5}},
             {"numbers", [&] { goTo(3), goTo(4), goTo(9); }, {9}},
             {"a quiet one among them", [&] { step(1), step(1, false), step(1); }, {5}}}) {
        hold([&] { open(path(2)); });
        row.requests();
        release();
        std::vector<int> shown = row.shown;
        shown.insert(shown.begin(), 2);
        EXPECT_EQ(numbers(), shown) << row.situation;
    }
    EXPECT_THAT(errors, IsEmpty());
    EXPECT_THAT(notices, IsEmpty());
}

TEST_F(Stepping, CountsFromTheImageAgainWhenTheLastRequestHasFailed)
{
    writeAll(1, 5);
    open(path(2));
    goTo(500);
    EXPECT_THAT(numbers(), ElementsAre(2));
    EXPECT_THAT(errors, ElementsAre(HasSubstr("500")));
    step(1);
    EXPECT_THAT(numbers(), ElementsAre(3));

    hold([&] { goTo(4); });
    goTo(500);
    step(1);  // there is nothing beyond 500, which is what remains asked for
    release();
    EXPECT_THAT(numbers(), ElementsAre(4));
    EXPECT_THAT(errors, testing::SizeIs(2));
    step(1);
    EXPECT_THAT(numbers(), ElementsAre(5));
}

TEST_F(Stepping, BeginsNothingThatWasDropped)
{
    writeAll(1, 9);
    hold([&] { open(path(2)); });
    step(1);
    loader.dropTaskQueue();
    step(3);
    release();
    EXPECT_THAT(numbers(), ElementsAre(2, 5));
}

TEST_F(Stepping, GoesOverWhatCanNotBeShownAndSaysSo)
{
    writeAll(1, 9);
    cut(2);
    remove(3);
    open(path(1));
    EXPECT_THAT(numbers(), ElementsAre(1));
    remove(4);
    folder.write(name(5), "garbage");
    step(1);
    EXPECT_THAT(numbers(), ElementsAre(6));
    ASSERT_EQ(notices.size(), 1U);
    EXPECT_THAT(notices[0],
                testing::StartsWith("Left out: images 3 to 4 are missing; 2 images from "
                                    "2 to 5 can't be read, the first: EDF: "));
    EXPECT_THAT(notices[0], HasSubstr(path(2)));
    step(-1);
    EXPECT_THAT(numbers(), ElementsAre(1));
    EXPECT_EQ(notices.size(), 2U);
    step(1, false);
    EXPECT_THAT(numbers(), ElementsAre(6));
    EXPECT_EQ(notices.size(), 3U) << "a movie says it, too";
    EXPECT_THAT(errors, IsEmpty());
    goTo(5);
    EXPECT_THAT(numbers(), IsEmpty());
    EXPECT_THAT(errors, ElementsAre(HasSubstr(path(5)))) << "asked for by its number";
}

TEST_F(Stepping, StopsAtTheEndsWithoutAnError)
{
    writeAll(1, 3);
    open(path(2));
    step(100);
    EXPECT_THAT(numbers(), ElementsAre(2, 3));
    step(1);
    step(1, false);
    EXPECT_THAT(numbers(), IsEmpty());
    step(-100);
    EXPECT_THAT(numbers(), ElementsAre(1));
    step(-1);
    EXPECT_THAT(numbers(), IsEmpty());
    EXPECT_THAT(notices, ElementsAre("Image 3 is the last of the series",
                                     "Image 1 is the first of the series"));
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(Stepping, GivesUpWithOneSentenceAfterHundredsThatCanNotBeRead)
{
    write(1);
    for (int i = 2; i <= 501; ++i)
        folder.write(name(i), i % 2 ? "x" : "");
    write(90'000'000);
    open(path(1));
    step(1);
    EXPECT_THAT(numbers(), ElementsAre(1, 90'000'000)) << "gaps take no time";
    ASSERT_EQ(notices.size(), 1U);
    EXPECT_THAT(notices[0], HasSubstr("images 502 to 89999999 are missing; images 2 to 501 can't "
                                      "be read, the first: "));
    cut(90'000'000);
    step(-1);
    EXPECT_THAT(numbers(), ElementsAre(1));
    step(1);
    EXPECT_THAT(numbers(), IsEmpty());
    ASSERT_EQ(notices.size(), 3U);
    EXPECT_THAT(notices[2], testing::StartsWith("There is nothing to show after image 1: images "
                                                "502 to 89999999 are missing; 501 images from 2 "
                                                "to 90000000 can't be read, the first: "));
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(Stepping, SearchesOnlySoFarAndGoesOnWithTheNextStep)
{
    write(1);
    for (int i = 2; i <= 1500; ++i)
        folder.write(name(i), "x");
    write(1501);
    open(path(1));
    step(1);
    EXPECT_THAT(numbers(), ElementsAre(1));
    ASSERT_EQ(notices.size(), 1U);
    EXPECT_THAT(notices[0], testing::StartsWith("There is nothing to show after image 1 as far as "
                                                "image 1001: images 2 to 1001 can't be read, the "
                                                "first: "));
    step(1);
    EXPECT_THAT(numbers(), ElementsAre(1501));
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(Stepping, ImageThatIsNotThereYetIsAskedForAgainInSilence)
{
    writeAll(1, 2);
    cut(3);
    cut(4);
    open(path(2));
    EXPECT_THAT(numbers(), ElementsAre(2));
    for (int i = 0; i < 3; ++i) {
        step(1, false);
        EXPECT_THAT(numbers(), IsEmpty());
    }
    EXPECT_THAT(notices, IsEmpty());
    write(4);
    step(1, false);
    EXPECT_THAT(numbers(), ElementsAre(4)) << "the one before is not finished";
    EXPECT_EQ(notices.size(), 1U);
    step(-1, false);
    EXPECT_THAT(numbers(), ElementsAre(2));
    write(3);
    step(1, false);
    EXPECT_THAT(numbers(), ElementsAre(3));
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(Stepping, ImageThatStaysUnreadableIsSaidOnce)
{
    writeAll(1, 2);
    cut(3);
    open(path(2));
    const auto saidAfterAStep = [&] {
        step(1, false);
        numbers();
        return !notices.empty();
    };
    EXPECT_TRUE(waitFor(saidAfterAStep));
    for (int i = 0; i < 3; ++i)
        saidAfterAStep();
    EXPECT_THAT(notices, ElementsAre(testing::StartsWith("There is nothing to show after image 2: "
                                                         "image 3 can't be read: ")));
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(Stepping, FailedOpenLeavesTheSeriesThatIsOpen)
{
    writeAll(1, 5);
    open(path(2));
    EXPECT_THAT(numbers(), ElementsAre(2));
    const TempFolder other;
    const std::string whole = edfFrame({1, 2, 3});
    other.write("y_7.edf", whole);
    for (const std::string& file : {other.write("y_8.edf", whole.substr(0, 1030)),
                                    other.write("y_9.edf", "garbage"), other / "y_10.edf"}) {
        errors.clear();
        open(file);
        step(1);
        step(-1);
        EXPECT_THAT(numbers(), testing::IsSubsetOf({2, 3})) << file;
        EXPECT_THAT(errors, ElementsAre(HasSubstr(file)));
        EXPECT_EQ(loader.firstIndex(), 1);
        EXPECT_EQ(loader.lastIndex(), 5);
        goTo(2);
        EXPECT_THAT(numbers(), ElementsAre(2));
    }
}

TEST_F(Stepping, FailurePublishesTheBoundsThatItHasSeen)
{
    writeAll(1, 2);
    open(path(1));
    EXPECT_THAT(numbers(), ElementsAre(1));
    writeAll(3, 4);
    goTo(10);
    EXPECT_THAT(numbers(), IsEmpty());
    EXPECT_THAT(errors, testing::SizeIs(1));
    EXPECT_EQ(loader.lastIndex(), 4);
}

}  // namespace

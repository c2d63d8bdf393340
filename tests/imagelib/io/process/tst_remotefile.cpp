// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Readers that die, hang or talk nonsense, and the process that goes on without them; requests and
// answers as texts, whole and malformed.
#include "imagelib/io/process/ReaderMessages.h"
#include "imagelib/io/process/RemoteFile.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/imagelib/io/process/StrangeImages.h"
#include "tests/support/Processes.h"

#include <sys/wait.h>

#include <algorithm>
#include <future>
#include <memory>
#include <vector>

namespace tarvik::tests {

using namespace std::chrono_literals;

namespace {

ReaderProcess::Options strangeReader(std::chrono::milliseconds limit = 120s)
{
    letSignalsEndPrograms();
    return {TARVIK_STRANGE_READER, limit};
}

RemoteFile openStrange(std::chrono::milliseconds limit = 120s)
{
    return {"/data/strange", "STRANGE", strangeReader(limit)};
}

template <class Exception, class Call>
std::string messageOf(Call&& call)
{
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    } catch (const std::exception& error) {
        return std::string("another exception: ") + error.what();
    }
    return "no exception";
}

void expectGood(const MImage& image, std::size_t position)
{
    const MImage expected = strangeImage(position);
    EXPECT_TRUE(samePixels(image, expected));
    const auto& header = image.optionalData();
    EXPECT_EQ(shown(header), shown(expected.optionalData()));
    EXPECT_EQ(header.rawHeader().value_or(""), "raw header");
    EXPECT_EQ(header.nexusTree().toText(), expected.optionalData().nexusTree().toText());
    ASSERT_EQ(header.pixel_mask().has_value(), expected.optionalData().pixel_mask().has_value());
    if (header.pixel_mask()) {
        EXPECT_TRUE(samePixels(*header.pixel_mask(), *expected.optionalData().pixel_mask()));
    }
}

/// Runs a request while the reader is stopped, ends the reader by a signal, and returns the
/// failure.
std::string failureWhileKilled(RemoteFile& file, int signal)
{
    const pid_t reader = file.pid();
    // Stopped, the reader can't answer before the signal that ends it.
    EXPECT_EQ(::kill(reader, SIGSTOP), 0);
    EXPECT_TRUE(waitFor([&] { return processState(reader) == 'T'; }));
    auto request = std::async(std::launch::async, [&] {
        return messageOf<MRuntimeException>([&] { file.frame(Good); });
    });
    EXPECT_EQ(request.wait_for(50ms), std::future_status::timeout);
    ::kill(reader, signal);
    ::kill(reader, SIGCONT);
    return request.get();
}

ReaderAnswer fullAnswer()
{
    ReaderAnswer answer;
    answer.format = "HDF5";
    answer.frames = std::uint64_t(1) << 40;
    answer.openedFrame = 12;
    answer.firstNumber = 1;
    answer.mainPath = "/data/a b_master.h5";
    answer.dataset = "/entry/a b";
    answer.framePath = "/data/\xff.h5";  // paths are bytes
    answer.header = HeaderForm::SameTree;
    return answer;
}

/// @tparam Arriving  the class in this process
template <class Exception, class Arriving = Exception>
void expectKeepsItsClass()
{
    ReaderAnswer answer = fullAnswer();
    answer.fail(Exception("text: /data/x"));
    try {
        ReaderAnswer::fromText(answer.toText()).rethrow();
    } catch (const std::exception& error) {
        EXPECT_EQ(typeid(error), typeid(Arriving));
        EXPECT_STREQ(error.what(), "text: /data/x");
    }
}

}  // namespace

TEST(RemoteFile, FewReadersServeManyFiles)
{
    std::vector<std::unique_ptr<RemoteFile>> files;
    const auto readers = [&] {
        return std::ranges::count_if(files, [](const auto& file) { return file->pid() >= 0; });
    };
    for (std::size_t i = 0; i < RemoteFile::mostReaders + 4; ++i) {
        files.push_back(std::make_unique<RemoteFile>("/data/strange", "STRANGE", strangeReader()));
        EXPECT_LE(readers(), long(RemoteFile::mostReaders));
    }
    EXPECT_LT(files.front()->pid(), 0) << "the one that was asked longest ago";
    const MImage image = files[4]->frame(Good);
    for (const auto& file : files)
        expectGood(file->frame(Good), Good);
    expectGood(image, Good);
    EXPECT_EQ(readers(), long(RemoteFile::mostReaders));
    EXPECT_LT(files.front()->pid(), 0);
    files.front()->update();
    EXPECT_GE(files.front()->pid(), 0) << "a series that is watched is looked at all the same";
    EXPECT_EQ(readers(), long(RemoteFile::mostReaders));
}

TEST(RemoteFile, AnOpeningThatHangsKeepsItsReader)
{
    std::stop_source stop;
    ReaderProcess::Options options = strangeReader();
    options.stop = stop.get_token();
    auto opening = std::async(std::launch::async, [&] {
        return messageOf<MTerminateException>([&] { RemoteFile(HangingPath, "STRANGE", options); });
    });
    EXPECT_TRUE(waitFor([] { return children().size() == 1; }));
    std::vector<std::unique_ptr<RemoteFile>> others;
    for (std::size_t i = 0; i <= RemoteFile::mostReaders; ++i)
        others.push_back(std::make_unique<RemoteFile>("/data/strange", "STRANGE", strangeReader()));
    EXPECT_EQ(opening.wait_for(0s), std::future_status::timeout);
    stop.request_stop();
    EXPECT_EQ(opening.get(),
              "STRANGE: the reader process was stopped while opening the file: " + HangingPath);
}

TEST(RemoteFile, ShowsTheFileOfTheReader)
{
    RemoteFile file = openStrange();
    EXPECT_STREQ(file.format(), "STRANGE");
    EXPECT_EQ(file.frameCount(), std::size_t(StrangeImages));
    EXPECT_EQ(file.openedFrame(), 2u);
    EXPECT_EQ(file.firstNumber(), 1);
    EXPECT_EQ(file.mainPath(), "");
    // Headers come as changes; forth and back, and over one that lacks a field.
    for (const std::size_t position : {Good, AlsoGood, Good, SmallAndGood, Good, AlsoGood}) {
        expectGood(file.frame(position), position);
        EXPECT_EQ(file.framePath(position), "/data/" + std::to_string(position));
        EXPECT_EQ(file.framePath(7), "/data/7");
    }
    file.update();
    EXPECT_EQ(file.framePath(0), "/data/0");
}

TEST(RemoteFile, AReaderThatFailsCostsOneRequestAlone)
{
    const struct {
        StrangeImage image;
        const char* text;
    } cases[] = {{Violates, "ended with signal 11 (Segmentation fault) while reading image 2"},
                 {Aborts, "ended with signal 6 (Aborted) while reading image 3"},
                 {Exits, "ended with exit code 3 while reading image 4"},
                 {Throws, "an exception of another family: /data/strange"},
                 {MasksItsMask, "Queue: a mask can't have a mask of its own: /data/9"}};
    RemoteFile file = openStrange();
    const MImage kept = file.frame(Good);
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        const bool survives = each.image == Throws || each.image == MasksItsMask;
        const std::string text =
            survives ? each.text
                     : std::string("STRANGE: the reader process ") + each.text + ": /data/strange";
        const pid_t before = file.pid();
        // Again and again: nothing is tried twice, nothing goes round.
        for (int round = 0; round < 3; ++round)
            EXPECT_EQ(messageOf<MRuntimeException>([&] { file.frame(each.image); }), text);
        EXPECT_EQ(file.frameCount(), std::size_t(StrangeImages));
        expectGood(file.frame(AlsoGood), AlsoGood);
        EXPECT_EQ(file.pid() == before, survives);
    }
    expectGood(kept, Good);
}

TEST(RemoteFile, ExceptionsKeepTheirClass)
{
    RemoteFile file = openStrange();
    EXPECT_EQ(messageOf<MOutOfRangeException>([&] { file.frame(Refuses); }),
              "there is no such image: /data/strange");
    EXPECT_EQ(messageOf<MNoFileAccessException>(
                  [] { RemoteFile(MissingPath, "STRANGE", strangeReader()); }),
              "Cannot open file: No such file or directory: /data/missing");
}

TEST(RemoteFile, AReaderThatDoesNotAnswerOrBabblesIsEnded)
{
    RemoteFile file = openStrange(400ms);
    pid_t reader = file.pid();
    EXPECT_EQ(messageOf<MTimeoutException>([&] { file.frame(Hangs); }),
              "STRANGE: the reader process has not answered within 400 ms while reading image 5: "
              "/data/strange");
    EXPECT_TRUE(waitFor([&] { return hasEnded(reader); }));
    expectGood(file.frame(Good), Good);
    reader = file.pid();
    EXPECT_THAT(messageOf<MRuntimeException>([&] { file.frame(Babbles); }),
                testing::AllOf(HasSubstr("STRANGE: the reader process gave an answer that can't be "
                                         "used ("),
                               HasSubstr("while reading image 6: /data/strange")));
    EXPECT_TRUE(waitFor([&] { return hasEnded(reader); }));
    expectGood(file.frame(Good), Good);
}

TEST(RemoteFile, AStopEndsTheRunningRequestAndAllLaterOnes)
{
    std::stop_source stop;
    ReaderProcess::Options options = strangeReader();
    options.stop = stop.get_token();
    RemoteFile file("/data/strange", "STRANGE", options);
    const pid_t reader = file.pid();
    auto request = std::async(std::launch::async, [&] {
        return messageOf<MTerminateException>([&] { file.frame(Hangs); });
    });
    EXPECT_EQ(request.wait_for(50ms), std::future_status::timeout);
    stop.request_stop();
    ASSERT_EQ(request.wait_for(120s), std::future_status::ready);
    EXPECT_EQ(request.get(), "STRANGE: the reader process was stopped while reading image 5: "
                             "/data/strange");
    EXPECT_TRUE(waitFor([&] { return hasEnded(reader); }));
    EXPECT_EQ(messageOf<MTerminateException>([&] { file.frame(Good); }),
              "STRANGE: the reader process was stopped while opening the file: /data/strange");
}

TEST(RemoteFile, AFailedLookForNewImagesStartsNoReader)
{
    RemoteFile file(FatalUpdatePath, "STRANGE", strangeReader());
    const std::string text = "STRANGE: the reader process ended with signal 11 (Segmentation "
                             "fault) while looking for new images: /data/fatal_update";
    testing::internal::CaptureStderr();
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(messageOf<MRuntimeException>([&] { file.update(); }), text);
        for (int look = 0; look < 3; ++look)
            EXPECT_EQ(messageOf<MException>([&] { file.update(); }), "no exception");
        EXPECT_EQ(children().size(), 0u);
        EXPECT_EQ(file.frameCount(), std::size_t(StrangeImages));
        expectGood(file.frame(Good), Good);
        EXPECT_GT(file.pid(), 0);
    }
    messageOf<MRuntimeException>([&] { file.frame(Violates); });
    EXPECT_EQ(messageOf<MException>([&] { file.update(); }), "no exception");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "WARNING: " + text + "\n");
}

TEST(RemoteFile, OpeningMayFail)
{
    const auto failure = [](const std::string& path, const std::string& program) {
        return messageOf<MRuntimeException>([&] {
            ReaderProcess::Options options = strangeReader();
            options.program = program;
            RemoteFile(path, "STRANGE", options);
        });
    };
    EXPECT_EQ(failure(FatalPath, TARVIK_STRANGE_READER),
              "STRANGE: the reader process ended with signal 7 (Bus error) while opening the file: "
              "/data/fatal");
    EXPECT_THAT(failure("/data/x", "/no/such/program"),
                HasSubstr("the reader process cannot be started: No such file or directory"));
    EXPECT_THAT(failure("/data/x", "/bin/true"),
                HasSubstr("ended with exit code 0 while opening the file: /data/x"));
}

TEST(RemoteFile, AReaderThatIsKilledFailsTheRequestThatRunsAndNoOther)
{
    RemoteFile file = openStrange();
    for (const int signal : {SIGKILL, SIGSEGV}) {
        const pid_t reader = file.pid();
        ASSERT_EQ(::kill(reader, signal), 0);
        ASSERT_TRUE(waitFor([&] { return file.pid() < 0; }));
        expectGood(file.frame(Good), Good);
        EXPECT_NE(file.pid(), reader);
        EXPECT_THAT(failureWhileKilled(file, signal),
                    HasSubstr("ended with signal " + std::to_string(signal)));
        expectGood(file.frame(Good), Good);
    }
}

TEST(RemoteFile, NothingStaysBehind)
{
    openStrange().frame(Good);
    const std::size_t files = openDescriptors();
    for (int i = 0; i < 8; ++i) {
        RemoteFile file = openStrange();
        file.frame(Good);
        messageOf<MRuntimeException>([&] { file.frame(Violates); });
        file.frame(AlsoGood);
        ASSERT_EQ(children().size(), 1u);
    }
    EXPECT_EQ(children().size(), 0u);
    EXPECT_EQ(openDescriptors(), files);
}

TEST(RemoteFile, TheReaderGoesWithAParentThatIsKilled)
{
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t parent = ::fork();
    if (parent == 0) {
        RemoteFile file = openStrange();
        const pid_t reader = file.pid();
        if (::write(ends[1], &reader, sizeof reader) == sizeof reader)
            ::pause();
        std::_Exit(1);
    }
    pid_t reader = -1;
    ASSERT_EQ(::read(ends[0], &reader, sizeof reader), ssize_t(sizeof reader));
    EXPECT_FALSE(hasEnded(reader));
    ::kill(parent, SIGKILL);
    ::waitpid(parent, nullptr, 0);
    EXPECT_TRUE(waitFor([&] { return hasEnded(reader); }));
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(ReaderMessages, FailuresKeepTheirClass)
{
    expectKeepsItsClass<MRuntimeException>();
    expectKeepsItsClass<MOutOfRangeException>();
    expectKeepsItsClass<MBadParameterException>();
    expectKeepsItsClass<MNoFileAccessException>();
    expectKeepsItsClass<MUnknownFormatException>();
    expectKeepsItsClass<MNotImplementedException>();
    expectKeepsItsClass<MTimeoutException>();
    expectKeepsItsClass<MException>();
    // A reader has no say in what ends here.
    expectKeepsItsClass<MTerminateException, MRuntimeException>();
    expectKeepsItsClass<MReaderGoneException, MRuntimeException>();
    expectKeepsItsClass<MPeerGoneException, MRuntimeException>();
    ReaderAnswer answer;
    answer.fail(std::runtime_error(std::string("a\0b", 3)));
    EXPECT_THROW(ReaderAnswer::fromText(answer.toText()).rethrow(), MRuntimeException);
}

TEST(ReaderMessages, CutsAndChangedBytesAreRefusedOrRead)
{
    const std::string request =
        ReaderRequest{ReaderRequest::Kind::Frame, "/data/\xfe", UINT64_MAX, "/entry/\xfe"}.toText();
    const std::string answer = fullAnswer().toText();
    EXPECT_EQ(ReaderRequest::fromText(request).toText(), request);
    EXPECT_EQ(ReaderAnswer::fromText(answer).toText(), answer);
    EXPECT_EQ(ReaderAnswer::fromText(answer).framePath, "/data/\xff.h5");
    for (std::size_t size = 0; size < answer.size(); ++size) {
        EXPECT_THROW(ReaderAnswer::fromText(answer.substr(0, size)), MRuntimeException) << size;
        std::string changed = answer;
        changed[size] = static_cast<char>(changed[size] ^ 0x11);
        failureOf([&] { ReaderAnswer::fromText(changed); });
    }
    for (std::size_t size = 0; size < request.size(); ++size)
        EXPECT_THROW(ReaderRequest::fromText(request.substr(0, size)), MRuntimeException) << size;
    EXPECT_THROW(ReaderAnswer::fromText(answer + "x"), MRuntimeException);
    EXPECT_NO_THROW(ReaderRequest::fromText(std::string("3\0/x\0000\0\0", 8)));
    for (const char* kind : {"4", "-1", "", "1x", "99999999999999999999"})
        EXPECT_THROW(ReaderRequest::fromText(kind + std::string("\0/x\0000\0\0", 7)),
                     MRuntimeException)
            << kind;
}

}  // namespace tarvik::tests

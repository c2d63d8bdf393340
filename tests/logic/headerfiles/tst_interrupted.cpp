// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Batches and their undoing that end at any moment: each file is the old or the new one, and the
// journal leads back.
#include "logic/headerfiles/HeaderUndo.h"
#include "tests/logic/headerfiles/FaultyCalls.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sstream>
#include <thread>

#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

using namespace tarvik::tests;
using faulty::Fault;

std::string read(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

class Interrupted : public testing::Test {
protected:
    /// Files of different content, the second one without a line for the wavelength.
    void make(int count, std::size_t pixels)
    {
        for (int i = 0; i < count; ++i) {
            std::string content = "###CBF: VERSION 1.5\r\n_array_data.header_contents\r\n;\r\n# " +
                                  std::to_string(i) + "\r\n";
            content += i == 1 ? "" : "# Wavelength 1.0 A\r\n";
            content += ";\r\n\r\n_array_data.data\r\n;\r\n--CIF-BINARY-FORMAT-SECTION--\r\n"
                       "X-Binary-Size: " +
                       std::to_string(pixels) + "\r\n\r\n\x0c\x1a\x04\xd5" +
                       std::string(pixels, static_cast<char>('a' + i % 26)) + "\r\n;\r\n";
            paths.push_back(folder.write("x_" + std::to_string(i) + ".cbf", content));
            ::setxattr(paths.back().c_str(), "user.note", "kept", 4, 0);
            before.push_back(content);
            const std::size_t line = content.find("# Wavelength");
            after.push_back(content);
            if (line == content.npos)
                after.back().insert(content.find(";\r\n\r\n"), "# Wavelength 0.97 A\r\n");
            else
                after.back().replace(line, 18, "# Wavelength 0.97 A");
        }
    }
    int writeAll() const
    {
        CbfHeaderWriter::Header header;
        header.set_wavelength(0.97F);
        CbfHeaderWriter writer;
        writer.setNeXuS(header);
        HeaderBatch batch(HeaderBatch::Mode::Write, journals());
        for (const std::string& path : paths) {
            try {
                batch.write(path, writer);
            } catch (const std::exception&) {
                continue;
            }
        }
        return batch.report().changedFiles();
    }
    void undoAll() const
    {
        HeaderUndo undo(HeaderBatch::Mode::Write, journals());
        for (std::size_t i = 0; i < undo.count(); ++i) {
            try {
                undo.putBack(i);
            } catch (const std::exception&) {
                continue;
            }
        }
    }
    std::string journals() const { return home / "journals"; }
    int changed() const
    {
        int count = 0;
        for (std::size_t i = 0; i < paths.size(); ++i)
            count += read(paths[i]) == after[i];
        return count;
    }
    /// Each is whole, and every new one can be undone.
    void checkFiles() const
    {
        std::vector<JournalEntry> entries;
        if (const auto last = LastWrite::find(journals()))
            entries = last->entries();
        for (std::size_t i = 0; i < paths.size(); ++i) {
            const std::string now = read(paths[i]);
            ASSERT_TRUE(now == before[i] || now == after[i]) << paths[i];
            const auto noted = [&](const JournalEntry& entry) {
                return entry.path == paths[i] && entry.after == JournalEntry::digestOf(after[i]) &&
                       entry.before == JournalEntry::digestOf(before[i]);
            };
            ASSERT_TRUE(now == before[i] || std::any_of(entries.begin(), entries.end(), noted))
                << paths[i];
            char note[5] = {};
            ASSERT_EQ(::getxattr(paths[i].c_str(), "user.note", note, 4), 4) << paths[i];
        }
    }
    void checkUndone() const
    {
        if (LastWrite::find(journals()))
            undoAll();
        for (std::size_t i = 0; i < paths.size(); ++i)
            ASSERT_EQ(read(paths[i]), before[i]) << paths[i];
        ASSERT_FALSE(LastWrite::find(journals())) << "all is undone";
    }
    /// Only a rename that is refused leaves one.
    void checkTemporary(Fault fault) const
    {
        EXPECT_TRUE(filesThere() == std::ptrdiff_t(paths.size()) || fault == Fault::Refused);
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            if (entry.path().extension() == ".tmp")
                std::filesystem::remove(entry);
    }
    std::ptrdiff_t filesThere() const
    {
        return std::distance(std::filesystem::directory_iterator(folder.path()), {});
    }
    /// @returns the status of a process that did the work
    template <class Work>
    static int inChild(const Work& work)
    {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(work());
        int status = -1;
        ::waitpid(child, &status, 0);
        return status;
    }

    const TempFolder folder, home;
    std::vector<std::string> paths, before, after;
};

constexpr int NotReached = 77;

TEST_F(Interrupted, NothingIsReplacedBeforeAllThatItNeedsIsOnTheDisk)
{
    make(1, 1000);
    faulty::begin(-1, Fault::Refused);
    writeAll();
    faulty::end();
    std::string order;
    for (const std::string& name : faulty::seen())
        if (name == "pwrite" || name == "write" || name == "rename" || name.ends_with("sync"))
            order += name + ' ';
    EXPECT_EQ(order, "pwrite fdatasync fsync "    // the journal and its folder
                     "pwrite fdatasync "          // its entry
                     "write fsync rename fsync "  // the file and its folder
                     "pwrite ");                  // the batch has ended
}

TEST_F(Interrupted, AtEachCallOfTheSystem)
{
    make(3, 1000);
    faulty::begin(-1, Fault::Refused);  // no waits for the disk
    ASSERT_EQ(writeAll(), 3);
    EXPECT_THAT(faulty::seen(),
                testing::IsSupersetOf({"open", "read", "write", "pwrite", "fsync", "fdatasync",
                                       "close", "rename", "flock", "fcntl", "stat", "lstat",
                                       "fchown", "fchmod", "flistxattr", "fsetxattr"}));
    checkUndone();
    for (const Fault fault : {Fault::Refused, Fault::KillBefore, Fault::KillMidway}) {
        bool reached = true;
        int calls = 0;
        for (; reached; ++calls) {
            SCOPED_TRACE("call " + std::to_string(calls));
            const int status = inChild([&] {
                faulty::begin(calls, fault);
                const int count = writeAll();
                const bool hit = faulty::end();
                return !hit ? NotReached : count == changed() ? 0 : 1;
            });
            reached = status != NotReached << 8;
            ASSERT_TRUE(status == SIGKILL || WIFEXITED(status));
            ASSERT_NE(status, 1 << 8) << "it reports what it did";
            ASSERT_NO_FATAL_FAILURE(checkFiles());
            EXPECT_TRUE(reached || changed() == 3);
            ASSERT_NO_FATAL_FAILURE(checkUndone());
            checkTemporary(fault);
        }
        EXPECT_GT(calls, 60);
    }
}

TEST_F(Interrupted, UndoingAtEachCallOfTheSystem)
{
    make(3, 1000);
    faulty::begin(-1, Fault::Refused);  // no waits for the disk
    for (const Fault fault : {Fault::Refused, Fault::KillBefore, Fault::KillMidway}) {
        bool reached = true;
        for (int calls = 0; reached; ++calls) {
            SCOPED_TRACE("call " + std::to_string(calls));
            ASSERT_EQ(writeAll(), 3);
            const int status = inChild([&] {
                faulty::begin(calls, fault);
                try {
                    undoAll();
                } catch (const std::exception&) {
                }
                return faulty::end() ? 0 : NotReached;
            });
            reached = status != NotReached << 8;
            ASSERT_NO_FATAL_FAILURE(checkFiles());
            ASSERT_NO_FATAL_FAILURE(checkUndone());
            checkTemporary(fault);
        }
    }
}

/// TARVIK_KILLS=500 does in full what this does in short.
TEST_F(Interrupted, AtRandomMoments)
{
    make(12, 200'000);
    const char* const wanted = std::getenv("TARVIK_KILLS");
    std::mt19937 random(4711);
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(writeAll(), 12);
    const std::chrono::duration<double, std::micro> whole =
        std::chrono::steady_clock::now() - start;
    int partly = 0;
    checkUndone();
    for (int i = wanted ? std::atoi(wanted) : 20; i > 0; --i) {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(writeAll());
        std::this_thread::sleep_for(std::chrono::microseconds(
            std::uniform_int_distribution<long>(0, static_cast<long>(whole.count()))(random)));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        ASSERT_NO_FATAL_FAILURE(checkFiles());
        const int count = changed();
        partly += count > 0 && count < 12;
        // The next batch clears up after the one that was killed, and can be undone as well.
        ASSERT_EQ(writeAll(), 12 - count);
        EXPECT_EQ(filesThere(), 12);
        while (LastWrite::find(journals()))
            undoAll();
        checkUndone();
    }
    if (wanted)
        std::printf("%d were killed in the middle\n", partly);
}

}  // namespace

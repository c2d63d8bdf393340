// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Requests and answers as texts, whole and malformed.
#include "imagelib/io/process/ReaderMessages.h"
#include "tests/imagelib/io/FileCases.h"

namespace tarvik::tests {
namespace {

ReaderAnswer fullAnswer()
{
    ReaderAnswer answer;
    answer.format = "HDF5";
    answer.frames = std::uint64_t(1) << 40;
    answer.openedFrame = 12;
    answer.firstNumber = 1;
    answer.mainPath = "/data/a b_master.h5";
    answer.framePath = "/data/\xff.h5";  // paths are bytes
    answer.header = HeaderForm::SameTree;
    return answer;
}

template <class Exception>
void expectKeepsItsClass()
{
    ReaderAnswer answer = fullAnswer();
    answer.fail(Exception("text: /data/x"));
    try {
        ReaderAnswer::fromText(answer.toText()).rethrow();
    } catch (const std::exception& error) {
        EXPECT_EQ(typeid(error), typeid(Exception));
        EXPECT_STREQ(error.what(), "text: /data/x");
    }
}

}  // namespace

TEST(ReaderMessages, CrossWhole)
{
    const ReaderRequest request{ReaderRequest::Kind::Frame, "/data/\xfe", UINT64_MAX};
    const ReaderRequest got = ReaderRequest::fromText(request.toText());
    EXPECT_EQ(got.kind, request.kind);
    EXPECT_EQ(got.path, request.path);
    EXPECT_EQ(got.position, request.position);
    const ReaderAnswer answer = ReaderAnswer::fromText(fullAnswer().toText());
    EXPECT_FALSE(answer.failed());
    EXPECT_EQ(answer.toText(), fullAnswer().toText());
    EXPECT_EQ(answer.frames, std::uint64_t(1) << 40);
    EXPECT_EQ(answer.framePath, "/data/\xff.h5");
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
    ReaderAnswer answer;
    answer.fail(std::runtime_error(std::string("a\0b", 3)));
    EXPECT_THROW(ReaderAnswer::fromText(answer.toText()).rethrow(), MRuntimeException);
}

TEST(ReaderMessages, CutsAndChangedBytesAreRefusedOrRead)
{
    const std::string request = ReaderRequest{ReaderRequest::Kind::Open, "/data/x", 7}.toText();
    const std::string answer = fullAnswer().toText();
    for (std::size_t size = 0; size < answer.size(); ++size) {
        EXPECT_THROW(ReaderAnswer::fromText(answer.substr(0, size)), MRuntimeException) << size;
        std::string changed = answer;
        changed[size] = static_cast<char>(changed[size] ^ 0x11);
        failureOf([&] { ReaderAnswer::fromText(changed); });
    }
    for (std::size_t size = 0; size < request.size(); ++size)
        EXPECT_THROW(ReaderRequest::fromText(request.substr(0, size)), MRuntimeException) << size;
    EXPECT_THROW(ReaderAnswer::fromText(answer + "x"), MRuntimeException);
    for (const char* kind : {"4", "-1", "", "1x", "99999999999999999999"})
        EXPECT_THROW(ReaderRequest::fromText(kind + std::string("\0/x\0000\0", 6)),
                     MRuntimeException)
            << kind;
}

}  // namespace tarvik::tests

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bytes as text and back, and their MD5 sums.
#include "imagelib/codec/Base64.h"
#include "imagelib/codec/Md5.h"
#include "imagelib/codec/NumberWords.h"
#include "imagelib/codec/QuotedPrintable.h"
#include "imagelib/image/MException.h"

#include <gmock/gmock.h>

#include <random>
#include <string>

namespace {

using namespace morvend::codec;

std::span<const std::byte> bytes(const std::string& text) { return std::as_bytes(std::span(text)); }

std::string text(const std::vector<std::byte>& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

struct TextCase {
    const char* plain;
    const char* encoded;
};

TEST(Base64, KnownTexts)
{
    for (const auto& [plain, encoded] :
         {TextCase{"", ""}, TextCase{"f", "Zg=="}, TextCase{"fo", "Zm8="}, TextCase{"foo", "Zm9v"},
          TextCase{"foobar", "Zm9vYmFy"}, TextCase{"\xfb\xff\xbf", "+/+/"}}) {
        EXPECT_EQ(base64Encode(bytes(plain)), encoded);
        EXPECT_EQ(text(base64Decode(encoded)), plain);
    }
    EXPECT_EQ(text(base64Decode(" Z\r\n g\t==\r\nZZ")), "f");
}

TEST(Base64, RoundTripsInLines)
{
    std::mt19937 random(1);
    for (std::size_t size = 0; size < 300; ++size) {
        std::string plain(size, '\0');
        for (char& c : plain)
            c = static_cast<char>(random());
        const std::string encoded = base64Encode(bytes(plain), 76);
        EXPECT_EQ(text(base64Decode(encoded)), plain);
        for (std::size_t end = 0, begin = 0; (end = encoded.find("\r\n", begin)) != encoded.npos;
             begin = end + 2)
            ASSERT_LE(end - begin, 76U);
    }
}

TEST(TextErrors, AreNamed)
{
    EXPECT_THAT([] { base64Decode("Zm9v\nYm*y"); },
                testing::ThrowsMessage<morvend::MRuntimeException>(
                    "character 8 does not belong to BASE64 text"));
    for (const char* encoded : {"ab=4", "ab=4x", "ab=xy"})
        EXPECT_THROW(quotedPrintableDecode(encoded), morvend::MRuntimeException) << encoded;
}

TEST(QuotedPrintable, KnownTexts)
{
    for (const auto& [plain, encoded] :
         {TextCase{"", ""}, TextCase{"a=b", "a=3Db"}, TextCase{"a\x80z", "a=80z"},
          TextCase{"joined", "joi=\r\nned"}, TextCase{"joined", "joi=\nned"},
          TextCase{"joined", "joi= \t\r\nned="}, TextCase{"two\r\nlines", "two  \r\nlines"},
          TextCase{"a b", "a b  "}, TextCase{"\xab", "=aB"}})
        EXPECT_EQ(text(quotedPrintableDecode(encoded)), plain) << encoded;
}

TEST(NumberWords, KnownTexts)
{
    for (const auto& [plain, encoded] :
         {TextCase{"", "\r\n# a comment\r\n"}, TextCase{"\xff\x07", "h2< FF07"},
          TextCase{"\x07\xff\x01", "H2> FF07 # and more\nH2> ==01\n"},
          TextCase{"abcdefghi", "O8< 605423066214531463550\rD1> 105\r"},
          TextCase{"\xff\x07z", "H3< FF077A"}, TextCase{"\xff\x07z", "D4> ==7997439"},
          TextCase{"z", "O4< 172======"}})
        EXPECT_EQ(text(numberWordsDecode(encoded)), plain) << encoded;
    for (const char* encoded :
         {"FFFF", "X4< 1", "H0< 1", "H9< 1", "H4= 1", "H2< 12345", "H2< =1", "H2< 1=====", "O2< 8",
          "D2< A", "D8< 18446744073709551616", "H4< 1==2", "H2< -1", "H2< ===="})
        EXPECT_THROW(numberWordsDecode(encoded), morvend::MRuntimeException) << encoded;
}

TEST(Md5, KnownSums)
{
    EXPECT_EQ(base64Encode(md5(bytes(""))), "1B2M2Y8AsgTpgAmY7PhCfg==");
    EXPECT_EQ(base64Encode(md5(bytes("abc"))), "kAFQmDzST7DWlj99KOF/cg==");
}

}  // namespace

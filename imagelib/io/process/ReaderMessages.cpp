// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Texts of fields, each ended by a NUL, which no path can hold.
#include "imagelib/io/process/ReaderMessages.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <vector>

namespace morvend::imglib {

namespace {

[[noreturn]] void malformed(const char* what)
{
    throw MRuntimeException(std::string("a reader's message is malformed: ") + what);
}

/// Takes a text apart, field by field.
class Fields {
public:
    explicit Fields(const std::string& text)
        : _text(text)
    {}

    std::string text()
    {
        const std::size_t end = _text.find('\0', _at);
        if (end == std::string::npos)
            malformed("a field is missing");
        std::string field = _text.substr(_at, end - _at);
        _at = end + 1;
        return field;
    }

    template <class Number>
    Number number(Number most)
    {
        const std::string field = text();
        Number value = 0;
        const char* const last = field.data() + field.size();
        const auto [end, error] = std::from_chars(field.data(), last, value);
        if (error != std::errc() || end != last || value > most)
            malformed("a field is no number or too large");
        return value;
    }

    template <class Enumeration>
    Enumeration choice(Enumeration last)
    {
        return static_cast<Enumeration>(number<unsigned>(static_cast<unsigned>(last)));
    }

    void expectEnd() const
    {
        if (_at != _text.size())
            malformed("there is more than its fields");
    }

private:
    const std::string& _text;
    std::size_t _at = 0;
};

std::string joined(std::vector<std::string> fields)
{
    std::string text;
    for (std::string& field : fields) {
        // Texts from files may hold anything.
        std::replace(field.begin(), field.end(), '\0', ' ');
        text += field;
        text += '\0';
    }
    return text;
}

template <class Enumeration>
std::string numberOf(Enumeration value)
{
    return std::to_string(static_cast<unsigned>(value));
}

constexpr std::uint64_t MostFrames = UINT64_MAX;
constexpr std::uint32_t MostNumber = INT32_MAX;

}  // namespace

std::string ReaderRequest::toText() const
{
    return joined({numberOf(kind), path, std::to_string(position), dataset});
}

ReaderRequest ReaderRequest::fromText(const std::string& text)
{
    Fields fields(text);
    ReaderRequest request;
    request.kind = fields.choice(Kind::Update);
    request.path = fields.text();
    request.position = fields.number(MostFrames);
    request.dataset = fields.text();
    fields.expectEnd();
    return request;
}

void ReaderAnswer::fail(const std::exception& error)
{
    exception = exceptionClass(error);
    message = error.what();
}

void ReaderAnswer::rethrow() const
{
    // A reader has no say in what became of this process's own companions and work.
    static const std::set<std::string> Own{"MReaderGoneException", "MPeerGoneException",
                                           "MTerminateException"};
    throwException(Own.contains(exception) ? "MRuntimeException" : exception, message);
}

std::string ReaderAnswer::toText() const
{
    return joined({exception, message, format, std::to_string(frames), std::to_string(openedFrame),
                   std::to_string(firstNumber), mainPath, dataset, framePath, numberOf(header)});
}

ReaderAnswer ReaderAnswer::fromText(const std::string& text)
{
    Fields fields(text);
    ReaderAnswer answer;
    answer.exception = fields.text();
    answer.message = fields.text();
    answer.format = fields.text();
    answer.frames = fields.number(MostFrames);
    answer.openedFrame = fields.number(MostFrames);
    answer.firstNumber = fields.number(MostNumber);
    answer.mainPath = fields.text();
    answer.dataset = fields.text();
    answer.framePath = fields.text();
    answer.header = fields.choice(HeaderForm::SameTree);
    fields.expectEnd();
    return answer;
}

}  // namespace morvend::imglib

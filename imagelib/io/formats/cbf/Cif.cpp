// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Tokens of CIF 1.1: names, loops, quoted texts and text fields.
#include "imagelib/io/formats/cbf/Cif.h"

#include "imagelib/io/formats/base/HeaderWords.h"

#include <algorithm>

namespace morvend::imglib {

namespace {

constexpr std::string_view HeaderName = "_array_data.header_content";

bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

/// The next ';' at the start of a line, from `at` on; the end if there is none.
std::size_t lineWithSemicolon(std::string_view text, std::size_t at)
{
    for (; (at = text.find(';', at)) != text.npos; ++at) {
        if (at == 0 || isLineEnd(text[at - 1]))
            return at;
    }
    return text.size();
}

std::string lowered(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return result;
}

bool beginsWithWord(std::string_view text, std::string_view word)
{
    return text.size() >= word.size() && sameWord(text.substr(0, word.size()), word);
}

class Tokens {
public:
    enum Kind { Name, Value, Loop, Other, End };
    struct Token {
        Kind kind;
        std::string_view text;
    };

    explicit Tokens(std::string_view text)
        : _text(text)
    {}

    Token next()
    {
        skipBlanksAndComments();
        if (_at >= _text.size())
            return {End, {}};
        const char c = _text[_at];
        if (c == ';' && (_at == 0 || isLineEnd(_text[_at - 1])))
            return {Value, textField()};
        if (c == '\'' || c == '"')
            return {Value, quoted(c)};
        const std::size_t begin = _at;
        while (_at < _text.size() && !isBlank(_text[_at]))
            ++_at;
        const std::string_view word = _text.substr(begin, _at - begin);
        if (c == '_')
            return {Name, word};
        if (sameWord(word, "loop_"))
            return {Loop, word};
        if (beginsWithWord(word, "data_") || beginsWithWord(word, "save_"))
            return {Other, word};
        return {Value, word};
    }

private:
    void skipBlanksAndComments()
    {
        while (_at < _text.size()) {
            if (_text[_at] == '#')
                skipLine();
            else if (isBlank(_text[_at]))
                ++_at;
            else
                return;
        }
    }
    void skipLine()
    {
        while (_at < _text.size() && !isLineEnd(_text[_at]))
            ++_at;
    }
    std::string_view textField()
    {
        const std::size_t begin = _at + 1;
        const std::size_t end = lineWithSemicolon(_text, begin);
        _at = std::min(end + 1, _text.size());
        return _text.substr(begin, end - begin);
    }
    /// A quote ends only before a blank: 'a dog's life' is one value.
    std::string_view quoted(char quote)
    {
        const std::size_t begin = ++_at;
        for (; _at < _text.size() && !isLineEnd(_text[_at]); ++_at) {
            if (_text[_at] == quote && (_at + 1 == _text.size() || isBlank(_text[_at + 1])))
                return _text.substr(begin, _at++ - begin);
        }
        return _text.substr(begin, _at - begin);
    }

    std::string_view _text;
    std::size_t _at = 0;
};

}  // namespace

Cif::Cif(std::string_view text)
{
    Tokens tokens(text);
    std::vector<std::vector<std::string_view>*> columns;
    std::vector<std::string_view> ignored;
    bool inLoop = false;
    bool namesEnded = false;
    std::size_t count = 0;
    for (auto token = tokens.next(); token.kind != Tokens::End; token = tokens.next()) {
        if (token.kind == Tokens::Value) {
            if (columns.empty())
                continue;
            auto& column = *columns[count++ % columns.size()];
            column.push_back(token.text);
            namesEnded = true;
            if (!inLoop)
                columns.clear();
            continue;
        }
        if (!inLoop || namesEnded || token.kind != Tokens::Name) {
            columns.clear();
            count = 0;
            namesEnded = false;
            inLoop = token.kind == Tokens::Loop;
        }
        if (token.kind == Tokens::Name) {
            // Of several data blocks the first one counts.
            auto [item, isNew] = _items.try_emplace(lowered(token.text));
            columns.push_back(isNew ? &item->second : &ignored);
        }
    }
}

const std::vector<std::string_view>& Cif::values(std::string_view name) const
{
    static const std::vector<std::string_view> none;
    const auto item = _items.find(name);
    return item == _items.end() ? none : item->second;
}

std::string_view Cif::value(std::string_view name, std::size_t row) const
{
    const auto& all = values(name);
    if (row >= all.size() || all[row] == "?" || all[row] == ".")
        return {};
    return trimmed(all[row]);
}

bool Cif::number(std::string_view name, double& result, std::size_t row) const
{
    return parseNumber(value(name, row), result);
}

std::string_view headerContents(std::string_view text)
{
    std::size_t at = text.find(HeaderName);
    if (at == text.npos)
        return {};
    at += HeaderName.size();
    if (at < text.size() && text[at] == 's')
        ++at;
    const std::size_t begin = lineWithSemicolon(text, at);
    const std::string_view between = trimmed(text.substr(at, begin - at));
    if (!between.empty() && between.front() != '#')  // a word or a quoted text, not header lines
        return {};
    if (!between.empty() || begin >= text.size())
        return text.substr(at, begin - at);
    return text.substr(begin + 1, lineWithSemicolon(text, begin + 1) - begin - 1);
}

}  // namespace morvend::imglib

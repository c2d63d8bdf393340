// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bytes of requests and replies.
#include "logic/preload/PreloaderMessages.h"

#include "imagelib/image/MException.h"
#include "logic/support/Assert.h"

#include <cstring>
#include <limits>
#include <string_view>

namespace preloader {

namespace {

template <class Number>
void append(std::string& data, Number number)
{
    data.append(reinterpret_cast<const char*>(&number), sizeof number);
}

/// Takes the fields of a list, one after the other.
class Fields {
public:
    explicit Fields(const std::string& data)
        : _data(data)
    {}
    std::string_view bytes(std::size_t count)
    {
        if (_data.size() - _place < count)
            _refuse();
        _place += count;
        return std::string_view(_data).substr(_place - count, count);
    }
    std::uint32_t count(std::size_t most)
    {
        std::uint32_t value = 0;
        std::memcpy(&value, bytes(sizeof value).data(), sizeof value);
        if (value > most)
            _refuse();
        return value;
    }
    int number() { return static_cast<int>(count(std::numeric_limits<int>::max())); }
    void end() const
    {
        if (_place != _data.size())
            _refuse();
    }

private:
    [[noreturn]] static void _refuse()
    {
        throw morvend::MRuntimeException("A list of the preloader is damaged");
    }

    const std::string& _data;
    std::size_t _place = 0;
};

}  // namespace

std::string pack(Method method, unsigned long index, const std::string& path)
{
    std::string data(sizeof method + sizeof index, '\0');
    std::memcpy(data.data(), &method, sizeof method);
    std::memcpy(data.data() + sizeof method, &index, sizeof index);
    return data + path;
}

const std::string& checkedRequest(const std::string& data)
{
    if (data.size() < sizeof(Method) + sizeof(unsigned long))
        throw morvend::MRuntimeException("A request to the preloader has only " +
                                         std::to_string(data.size()) + " bytes");
    return data;
}

void unpack(const std::string& data, Method& method, unsigned long& index, std::string& path)
{
    // The text of the assertion is part of the interface.
    // clang-format off
    assert(data.size() >= sizeof(Method)+sizeof(index));
    // clang-format on
    std::memcpy(&method, data.data(), sizeof method);
    std::memcpy(&index, data.data() + sizeof method, sizeof index);
    path = data.substr(sizeof method + sizeof index);
}

std::string pack(bool hit) { return std::string(1, hit ? '\1' : '\0'); }

std::string packHitOfSameTree() { return std::string(1, '\2'); }

bool hasSameTree(const std::string& data) { return data[0] == '\2'; }

const std::string& checkedReply(const std::string& data)
{
    if (data.empty())
        throw morvend::MRuntimeException("An answer of the preloader is empty");
    return data;
}

void unpack(const std::string& data, bool& hit)
{
    assert(data.size() >= sizeof(bool));
    hit = data[0] != 0;
}

std::string pack(const ReadAhead& list)
{
    std::string data;
    append(data, static_cast<std::uint32_t>(list.held.size()));
    for (const auto& run : list.held) {
        append(data, run.first);
        append(data, run.last);
    }
    append(data, static_cast<std::uint32_t>(list.failed.size()));
    for (const auto& [number, reason] : list.failed) {
        append(data, number);
        append(data, static_cast<std::uint32_t>(reason.size()));
        data += reason;
    }
    return data;
}

ReadAhead unpackList(const std::string& data)
{
    ReadAhead list;
    Fields fields(data);
    for (auto left = fields.count(ReadAhead::MostRuns); left > 0; --left) {
        const int first = fields.number();
        list.held.push_back({first, fields.number()});
    }
    for (auto left = fields.count(ReadAhead::MostFailures); left > 0; --left) {
        const int number = fields.number();
        list.failed[number] = fields.bytes(fields.count(ReadAhead::LongestReason));
    }
    fields.end();
    return list;
}

}  // namespace preloader

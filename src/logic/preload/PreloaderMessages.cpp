// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bytes of requests and replies.
#include "logic/preload/PreloaderMessages.h"

#include "logic/support/Assert.h"

#include <cstring>

namespace preloader {

std::string pack(Method method, unsigned long index, const std::string& path)
{
    std::string data(sizeof method + sizeof index, '\0');
    std::memcpy(data.data(), &method, sizeof method);
    std::memcpy(data.data() + sizeof method, &index, sizeof index);
    return data + path;
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

void unpack(const std::string& data, bool& hit)
{
    assert(data.size() >= sizeof(bool));
    hit = data[0] != 0;
}

}  // namespace preloader

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bytes of requests and replies.
#include "logic/preload/PreloaderMessages.h"

#include "imagelib/image/MException.h"
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

}  // namespace preloader

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bytes of requests and replies.
#include "logic/preload/PreloaderMessages.h"

#include "imagelib/image/MException.h"

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
    if (data.size() < sizeof method + sizeof index)
        throw morvend::MRuntimeException("A request to the preloader has only " +
                                         std::to_string(data.size()) + " bytes");
    std::memcpy(&method, data.data(), sizeof method);
    std::memcpy(&index, data.data() + sizeof method, sizeof index);
    path = data.substr(sizeof method + sizeof index);
}

std::string pack(bool hit) { return std::string(1, hit ? '\1' : '\0'); }

void unpack(const std::string& data, bool& hit)
{
    if (data.empty())
        throw morvend::MRuntimeException("An answer of the preloader is empty");
    hit = data[0] != 0;
}

}  // namespace preloader

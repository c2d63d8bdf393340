// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// MD5 by libcrypto.
#include "imagelib/codec/Md5.h"

#include "imagelib/image/MException.h"

#include <openssl/evp.h>

namespace morvend::codec {

std::array<std::byte, 16> md5(std::span<const std::byte> bytes)
{
    std::array<std::byte, 16> sum{};
    unsigned int size = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), reinterpret_cast<unsigned char*>(sum.data()), &size,
                   EVP_md5(), nullptr) != 1 ||
        size != sum.size())
        throw MNotImplementedException("MD5 sums are not available on this system");
    return sum;
}

}  // namespace morvend::codec

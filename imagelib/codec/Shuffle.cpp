// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Byte shuffle of any element size.
#include "imagelib/codec/Shuffle.h"

#include "imagelib/codec/ShuffleKernels.h"
#include "imagelib/image/Assert.h"

#include <cstring>

namespace morvend::codec {

namespace {

void copyRest(std::span<const std::byte> from, std::size_t begin, std::span<std::byte> to)
{
    if (begin < from.size())
        std::memcpy(to.data() + begin, from.data() + begin, from.size() - begin);
}

}  // namespace

void byteUnshuffle(std::span<const std::byte> shuffled, std::size_t elementSize,
                   std::span<std::byte> elements)
{
    assert(elementSize > 0 && shuffled.size() == elements.size());
    const std::size_t count = elementSize == 1 ? 0 : shuffled.size() / elementSize;
    unshuffleBytes(shuffled.data(), count, elementSize, elements.data());
    copyRest(shuffled, count * elementSize, elements);
}

void byteShuffle(std::span<const std::byte> elements, std::size_t elementSize,
                 std::span<std::byte> shuffled)
{
    assert(elementSize > 0 && shuffled.size() == elements.size());
    const std::size_t count = elementSize == 1 ? 0 : elements.size() / elementSize;
    for (std::size_t k = 0; k < elementSize; ++k)
        for (std::size_t i = 0; i < count; ++i)
            shuffled[k * count + i] = elements[i * elementSize + k];
    copyRest(elements, count * elementSize, shuffled);
}

}  // namespace morvend::codec

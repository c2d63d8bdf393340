// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Double dispatch over the pixel types of two images, normally image and mask.
#pragma once

#include "imagelib/image/PixelTypes.h"

namespace morvend::datatypes {

/// Finds the pixel types L and R of two images in two type lists and calls
/// functor.template operator()<L, R>(left, right). Every pair of the lists is compiled: include
/// this only in the one source file of a functor.
template <class Functor, class LeftArg, class RightArg, class Result, class LeftTypes = PixelTypes,
          class RightTypes = PixelTypes>
struct BinaryDispatcher;

template <class Functor, class LeftArg, class RightArg, class Result, class... LeftTypes,
          class... RightTypes>
struct BinaryDispatcher<Functor, LeftArg, RightArg, Result, std::tuple<LeftTypes...>,
                        std::tuple<RightTypes...>> {
    /// @throws MNotImplementedException naming the type that is missing from its list
    static Result Go(LeftArg& left, RightArg& right, Functor functor)
    {
        return goLeft<LeftTypes...>(left, right, functor);
    }

    /// The dispatch over the right image alone, for a left type that the caller knows.
    template <class L>
    static Result GoRight(LeftArg& left, RightArg& right, Functor& functor)
    {
        return goRight<L, RightTypes...>(left, right, functor);
    }

private:
    template <class Image>
    [[noreturn]] static void ranOut(const Image& image)
    {
        throw MNotImplementedException(missingImplementation(image.type(), image.typeBits()));
    }

    template <class Head, class... Tail>
    static Result goLeft(LeftArg& left, RightArg& right, Functor& functor)
    {
        if (left.type() == typeOf<Head> && left.typeBits() == bitsOf<Head>)
            return goRight<Head, RightTypes...>(left, right, functor);
        if constexpr (sizeof...(Tail) > 0)
            return goLeft<Tail...>(left, right, functor);
        else
            ranOut(left);
    }

    template <class L, class Head, class... Tail>
    static Result goRight(LeftArg& left, RightArg& right, Functor& functor)
    {
        if (right.type() == typeOf<Head> && right.typeBits() == bitsOf<Head>)
            return functor.template operator()<L, Head>(left, right);
        if constexpr (sizeof...(Tail) > 0)
            return goRight<L, Tail...>(left, right, functor);
        else
            ranOut(right);
    }
};

}  // namespace morvend::datatypes

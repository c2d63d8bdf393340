// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Messages with everything in them, and their comparison.
#pragma once

#include "imagelib/ipc/WireFormat.h"
#include "tests/support/Described.h"

#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <unistd.h>

namespace tarvik::tests {

using namespace morvend::imglib;

/// An image of int pixels counting up from a number.
inline MImage countingImage(int width, int height, int first = 0)
{
    MImage image(width, height, morvend::datatypes::INT, 32);
    auto* pixels = static_cast<int*>(image.data());
    std::iota(pixels, pixels + image.size(), first);
    return image;
}

/// An image with every header field, a mask and a tree with all types of values.
inline MImage fullImage(int width = 7, int height = 5)
{
    MImage image = countingImage(width, height, -17);
    auto& header = image.optionalData();
    float number = 0.125F;
    const auto sample = [&number]<class T>(const char* name, const boost::optional<T>&) {
        if constexpr (std::is_same_v<T, std::string>)
            return boost::optional<T>(name + std::string(" \xc3\xa4\n\0 end", 9));
        else if constexpr (std::is_same_v<T, MImage>)
            return boost::optional<T>(MImage());
        else
            return boost::optional<T>(static_cast<T>(number *= -1.5F));
    };
#define TARVIK_FILL(T, name) header.set_##name(sample(#name, header.name()));
    TARVIK_HEADER_FIELDS(TARVIK_FILL)
#undef TARVIK_FILL
    MImage mask(width, height, static_cast<unsigned short>(0));
    static_cast<unsigned short*>(mask.data())[3] = 31;
    header.set_pixel_mask(mask);
    morvend::nexus::MBasicNeXusTree tree;
    tree.node("/entry").attributes["NX_class"] = std::string("NXentry");
    tree.setNumber("/entry/a", 1.5, "mm");
    tree.node("/entry/b").value = std::int64_t(-5);
    tree.node("/entry/c").value = std::vector<std::int64_t>{1, -2, 3};
    tree.node("/entry/d").value = std::vector<double>{0.5, -1e300};
    tree.node("/entry/e").value = std::vector<std::string>{"", "two"};
    tree.setText("/entry/f", "text");
    header.setNexusTree(tree);
    return image;
}

inline MDrawingList<> fullList()
{
    MDrawingList<> list;
    list.pushBack(MDrawingPixel(1.5, -2, 1, 2, 3, 4));
    list.pushBack(MDrawingLine(1, 2, 3, 4.25));
    list.pushBack(MDrawingString(9, 8, "peak \xc3\xa4", 9, 8, 7, 6));
    list.pushBack(MDrawingEllipse(1, 2, 3, 4, 0.5));
    return list;
}

inline bool sameHeaders(const MImage& left, const MImage& right);

template <class T>
bool sameField(const boost::optional<T>& left, const boost::optional<T>& right)
{
    if constexpr (!std::is_same_v<T, MImage>)
        return left == right;
    else
        return bool(left) == bool(right) &&
               (!left || (samePixels(*left, *right) && sameHeaders(*left, *right)));
}

inline bool sameHeaders(const MImage& left, const MImage& right)
{
    const auto& l = left.optionalData();
    const auto& r = right.optionalData();
    bool same = true;
#define TARVIK_COMPARE(T, name) same = same && sameField(l.name(), r.name());
    TARVIK_HEADER_FIELDS(TARVIK_COMPARE)
#undef TARVIK_COMPARE
    const auto& a = l.nexusTree().nodes();
    const auto& b = r.nexusTree().nodes();
    return same && a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](const auto& x, const auto& y) {
               return x.first == y.first && x.second.value == y.second.value &&
                      x.second.attributes == y.second.attributes;
           });
}

inline bool sameMessages(const Message& left, const Message& right)
{
    if (left.index() != right.index())
        return false;
    if (const auto* text = std::get_if<std::string>(&left))
        return *text == std::get<std::string>(right);
    if (const auto* image = std::get_if<MImage>(&left))
        return samePixels(*image, std::get<MImage>(right)) &&
               sameHeaders(*image, std::get<MImage>(right));
    return described(std::get<MDrawingList<>>(left)) == described(std::get<MDrawingList<>>(right));
}

}  // namespace tarvik::tests

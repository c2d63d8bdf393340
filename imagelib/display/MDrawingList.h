// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A vector overlay: an ordered list of drawing primitives.
#pragma once

#include "imagelib/display/MDrawingEllipse.h"
#include "imagelib/display/MDrawingLine.h"
#include "imagelib/display/MDrawingPixel.h"
#include "imagelib/display/MDrawingString.h"
#include "imagelib/image/Assert.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace morvend::imglib {

/// Primitives in drawing order. A value type: it keeps a copy of each primitive of its own, with
/// its class, and a copy of the list copies them. The allocator parameter is part of the
/// interface; it does not change where memory comes from.
template <class Allocator = std::allocator<char>>
class MDrawingList {
public:
    explicit MDrawingList(const Allocator& = Allocator()) {}
    MDrawingList(const MDrawingList& other)
    {
        _items.reserve(other._items.size());
        for (const auto& item : other._items)
            _items.push_back(item->clone());
    }
    MDrawingList(MDrawingList&& other) noexcept = default;
    MDrawingList& operator=(MDrawingList other) noexcept
    {
        swap(other);
        return *this;
    }

    std::size_t size() const { return _items.size(); }
    /// The primitive at an index below size() (asserted); type() tells which class it is.
    const MDrawingPrimitive& operator[](std::size_t index) const
    {
        assert(index < _items.size());
        return *_items[index];
    }
    MDrawingPrimitive& operator[](std::size_t index)
    {
        assert(index < _items.size());
        return *_items[index];
    }
    void pushBack(const MDrawingPrimitive& primitive) { _items.push_back(primitive.clone()); }
    void clear() { _items.clear(); }
    void swap(MDrawingList& other) noexcept { _items.swap(other._items); }

private:
    std::vector<std::unique_ptr<MDrawingPrimitive>> _items;
};

}  // namespace morvend::imglib

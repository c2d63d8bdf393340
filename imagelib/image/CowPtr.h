// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A value that is shared until it is written.
#pragma once

#include <atomic>
#include <cstddef>
#include <utility>

namespace morvend::image {

/// Holds a T by reference count; copies cost a pointer. read() of a null pointer is a default T,
/// write() first makes a copy of its own when others hold the value too. T may be incomplete where
/// a member of this type is declared.
/// Thread: copies may live on different threads; one object belongs to one thread at a time.
template <class T>
class CowPtr {
public:
    CowPtr() = default;
    CowPtr(const CowPtr& other) noexcept
        : _node(other._node)
    {
        if (_node)
            _node->references.fetch_add(1, std::memory_order_relaxed);
    }
    CowPtr(CowPtr&& other) noexcept
        : _node(std::exchange(other._node, nullptr))
    {}
    CowPtr& operator=(CowPtr other) noexcept
    {
        std::swap(_node, other._node);
        return *this;
    }
    ~CowPtr() { reset(); }

    const T& read() const
    {
        static const T none{};
        return _node ? _node->value : none;
    }

    T& write()
    {
        if (!_node || _node->references.load(std::memory_order_acquire) != 1) {
            Node* mine = new Node(read());
            reset();
            _node = mine;
        }
        return _node->value;
    }

    void reset() noexcept
    {
        if (_node && _node->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete _node;
        _node = nullptr;
    }

    explicit operator bool() const { return _node != nullptr; }

private:
    struct Node {
        explicit Node(const T& from)
            : value(from)
        {}
        std::atomic<std::size_t> references{1};
        T value;
    };
    Node* _node = nullptr;
};

}  // namespace morvend::image

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which views have an OpenGL surface.
#pragma once

#include <cstddef>
#include <vector>

namespace render {

/// Shares a few OpenGL surfaces among all views of the process. Each costs a context with its
/// programs, its painter, its textures and some ten milliseconds, so that hundreds of views can't
/// have one each. Who has none draws the same picture by the processor, which is quick for views as
/// small as they are then. Only the height map needs a surface. Thread: GUI.
class Surfaces {
public:
    /// A view that has a surface or may get one.
    class Holder {
    public:
        virtual ~Holder() = default;
        /// Could it not be drawn without?
        virtual bool needsSurface() const = 0;
        /// Its surface goes to another view.
        virtual void loseSurface() = 0;
    };

    static constexpr std::size_t most = 16;

    static Surfaces& ofThisProcess();

    /// Counts the holder in where there is a surface for it: one that is free, or, if it needs one,
    /// the one of the holder that has been counted in longest and needs none. Where all others need
    /// theirs, there is one more.
    bool take(Holder& holder);
    /// Ignores holders that are not counted in.
    void giveBack(const Holder& holder);
    std::size_t taken() const { return _holders.size(); }

private:
    std::vector<Holder*> _holders;  // the oldest first
};

}  // namespace render

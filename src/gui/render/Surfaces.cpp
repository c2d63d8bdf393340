// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which views have an OpenGL surface.
#include "gui/render/Surfaces.h"

#include <algorithm>

namespace render {

Surfaces& Surfaces::ofThisProcess()
{
    static Surfaces surfaces;
    return surfaces;
}

bool Surfaces::take(Holder& holder)
{
    if (_holders.size() >= most) {
        if (!holder.needsSurface())
            return false;
        const auto oldest = std::ranges::find_if(
            _holders, [](const Holder* each) { return !each->needsSurface(); });
        if (oldest != _holders.end()) {
            Holder* const loser = *oldest;
            _holders.erase(oldest);
            loser->loseSurface();
        }
    }
    _holders.push_back(&holder);
    return true;
}

void Surfaces::giveBack(const Holder& holder)
{
    std::erase_if(_holders, [&](const Holder* each) { return each == &holder; });
}

}  // namespace render

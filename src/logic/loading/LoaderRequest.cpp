// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Two requests become one.
#include "logic/loading/LoaderRequest.h"

#include <algorithm>

int LoaderRequest::way() const
{
    if (!fromAsked)
        return 0;
    const bool forward = steps.back() > 0;
    const bool same = std::ranges::all_of(steps, [=](int n) { return (n > 0) == forward; });
    return !same ? 0 : forward ? 1 : -1;
}

void LoaderRequest::join(const LoaderRequest& newer)
{
    if (newer.steps.empty() || !newer.fromAsked) {
        *this = newer;
        return;
    }
    const int from = data.index;
    data = newer.data;
    data.index = from;
    signalLoadError = signalLoadError || newer.signalLoadError;
    steps.insert(steps.end(), newer.steps.begin(), newer.steps.end());
}

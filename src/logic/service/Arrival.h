// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Turns a finished load into what a view shows.
#pragma once

#include "logic/service/Records.h"

/// Takes over loads: the image, the header edits applied to it, and the group that its size
/// belongs to. Thread: GUI only.
class Arrival {
public:
    /// All outlive this object.
    Arrival(ShownImage& shown, HeaderEdits& edits, Records& records);

    void show(const LoaderData& load);

private:
    ShownImage& _shown;
    HeaderEdits& _edits;
    Records& _records;
};

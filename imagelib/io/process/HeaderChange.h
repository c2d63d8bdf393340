// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Headers within a series differ in a few fields; only those are sent between processes.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/process/ReaderMessages.h"

namespace morvend::imglib {

/// Remembers the header of the last image; one object at each end keeps both in step.
/// Thread: one at a time.
class HeaderChange {
public:
    using Header = MBasicImageOptionalData<>;

    /// Removes from a header what the other end knows already, and returns how.
    HeaderForm shorten(Header& header);
    /// Makes a shortened header whole again.
    void complete(Header& header, HeaderForm form);

private:
    Header _last;
    bool _any = false;
};

}  // namespace morvend::imglib

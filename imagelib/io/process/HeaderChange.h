// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The headers of a series' images differ in a few fields: only those cross between processes.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/process/ReaderMessages.h"

namespace morvend::imglib {

/// Remembers the header of the last image; one at each end keeps both in step.
/// Thread: one at a time.
class HeaderChange {
public:
    using Header = MBasicImageOptionalData<>;

    /// Leaves of a header what the other end does not know, and says how.
    HeaderForm shorten(Header& header);
    /// Makes a shortened header whole again.
    void complete(Header& header, HeaderForm form);

private:
    Header _last;
    bool _any = false;
};

}  // namespace morvend::imglib

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The chain of directories of a TIFF file.
#pragma once

#include "imagelib/io/formats/base/ByteSource.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace morvend::imglib::tiff {

/// Where a page is in the file.
struct TiffPage {
    std::uint64_t directory = 0;
    /// Bytes of the image description; libtiff gives them only up to their first NUL.
    std::uint64_t textOffset = 0;
    std::uint64_t textBytes = 0;
};

/// Walks the chain as far as requested. Previews and transparency masks are left out, as they
/// are no frames. A chain that breaks counts as one more page, which can't be read: the pages
/// before it stay readable and the damage is not passed over.
/// Thread: one at a time.
class TiffPages {
public:
    static bool isTiff(std::string_view head);

    /// @throws MRuntimeException if there is no first page
    explicit TiffPages(std::shared_ptr<const ByteSource> source);

    bool bigEndian() const { return _bigEndian; }
    /// @throws MOutOfRangeException beyond the last page, MRuntimeException with the reason for the
    /// page where the chain breaks
    const TiffPage& page(std::size_t position);
    /// Number of pages; walks to the end of the chain.
    std::size_t count();
    /// Looks after the last page again, where a writer may have added more.
    void update();

private:
    std::uint64_t _number(std::span<const std::byte> bytes) const;
    bool _walk();
    void _readDirectory(std::uint64_t offset);
    void _readEntries(std::uint64_t offset, std::span<const std::byte> directory);
    void _breakOff(const std::string& reason);

    std::shared_ptr<const ByteSource> _source;
    bool _bigEndian = false;
    bool _bigTiff = false;
    std::vector<TiffPage> _pages;
    std::unordered_set<std::uint64_t> _seen;
    std::uint64_t _nextAt = 0;  // file offset of the link to the next directory
    std::string _damage;
};

}  // namespace morvend::imglib::tiff

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The images that were read ahead.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/base/FileStamp.h"
#include "logic/preload/NumberRuns.h"
#include "logic/preload/ReadAhead.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <tuple>

/// Images by path and number. Thread: any; no call does more than a few look-ups under the lock.
class PreloaderCache {
public:
    using MImage = morvend::imglib::MImage;
    /// Path of a series and image number in it, never negative: as on the queue.
    using Key = std::tuple<std::string, unsigned long>;
    /// The file that an image was read from, as it was before the reading.
    struct Origin {
        std::string path;
        morvend::imglib::FileStamp stamp;
        bool mayGrow;  // a container that its writer appends to
    };

    /// Inserts or overwrites; forgets a failure. The bytes of an overwritten image still count.
    void add(const Key& key, const MImage& image, const Origin& origin = {});
    /// Notes why an image can't be read. Failures go with the images of their series.
    void fail(const Key& key, const std::string& reason);
    /// What there is of a series. Costs what its runs of numbers cost.
    ReadAhead list(const std::string& path) const;
    bool count(const Key& key) const;
    /// A copy of the image, which shares the pixels.
    /// @throws MOutOfRangeException "Cache fault" if it isn't there
    MImage operator[](const Key& key) const;
    /// Erases the images of other paths, and those of this path up to and with this number.
    void eraseIfLessEqual(const Key& key);
    /// Erases the images of other paths and the one of this number. Of those after it, erases the
    /// farthest until the rest has at most so many bytes.
    void eraseFarBehind(const Key& key, std::uint64_t most);
    /// Erases an image whose file has changed since it was read. An image whose file has gone
    /// stays. Looks at the file, without the lock.
    void eraseIfStale(const Key& key);
    /// Bytes of the pixels of all images.
    std::uint64_t fill() const { return _fill; }

private:
    struct Entry {
        MImage image;
        Origin origin{};
    };
    using Entries = std::map<Key, Entry>;

    static std::uint64_t _bytes(const Entry& entry);
    /// Erases the entries that meet a condition, in descending order.
    template <class Condition>
    void _eraseWhere(Condition&& condition);

    /// Erases one entry; the lock is held.
    Entries::iterator _erase(Entries::iterator entry);

    mutable std::mutex _mutex;
    std::map<std::string, NumberRuns> _held;  // the numbers of the entries, by path
    std::map<Key, std::string> _failed;
    Entries _entries;
    std::atomic<std::uint64_t> _fill = 0;
};

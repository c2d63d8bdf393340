// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Insertion and erasure of images.
#include "logic/preload/PreloaderCache.h"

#include <vector>

using morvend::imglib::FileStamp;
using morvend::imglib::MImage;

std::uint64_t PreloaderCache::_bytes(const Entry& entry) { return entry.image.dataSize(); }

void PreloaderCache::add(const Key& key, const MImage& image, const Origin& origin)
{
    const std::lock_guard lock(_mutex);
    Entry& entry = _entries[key];
    entry = {image, origin};
    _fill += _bytes(entry);
}

bool PreloaderCache::count(const Key& key) const
{
    const std::lock_guard lock(_mutex);
    return _entries.count(key) != 0;
}

MImage PreloaderCache::operator[](const Key& key) const
{
    const std::lock_guard lock(_mutex);
    const auto place = _entries.find(key);
    if (place == _entries.end())
        throw morvend::MOutOfRangeException("Cache fault");
    return place->second.image;
}

void PreloaderCache::eraseIfLessEqual(const Key& key)
{
    std::vector<MImage> erased;  // freed after the lock
    const std::lock_guard lock(_mutex);
    for (auto each = _entries.begin(); each != _entries.end();) {
        const bool otherPath = std::get<0>(each->first) != std::get<0>(key);
        if (otherPath || std::get<1>(each->first) <= std::get<1>(key)) {
            _fill -= _bytes(each->second);
            erased.push_back(std::move(each->second.image));
            each = _entries.erase(each);
        } else {
            ++each;
        }
    }
}

void PreloaderCache::eraseIfStale(const Key& key)
{
    Origin origin{};
    {
        const std::lock_guard lock(_mutex);
        const auto place = _entries.find(key);
        if (place == _entries.end())
            return;
        origin = place->second.origin;
    }
    const FileStamp now(origin.path);
    if (!now.exists() || now == origin.stamp || (origin.mayGrow && now.grownFrom(origin.stamp)))
        return;
    const std::lock_guard lock(_mutex);
    const auto place = _entries.find(key);
    if (place == _entries.end() || !(place->second.origin.stamp == origin.stamp))
        return;
    _fill -= _bytes(place->second);
    _entries.erase(place);
}

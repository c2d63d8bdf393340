// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Insertion and erasure of images.
#include "logic/preload/PreloaderCache.h"

#include <algorithm>
#include <limits>
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
    _held[std::get<0>(key)].add(std::get<1>(key));
    _failed.erase(key);
}

void PreloaderCache::fail(const Key& key, const std::string& reason)
{
    const std::lock_guard lock(_mutex);
    if (_failed.size() < ReadAhead::MostFailures)
        _failed[key] = reason.substr(0, ReadAhead::LongestReason);
}

ReadAhead PreloaderCache::list(const std::string& path) const
{
    // Numbers of a series are those of an int.
    const auto number = [](unsigned long from) {
        return static_cast<int>(
            std::min<unsigned long>(from, static_cast<unsigned>(std::numeric_limits<int>::max())));
    };
    ReadAhead list;
    const std::lock_guard lock(_mutex);
    if (const auto held = _held.find(path); held != _held.end()) {
        for (const auto& [first, last] : held->second.runs()) {
            if (list.held.size() < ReadAhead::MostRuns)
                list.held.push_back({number(first), number(last)});
        }
    }
    for (const auto& [key, reason] : _failed) {
        if (std::get<0>(key) == path)
            list.failed[number(std::get<1>(key))] = reason;
    }
    return list;
}

PreloaderCache::Entries::iterator PreloaderCache::_erase(Entries::iterator entry)
{
    const auto& [path, number] = entry->first;
    const auto held = _held.find(path);
    held->second.remove(number);
    if (held->second.runs().empty())
        _held.erase(held);
    _fill -= _bytes(entry->second);
    return _entries.erase(entry);
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

template <class Condition>
void PreloaderCache::_eraseWhere(Condition&& condition)
{
    std::vector<MImage> erased;  // freed after the lock
    const std::lock_guard lock(_mutex);
    for (auto each = _entries.end(); each != _entries.begin();) {
        --each;
        if (!condition(*each))
            continue;
        erased.push_back(each->second.image);
        each = _erase(each);
    }
}

void PreloaderCache::eraseIfLessEqual(const Key& key)
{
    {
        const std::lock_guard lock(_mutex);
        std::erase_if(_failed, [&](const auto& failure) {
            return std::get<0>(failure.first) != std::get<0>(key);
        });
    }
    _eraseWhere([&](const Entries::value_type& entry) {
        return std::get<0>(entry.first) != std::get<0>(key) ||
               std::get<1>(entry.first) <= std::get<1>(key);
    });
}

void PreloaderCache::eraseFarBehind(const Key& key, std::uint64_t most)
{
    const std::string& path = std::get<0>(key);
    std::uint64_t behind = 0;
    {
        const std::lock_guard lock(_mutex);
        for (auto each = _entries.upper_bound(key);
             each != _entries.end() && std::get<0>(each->first) == path; ++each)
            behind += _bytes(each->second);
    }
    _eraseWhere([&](const Entries::value_type& entry) {
        if (std::get<0>(entry.first) != path || entry.first == key)
            return true;
        if (entry.first < key || behind <= most)
            return false;
        behind -= _bytes(entry.second);
        return true;
    });
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
    _erase(place);
}

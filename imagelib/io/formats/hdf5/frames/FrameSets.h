// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The data sets of frames that are open at a time.
#pragma once

#include "imagelib/io/formats/hdf5/frames/ChunkCache.h"
#include "imagelib/io/formats/hdf5/frames/FrameSet.h"

#include <list>

namespace morvend::imglib::hdf5 {

/// Opens data sets of frames and keeps those used last; one whose file has changed on disk is
/// opened anew. Thread: callers take turns.
class FrameSets {
public:
    static constexpr std::size_t MostOpen = Hdf5Files::MostOpen;
    /// Virtual data sets may have virtual sources, this deep.
    static constexpr int MostLevels = 4;

    explicit FrameSets(Hdf5Files& files)
        : _files(files)
    {}

    /// @throws MException naming the file when there is no such file or data set
    FrameSetPtr at(const Place& place);

    Hdf5Files& files() { return _files; }
    ChunkCache& chunks() { return _chunks; }
    void close();

    /// Counts the levels of virtual data sets on the way to a pixel.
    class Level {
    public:
        /// @throws MRuntimeException when virtual data sets refer to each other without end
        Level(FrameSets& sets, const std::string& path);
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        ~Level() { --_sets._levels; }

    private:
        FrameSets& _sets;
    };

private:
    struct Entry {
        Place place;
        Hdf5FilePtr asked;  // the file in which the way to the data set began
        FrameSetPtr set;
    };

    Hdf5Files& _files;
    ChunkCache _chunks;
    std::list<Entry> _open;  // the last used first
    int _levels = 0;
};

}  // namespace morvend::imglib::hdf5

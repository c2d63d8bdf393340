// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The data sets of frames that are open at a time.
#pragma once

#include "imagelib/io/formats/hdf5/frames/FrameSource.h"

#include <list>

namespace morvend::imglib::hdf5 {

/// Opens data sets of frames and keeps the most recently used; one whose file has changed on disk
/// is opened again.
///
/// Chunks whose filters are known are read raw and decoded straight into the image, outside the
/// library and its lock (ChunkReader); frames of virtual data sets are put together from their
/// sources (VirtualLayout); everything else is read by the library. Thread: callers take turns.
class OpenFrameSets : public SourceOpener {
public:
    static constexpr std::size_t MostOpen = OpenFiles::MostOpen;

    explicit OpenFrameSets(OpenFiles& files)
        : _files(files)
    {}

    FrameSourcePtr at(const ObjectPath& path) override;
    OpenFiles& files() override { return _files; }
    ChunkCache& chunks() override { return _chunks; }
    void close();

private:
    struct Entry {
        ObjectPath path;
        Hdf5FilePtr asked;  // the file in which the way to the data set began
        FrameSourcePtr set;
    };

    OpenFiles& _files;
    ChunkCache _chunks;
    std::list<Entry> _open;  // the last used first
};

}  // namespace morvend::imglib::hdf5

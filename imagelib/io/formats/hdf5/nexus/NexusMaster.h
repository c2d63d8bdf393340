// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// An HDF5 series as a whole: its entry, its blocks of frames, its header.
#pragma once

#include "imagelib/io/formats/hdf5/frames/FrameSets.h"
#include "imagelib/io/formats/hdf5/nexus/BlockTable.h"
#include "imagelib/io/formats/hdf5/nexus/DataFinder.h"
#include "imagelib/io/formats/hdf5/nexus/MaskReader.h"
#include "imagelib/io/formats/hdf5/nexus/NexusHeader.h"

#include <optional>
#include <string>

namespace morvend::imglib::hdf5 {

/// A series opened by its master, by any of its data files, or a single file of any known layout.
/// Thread: callers take turns.
class NexusMaster {
public:
    /// @throws MException when the file can't be read, holds no images or no frame yet
    /// @param dataset  what of the file is to be shown: a data set or a group by its path; empty
    /// for what the series shows by itself. With one, the file stands for itself, whatever its name
    explicit NexusMaster(const std::string& path, const std::string& dataset = {});
    NexusMaster(const NexusMaster&) = delete;
    NexusMaster& operator=(const NexusMaster&) = delete;

    std::size_t frames() const { return _state->blocks.frames(); }
    /// The first frame that the opened file holds.
    std::size_t openedFrame() const { return _openedFrame; }
    /// What the file was opened at, empty when it would show the same by itself.
    const std::string& dataset() const { return _state->dataset; }
    /// The file of links and header: the master, if there is one.
    const std::string& source() const { return _state->source; }
    /// A frame with its header and mask. Where a mask is left out, the raw header begins with a
    /// line that says so, and standard error gets it once.
    MImage frame(std::size_t position);
    std::string path(std::size_t position) { return _state->blocks.path(position); }

    /// Looks for new blocks and frames. What was known stays when a file is found in the middle of
    /// a write.
    void update();

    /// Files open at this moment.
    std::size_t openFiles() const { return _files.openCount(); }

private:
    /// All that was learnt from the files at one time.
    struct State {
        std::string source;   // the file of links and header
        std::string dataset;  // empty for what the file shows by itself
        FileState sourceState;
        std::vector<std::string> dataFiles;  // of a series without a master
        NexusHeader header;
        BlockTable blocks;
    };

    bool _openMaster(const std::string& path);
    State _load(const std::string& source);
    State _loadDataFiles(const std::string& path);
    bool _isOwnChoice(const Hdf5FilePtr& file, const ImageLinks& images);
    void _updateState();
    std::vector<std::string> _maskPaths() const;
    /// Adds the mask of an image, and what is to be said about it, to its header.
    void _addMask(MBasicImageOptionalData<>& header, const MImage& image, std::size_t position);

    std::string _path;
    std::string _dataset;
    Hdf5Files _files;
    FrameSets _sets{_files};
    std::optional<State> _state;
    std::size_t _openedFrame = 0;
    std::optional<Mask> _mask;  // as it was read last
    MImage _lastMask;           // the same pixels, with the identity of those before if unchanged
    std::string _remark;        // about the mask, told already
};

}  // namespace morvend::imglib::hdf5

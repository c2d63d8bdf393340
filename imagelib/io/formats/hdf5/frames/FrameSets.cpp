// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Data sets by last use.
#include "imagelib/io/formats/hdf5/frames/FrameSets.h"

#include "imagelib/image/MException.h"

#include <algorithm>

namespace morvend::imglib::hdf5 {

FrameSetPtr FrameSets::at(const Place& place)
{
    const auto known = std::find_if(_open.begin(), _open.end(), [&](const Entry& each) {
        return each.place.path == place.path && each.place.file == place.file;
    });
    const Hdf5FilePtr file = _files.file(place.file);
    if (known != _open.end()) {
        const Hdf5FilePtr& holds = known->set->file();
        if (known->asked == file && (holds == file || holds->current())) {
            _open.splice(_open.begin(), _open, known);
            return _open.front().set;
        }
        _open.erase(known);
    }
    std::optional<Found> found = _files.find(file, place.path);
    if (!found || !found->isDataset())
        throw MRuntimeException("HDF5: there is no data set " + place.path + ": " + place.file);
    _open.push_front({place, file, std::make_shared<const FrameSet>(std::move(*found))});
    if (_open.size() > MostOpen)
        _open.pop_back();
    return _open.front().set;
}

void FrameSets::close()
{
    _open.clear();
    _chunks.clear();
}

FrameSets::Level::Level(FrameSets& sets, const std::string& path)
    : _sets(sets)
{
    if (sets._levels >= MostLevels)
        throw MRuntimeException("HDF5: virtual data sets refer to each other without end: " + path);
    ++sets._levels;
}

}  // namespace morvend::imglib::hdf5

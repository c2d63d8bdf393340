// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames by number, and the changes of their container.
#include "imagelib/io/series/FrameSeries.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/ImagePath.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <string_view>
#include <utility>

namespace morvend::imglib {

namespace {

bool isHdf5(const ImageFile& file) { return std::string_view(file.format()) == "HDF5"; }

}  // namespace

FrameSeries::FrameSeries(std::string path, std::unique_ptr<ImageFile> file, ImagePathOpener open)
    : _path(std::move(path))
    , _stamp(_path)
    , _file(std::move(file))
    , _open(std::move(open))
{}

bool FrameSeries::isSeriesByItself(const ImageFile& file)
{
    if (isHdf5(file) || file.frameCount() != 2)
        return isHdf5(file) || file.frameCount() > 1;
    try {
        file.frame(1);
        return true;
    } catch (const MException& error) {
        std::fprintf(stderr, "WARNING: the first image alone is shown: %s\n", error.what());
        return false;
    }
}

int FrameSeries::openedNumber() const { return first() + static_cast<int>(_file->openedFrame()); }

int FrameSeries::last() const
{
    constexpr std::size_t Most = std::numeric_limits<int>::max() - 1;
    return first() + static_cast<int>(std::min(_file->frameCount(), Most)) - 1;
}

std::size_t FrameSeries::position(int number) const
{
    if (number < first() || number > last())
        outOfRange(number, _path);
    return static_cast<std::size_t>(number - first());
}

MImage FrameSeries::at(int number) const
{
    if (!isHdf5(*_file) && changeSince(FileStamp(_path)) == Change::Replaced)
        reopen();
    MImage image = _file->frame(position(number));
    const std::string main = _file->mainPath();
    std::string name = ImagePath{fileName(main.empty() ? _path : main), _file->dataset()}.text();
    if (_file->frameCount() > 1)
        name += " - image " + std::to_string(number);
    describe(image, name);
    return image;
}

std::string FrameSeries::pathToImage(int number) const
{
    return _file->framePath(position(number));
}

void FrameSeries::update()
{
    try {
        const FileStamp now(_path);
        const Change change = changeSince(now);
        if (change == Change::Replaced) {
            if (now != _refused || Clock::now() >= _nextTry)
                reopen();
            return;
        }
        _file->update();
        if (change == Change::Grown)
            _stamp = now;
    } catch (const MException&) {
        // A writer may be in the middle of its work; the next look will see the result.
    }
}

FrameSeries::Change FrameSeries::changeSince(const FileStamp& now) const
{
    if (!now.exists() || now == _stamp)
        return Change::None;
    const bool appendedTo =
        isHdf5(*_file) ? now.sameFile(_stamp) : now.grownFrom(_stamp) && _file->frameCount() > 1;
    return appendedTo ? Change::Grown : Change::Replaced;
}

void FrameSeries::reopen() const
{
    // Stamped before reading, so that what is written meanwhile counts as a change.
    const FileStamp stamp(_path);
    try {
        _file = _open(_path);
    } catch (const MException& error) {
        postponeRetry(stamp, error);
        throw;
    }
    _stamp = stamp;
    _refused = {};
    _warned = false;
}

void FrameSeries::postponeRetry(const FileStamp& stamp, const MException& error) const
{
    // Looks are frequent, and each may cost a process: one that the file crashes is
    // wasted, one that hangs holds up the view, but a mount that hung may answer again. An
    // incomplete file may be waiting for others, which its stamp does not show.
    const bool crashed = dynamic_cast<const MReaderGoneException*>(&error) != nullptr;
    const bool hung = dynamic_cast<const MTimeoutException*>(&error) != nullptr;
    const bool ended = crashed || hung;
    const auto pause =
        hung ? std::chrono::seconds(std::chrono::minutes(5)) : std::chrono::seconds(1);
    _refused = stamp;
    _nextTry = crashed ? Clock::time_point::max() : Clock::now() + pause;
    if (ended && !std::exchange(_warned, true))
        std::fprintf(stderr, "WARNING: %s\n", error.what());
}

}  // namespace morvend::imglib

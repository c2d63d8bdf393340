// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Chooses the kind of series and forwards to it.
#include "imagelib/io/MImageSeries.h"

#include "imagelib/image/ErrorPlace.h"
#include "imagelib/io/FormatRegistry.h"
#include "imagelib/io/formats/base/Cancellation.h"
#include "imagelib/io/series/FrameSeries.h"
#include "imagelib/io/series/MemorySeries.h"
#include "imagelib/io/series/NumberedSeries.h"
#include "imagelib/io/series/SeriesFinder.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <stop_token>
#include <utility>

namespace morvend::imglib {

class MImageSeries::Private {
public:
    explicit Private(std::size_t memorySize)
        : series(std::make_unique<MemorySeries>(memorySize))
    {}
    std::unique_ptr<Series> series;
    std::stop_source stop;
};

namespace {

/// The absolute path, so that a later change of the working directory does no harm.
std::string absolutePath(const std::string& path)
{
    if (path.empty())
        throw MNoFileAccessException("Cannot open file: no name was given");
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    if (error)
        throw MNoFileAccessException("Cannot open file: " + error.message() + ": " + path);
    // ".." stays: after a symbolic link it is not the folder that the text suggests.
    const bool climbs = std::find(absolute.begin(), absolute.end(), "..") != absolute.end();
    return climbs ? absolute.string() : absolute.lexically_normal().string();
}

/// The number as an int: a larger one is beyond every series.
int toInt(std::size_t number)
{
    if (number > std::size_t(std::numeric_limits<int>::max()))
        throw MOutOfRangeException("There is no image " + std::to_string(number) +
                                   " in the series: the number is too large");
    return static_cast<int>(number);
}

/// The file of an image, for messages; "image 12" if there isn't one.
std::string placeOf(const Series& series, int number)
{
    try {
        return series.pathToImage(number);
    } catch (const std::exception&) {
        return "image " + std::to_string(number);
    }
}

}  // namespace

MImageSeries::MImageSeries(std::size_t memorySize)
    : _d(std::make_unique<Private>(memorySize))
{}
MImageSeries::MImageSeries(std::unique_ptr<Private> d)
    : _d(std::move(d))
{}
MImageSeries::MImageSeries(MImageSeries&& other) noexcept = default;
MImageSeries& MImageSeries::operator=(MImageSeries&& other) noexcept = default;
MImageSeries::~MImageSeries() = default;

int MImageSeries::open(const std::string& path)
{
    ImagePath named = ImagePath::of(path);
    named.file = absolutePath(named.file);
    const CancelScope scope(_d->stop.get_token());
    return withPlace([&] { return named.file; }, [&] { return _open(named); });
}

int MImageSeries::_open(const ImagePath& named)
{
    const std::string& file = named.file;
    const ImagePathOpener open = [dataset = named.dataset,
                                  stop = _d->stop.get_token()](const std::string& path) {
        return FormatRegistry::open({path, dataset}, stop);
    };
    std::unique_ptr<ImageFile> opened = open(file);
    std::optional<SeriesFinder> finder = SeriesFinder::of(file);
    if (finder && !FrameSeries::isSeriesByItself(*opened)) {
        const int number = finder->number();
        _d->series = std::make_unique<NumberedSeries>(std::move(*finder), std::move(opened), open);
        return number;
    }
    auto frames = std::make_unique<FrameSeries>(file, std::move(opened), open);
    const int number = frames->openedNumber();
    _d->series = std::move(frames);
    return number;
}

void MImageSeries::open(int memorySize)
{
    if (memorySize < 0)
        throw MBadParameterException("A series in memory cannot keep " +
                                     std::to_string(memorySize) + " images");
    _d->series = std::make_unique<MemorySeries>(static_cast<std::size_t>(memorySize));
}

MImageSeries MImageSeries::beside() const
{
    auto other = std::make_unique<Private>(1);
    other->stop = _d->stop;
    return MImageSeries(std::move(other));
}

void MImageSeries::exchange(MImageSeries& other) noexcept { _d->series.swap(other._d->series); }

void MImageSeries::pushBack(const MImage& image) { _d->series->pushBack(image); }
MImage MImageSeries::at(int number) const
{
    const CancelScope scope(_d->stop.get_token());
    return withPlace([&] { return placeOf(*_d->series, number); },
                     [&] { return _d->series->at(number); });
}
MImage MImageSeries::at(std::size_t number) const { return at(toInt(number)); }
bool MImageSeries::empty() const { return _d->series->empty(); }
int MImageSeries::first() const { return empty() ? -1 : _d->series->first(); }
int MImageSeries::last() const { return empty() ? -1 : _d->series->last(); }
NumberRanges MImageSeries::gaps() const { return empty() ? nullptr : _d->series->gaps(); }
int MImageSeries::next(int number) const { return empty() ? -1 : _d->series->next(number); }
int MImageSeries::previous(int number) const { return empty() ? -1 : _d->series->previous(number); }
void MImageSeries::update()
{
    const CancelScope scope(_d->stop.get_token());
    withPlace([&] { return placeOf(*_d->series, std::max(first(), 0)); },
              [&] { _d->series->update(); });
}

void MImageSeries::cancel() { _d->stop.request_stop(); }

std::string MImageSeries::pathToImage(int number) const { return _d->series->pathToImage(number); }
std::string MImageSeries::pathToImage(std::size_t number) const
{
    return pathToImage(toInt(number));
}

std::string MImageSeries::formatName() const { return empty() ? "" : _d->series->format(); }

}  // namespace morvend::imglib

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Replaces one series by another.
#include "logic/loading/SeriesSession.h"

#include "imagelib/image/MException.h"

#include <filesystem>
#include <utility>

using morvend::imglib::FileStamp;
using morvend::imglib::MImage;

namespace {

/// The path as another process finds it, whatever that one's working directory is.
std::string absolute(const std::string& path)
{
    std::error_code error;
    const auto result = std::filesystem::absolute(path, error);
    return error ? path : result.string();
}

}  // namespace

SeriesSession::SeriesSession(Shown shown)
    : _series(pushedImages)
    , _comeBackTo(std::move(shown.path))
    , _asked(_comeBackTo.empty() ? -1 : shown.number)
    , _shown(_asked)
{}

void SeriesSession::comeBack()
{
    if (_comeBackTo.empty())
        return;
    _series.open(_comeBackTo);
    _openedAs = std::exchange(_comeBackTo, {});
    _tellPreloader(_shown);
}

int SeriesSession::open(const std::string& path)
{
    _beside.emplace(Other{_series.beside(), path});
    return _beside->series.open(path);
}

int SeriesSession::push(const MImage& image)
{
    try {
        _series.pushBack(image);
    } catch (const morvend::MRuntimeException&) {
        // The open series comes from a file: start one in memory.
        _beside.emplace(Other{_series.beside(), {}});
        _beside->series.open(pushedImages);
        _beside->series.pushBack(image);
    }
    return _current().last();
}

MImage SeriesSession::read(int number) const { return _current().at(number); }

bool SeriesSession::readAhead(int number, MImage& image)
{
    return _preloader.get(image, static_cast<unsigned long>(number), "");
}

void SeriesSession::catchUp(int number)
{
    if (number > _current().last())
        _current().update();
}

std::string SeriesSession::pathTo(int number) const
{
    try {
        return _current().pathToImage(number);
    } catch (const morvend::MRuntimeException&) {
        return {};
    }
}

FileStamp SeriesSession::stampOf(int number) const
{
    try {
        return FileStamp(_current().pathToImage(number));
    } catch (const morvend::MException&) {
        return {};
    }
}

std::string SeriesSession::rangeText() const
{
    const auto& series = _current();
    if (series.empty())
        return ": the series is empty";
    return " in the series, which goes from " + std::to_string(series.first()) + " to " +
           std::to_string(series.last());
}

int SeriesSession::end(bool forward) const
{
    return forward ? _current().last() : _current().first();
}

void SeriesSession::keep(const LoaderData& record)
{
    _comeBackTo.clear();
    if (_beside) {
        _series.exchange(_beside->series);
        _openedAs.swap(_beside->openedAs);
        _tellPreloader(record.index);
    }
    if (!_headerKnown && !_openedAs.empty()) {
        _preloader.setDefaultOptData(std::as_const(record.image).optionalData());
        _headerKnown = true;
    }
    _asked = _shown = record.index;
    _awaited.clear();
}

void SeriesSession::_tellPreloader(int number)
{
    _headerKnown = false;
    if (_openedAs.empty())
        _preloader.setEnabled(false);  // there is no file to read ahead
    else
        _preloader.put(static_cast<unsigned long>(number), absolute(_openedAs));
}

void SeriesSession::scan()
{
    comeBack();
    _series.update();
}

std::optional<SeriesSession::Bounds> SeriesSession::bounds() const
{
    if (!_comeBackTo.empty())
        return {};
    return _series.empty() ? Bounds{} : Bounds{_series.first(), _series.last()};
}

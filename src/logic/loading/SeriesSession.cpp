// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Replaces one series by another.
#include "logic/loading/SeriesSession.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/series/FolderStart.h"

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
    // Of a folder only the file counts from now on: another one may become the first.
    const std::string file = morvend::imglib::fileToOpen(path);
    _beside.emplace(Other{_series.beside(), file});
    return _beside->series.open(file);
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

MImage SeriesSession::read(int number)
{
    try {
        MImage image = _current().at(number);
        _noteSuccess(number);
        return image;
    } catch (const morvend::imglib::MTerminateException&) {
        throw;  // says nothing of the image
    } catch (const morvend::MOutOfRangeException&) {
        throw;  // there is no such image
    } catch (const morvend::MException& error) {
        _noteFailure(number, error.what());
        throw;
    }
}

bool SeriesSession::readAhead(int number, MImage& image)
{
    if (!_preloader.get(image, static_cast<unsigned long>(number), ""))
        return false;
    _noteSuccess(number);
    return true;
}

void SeriesSession::_noteFailure(int number, const std::string& reason)
{
    if (_beside)
        return;
    auto failed = _failed ? *_failed : SeriesState::Failures();
    if (failed.size() >= SeriesState::MostFailures)
        failed.erase(failed.begin());
    failed[number] = reason;
    _failed = std::make_shared<const SeriesState::Failures>(std::move(failed));
}

void SeriesSession::_noteSuccess(int number)
{
    if (_beside || !_failed || !_failed->contains(number))
        return;
    auto failed = *_failed;
    failed.erase(number);
    _failed = std::make_shared<const SeriesState::Failures>(std::move(failed));
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
        _failed.reset();
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
    return _series.empty() ? Bounds{}
                           : Bounds{_series.first(), _series.last(), _series.gaps(), _failed, {}};
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Steps over gaps.
#include "logic/loading/Steps.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/MImageSeries.h"

#include <algorithm>

#include <unistd.h>

Steps::Failure::Failure(const morvend::MException& error)
    : reason(error.what())
    , crashed(dynamic_cast<const morvend::MReaderGoneException*>(&error))
{}

int Steps::to(int from, int n)
{
    if (_forward != (n > 0))
        _leftOut = {};  // collected in the opposite direction
    _forward = n > 0;
    const long long wanted = static_cast<long long>(from) + n;
    if (wanted > _series.last())
        _lookOnce();
    if (_series.empty())
        return from;
    const auto target =
        static_cast<int>(std::clamp<long long>(wanted, _series.first(), _series.last()));
    if (_forward ? target <= from : target >= from)
        return from;
    const int number = _forward ? _series.next(target - 1) : _series.previous(target + 1);
    if (_forward)
        _leftOut.missing(target, number - 1);
    else
        _leftOut.missing(number + 1, target);
    return number;
}

std::optional<int> Steps::beyond(int number, const Failure& failure)
{
    ++_failures;
    _crashes += failure.crashed ? 1 : 0;
    if (_hasNoFile(number)) {
        _leftOut.missing(number, number);
        _lookOnce();  // if one file has gone, others may have gone too
    } else {
        _leftOut.unreadable(number, failure.reason);
    }
    const int next = _forward ? _series.next(number) : _series.previous(number);
    if (next < 0 || gaveUp())
        return {};
    if (_forward)
        _leftOut.missing(number + 1, next - 1);
    else
        _leftOut.missing(next + 1, number - 1);
    return next;
}

void Steps::_lookOnce()
{
    if (_looked)
        return;
    _looked = true;
    try {
        _series.update();
    } catch (const morvend::imglib::MTerminateException&) {
        throw;
    } catch (const morvend::MException&) {
        // The known state of the series stays.
    }
}

bool Steps::_hasNoFile(int number) const
{
    try {
        const std::string path = _series.pathToImage(number);
        return ::access(path.c_str(), F_OK) != 0;
    } catch (const morvend::MException&) {
        return false;  // an image in memory
    }
}

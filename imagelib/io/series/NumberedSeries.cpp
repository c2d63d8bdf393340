// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Numbered files: which exist, and their images.
#include "imagelib/io/series/NumberedSeries.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <unistd.h>

namespace morvend::imglib {

namespace {

using Member = SeriesFinder::Member;

auto lowerBound(const std::vector<Member>& members, int number)
{
    return std::lower_bound(members.begin(), members.end(), number,
                            [](const Member& left, int right) { return left.number < right; });
}

/// Nobody could tell more of them apart on a screen.
constexpr std::size_t MostGaps = 10'000;

bool padded(const Member& member)
{
    return static_cast<int>(std::to_string(member.number).size()) < member.digits;
}

}  // namespace

NumberedSeries::NumberedSeries(SeriesFinder finder, std::unique_ptr<ImageFile> opened,
                               ImagePathOpener open)
    : _finder(std::move(finder))
    , _open(std::move(open))
    , _format(opened->format())
    , _opened(std::move(opened))
{
    relist();
    // A folder that lets files be opened but not be listed shows the opened one at least.
    const Member mine = _finder.opened();
    const auto place = lowerBound(_members, mine.number);
    if (place == _members.end() || place->number != mine.number)
        _members.insert(place, mine);
    findGaps();
}

void NumberedSeries::relist()
{
    std::vector<Member> members = _finder.list();
    if (members.empty())
        return;
    _members = std::move(members);
    const auto example = padded(_finder.opened())
                             ? _members.end()
                             : std::find_if(_members.begin(), _members.end(), padded);
    _padding = example == _members.end() ? _finder.opened().digits : example->digits;
    findGaps();
}

void NumberedSeries::findGaps()
{
    std::vector<NumberRange> gaps;
    for (std::size_t i = 1; i < _members.size() && gaps.size() < MostGaps; ++i) {
        const int before = _members[i - 1].number;
        if (_members[i].number - before > 1)
            gaps.push_back({before + 1, _members[i].number - 1});
    }
    _gaps =
        gaps.empty() ? nullptr : std::make_shared<const std::vector<NumberRange>>(std::move(gaps));
}

Member NumberedSeries::member(int number) const
{
    const auto place = lowerBound(_members, number);
    if (place != _members.end() && place->number == number)
        return *place;
    return {number, _padding};
}

int NumberedSeries::next(int number) const
{
    if (number >= last())
        return -1;
    return lowerBound(_members, number + 1)->number;
}

int NumberedSeries::previous(int number) const
{
    if (number <= first())
        return -1;
    return std::prev(lowerBound(_members, number))->number;
}

MImage NumberedSeries::at(int number) const
{
    // The opened file serves once, right after the opening: later the file may have changed.
    std::unique_ptr<ImageFile> file = std::exchange(_opened, nullptr);
    const std::string path = pathToImage(number);
    if (number != _finder.number() || !file) {
        if ((number < first() || number > last()) && ::access(path.c_str(), F_OK) != 0)
            outOfRange(number, path);
        file = _open(path);
    }
    MImage image = file->frame(file->openedFrame());
    describe(image, fileName(path));
    return image;
}

std::string NumberedSeries::pathToImage(int number) const
{
    if (number < 0)
        outOfRange(number, {});
    return _finder.path(member(number));
}

void NumberedSeries::update()
{
    _opened.reset();
    relist();
}

}  // namespace morvend::imglib

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/ContrastChooser.h"

#include "logic/analysis/statistics/PartRange.h"

#include <QScopedValueRollback>

#include <utility>

ContrastChooser::ContrastChooser(ShownImage& shown, Records& records)
    : _shown(shown)
    , _records(records)
    , _job([this](const Answer& answer) { _arrived(answer); })
{
    QObject::connect(&records, &Records::newContrastSignal, &records,
                     [this](const ContrastData& contrast) { _contrastChanged(contrast); });
}

void ContrastChooser::_contrastChanged(const ContrastData& contrast)
{
    const ContrastLevels now{contrast.background, contrast.foreground};
    if (std::exchange(_known, now) != now && !_applying)
        ++_version;
}

std::optional<ContrastLevels> ContrastChooser::_levelsOfAll() const
{
    const IntegratedHistogram& histogram = _shown.statistics->histogram;
    const auto levels = contrastLevels(histogram, choice.range);
    constexpr double Fineness = 1000;
    const bool coarse =
        levels && levels->foreground - levels->background < histogram.coarseness() * Fineness;
    return coarse ? std::nullopt : levels;
}

void ContrastChooser::chooseForAll()
{
    if (!_shown.loaded())
        return;
    _job.cancel();
    if (const auto levels = _levelsOfAll())
        _records.setContrast(_records.withLevels(*levels));
    else
        _count({0, 0, _shown.image.width(), _shown.image.height()});
}

void ContrastChooser::chooseFor(const QRect& part)
{
    if (_shown.loaded())
        _count(part);
}

void ContrastChooser::followNewImage()
{
    if (!choice.follows || choice.partInView)
        return;
    if (const auto levels = _levelsOfAll())
        _records.adoptContrast(_records.withLevels(*levels));
    else
        chooseForAll();
}

void ContrastChooser::_count(const QRect& part)
{
    _known = {_records.contrast().background, _records.contrast().foreground};
    _job.ask([image = _shown.whole(), mask = _shown.mask, part, range = choice.range,
              group = _records.syncId(), version = _version] {
        const morvend::imglib::MRect place(part.x(), part.y(), part.width(), part.height());
        return Answer{contrastLevelsOfPart(image, mask, place, range), group, version};
    });
}

void ContrastChooser::_arrived(const Answer& answer)
{
    // Images may come faster than they are counted: the levels of the one before will do.
    if (!answer.levels || answer.version != _version || answer.group != _records.syncId())
        return;
    const QScopedValueRollback applying(_applying, true);
    _records.setContrast(_records.withLevels(*answer.levels));
}

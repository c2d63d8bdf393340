// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/detector/SeriesLine.h"

#include <QGridLayout>
#include <QLabel>

#include <algorithm>

namespace {

struct Column {
    const char* name;
    const char* meaning;
    int width;  // relative
};

// By SeriesLine::Count.
constexpr std::array<Column, SeriesLine::Counts> Columns{{
    {"received", "Frames that have arrived", 9},
    {"written", "Frames in the file", 8},
    {"lost", "Frames that the detector took, but that never arrived", 5},
    {"shown", "Frames that were shown; the others are only written", 7},
    {"waiting", "Frames that have arrived since the one that is shown", 8},
    {"per s", "Frames that arrive in a second", 6},
    {"disk left", "Time until the disk is full at this rate", 9},
}};

QString duration(double seconds)
{
    struct Unit {
        double seconds;
        const char* name;
    };
    constexpr std::array<Unit, 4> units{
        {{86400, "%1 d"}, {3600, "%1 h"}, {60, "%1 min"}, {1, "%1 s"}}};
    constexpr double mostDays = 999;
    // Two digits at least, but for the seconds.
    const auto* unit = std::find_if(units.begin(), units.end() - 1,
                                    [&](const Unit& each) { return seconds >= 2 * each.seconds; });
    const double shown = std::min(seconds, mostDays * units[0].seconds) / unit->seconds;
    return QString::fromLatin1(unit->name).arg(shown, 0, 'f', 0);
}

QString rateText(double rate)
{
    return rate < 100 ? QString::number(rate, 'g', 3) : QString::number(rate, 'f', 0);
}

/// Without what the display has left out for good.
std::int64_t waiting(const SeriesProgress& progress)
{
    return std::max<std::int64_t>(progress.received - progress.shown - progress.leftOut, 0);
}

}  // namespace

SeriesLine::SeriesLine(QWidget* parent)
    : QWidget(parent)
{
    setStyleSheet(QStringLiteral("QLabel {font-size: 9pt;}"
                                 "QLabel[name=\"true\"] {color: rgb(165,165,165);}"
                                 "QLabel[alarming=\"true\"] {color: rgb(255,150,80);}"));
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(0);
    for (std::size_t i = 0; i < Counts; ++i) {
        const int column = static_cast<int>(i);
        const Column& about = Columns[i];
        auto* name = new QLabel(QString::fromLatin1(about.name));
        name->setProperty("name", true);
        _values[i] = new QLabel;
        _values[i]->setObjectName(QString::fromLatin1(about.name));
        for (QLabel* label : {name, _values[i]}) {
            label->setToolTip(QString::fromLatin1(about.meaning));
            // The width of a number moves nothing.
            label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        }
        grid->addWidget(name, 0, column);
        grid->addWidget(_values[i], 1, column);
        grid->setColumnStretch(column, about.width);
    }
    hide();
}

void SeriesLine::setProgress(const SeriesProgress& progress)
{
    const std::array<QString, Counts> all = texts(progress);
    for (std::size_t i = 0; i < Counts; ++i) {
        QLabel* const value = _values[i];
        value->setText(all[i]);
        const bool alarm = alarming(progress, static_cast<Count>(i));
        if (value->property("alarming").toBool() == alarm)
            continue;
        value->setProperty("alarming", alarm);
        value->setStyleSheet(value->styleSheet());  // looks at the property again
    }
    show();
}

void SeriesLine::clear() { hide(); }

std::array<QString, SeriesLine::Counts> SeriesLine::texts(const SeriesProgress& progress)
{
    return {QString::number(progress.received),
            QString::number(progress.written),
            QString::number(progress.lost),
            QString::number(progress.shown),
            QString::number(waiting(progress)),
            rateText(progress.rate),
            progress.diskSeconds ? duration(*progress.diskSeconds) : QStringLiteral("\u2013")};
}

bool SeriesLine::alarming(const SeriesProgress& progress, Count count)
{
    if (count == Lost)
        return progress.lost > 0;
    if (count != Disk || !progress.diskSeconds)
        return false;
    const auto left = static_cast<double>(progress.expected - progress.written);
    return *progress.diskSeconds * progress.rate < left;
}

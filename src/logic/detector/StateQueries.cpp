// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/StateQueries.h"

#include "imagelib/control/MHalvoDetector.h"
#include "logic/support/Console.h"

#include <tuple>
#include <utility>

namespace {

/// A text of the unit, without characters that would move a cursor.
QString shown(const std::string& text)
{
    QString result = QString::fromStdString(text);
    for (QChar& each : result)
        if (each.category() == QChar::Other_Control)
            each = QLatin1Char('?');
    return result;
}

void report(const std::string& what, const QString& value)
{
    console::print("Successfully read " + what + ' ' + value.toStdString() + '\n');
}

template <class T>
HalvoState::Limited<T> limited(const std::tuple<T, T, T>& range)
{
    return {std::get<0>(range), std::get<1>(range), std::get<2>(range)};
}

}  // namespace

void StateQueries::_readState(HalvoState& known)
{
    using Status = HalvoState::Status;
    const QString description = shown(_detector.description(_flags.cancel));
    report("description string", description);
    const QString number = shown(_detector.detectorNumber(_flags.cancel));
    report("detector number", number);
    const std::string status = _detector.status(_flags.cancel);
    report("detector state", shown(status));
    const bool error = _detector.isError(_flags.cancel);
    report("detector error state", QString::number(int(error)));
    known.detectorDescription = description;
    known.detectorNumber = number;
    if (error)
        known.state = status == "error" ? Status::Error : Status::NotAvailable;
    else
        known.state = status == "initialize" ? Status::Initializing : Status::Ready;
}

HalvoState StateQueries::state(HalvoState known, const std::function<void(const QString&)>& error)
{
    try {
        Retry(_flags).run([&] { _readState(known); });
    } catch (const std::exception& failure) {
        if (_flags.abort)
            return known;
        console::warn(failure.what() + std::string("\n"));
        known.state = HalvoState::Status::NotAvailable;
        error(QStringLiteral("Detector not connected"));
    }
    return known;
}

HalvoState StateQueries::all(HalvoState known)
{
    known = pixelMaskApplied(std::move(known));
    known = flatfieldCorrectionApplied(std::move(known));
    known = triggerMode(std::move(known));
    known = thresholdEnergy(std::move(known));
    known = photonEnergy(std::move(known));
    known = countTime(std::move(known));
    known = frameTime(std::move(known));
    return nImages(std::move(known));
}

HalvoState StateQueries::nImages(HalvoState known)
{
    Retry(_flags).run([&] { known.nImages = limited(_detector.nImages(_flags.cancel)); });
    return known;
}

HalvoState StateQueries::frameTime(HalvoState known)
{
    Retry(_flags).run([&] { known.frameTime = limited(_detector.frameTime(_flags.cancel)); });
    return known;
}

HalvoState StateQueries::countTime(HalvoState known)
{
    Retry(_flags).run([&] { known.countTime = limited(_detector.countTime(_flags.cancel)); });
    return known;
}

HalvoState StateQueries::photonEnergy(HalvoState known)
{
    Retry(_flags).run([&] { known.photonEnergy = limited(_detector.photonEnergy(_flags.cancel)); });
    return known;
}

HalvoState StateQueries::thresholdEnergy(HalvoState known)
{
    Retry(_flags).run(
        [&] { known.thresholdEnergy = limited(_detector.thresholdEnergy(_flags.cancel)); });
    return known;
}

HalvoState StateQueries::triggerMode(HalvoState known)
{
    Retry(_flags).run([&] {
        const auto [value, allowed] = _detector.triggerMode(_flags.cancel);
        HalvoState::Choice choice{shown(value), {}};
        for (const std::string& each : allowed)
            choice.allowed.insert(shown(each));
        known.triggerMode = choice;
    });
    return known;
}

HalvoState StateQueries::flatfieldCorrectionApplied(HalvoState known)
{
    Retry(_flags).run([&] {
        known.flatfieldCorrectionApplied = _detector.flatfieldCorrectionApplied(_flags.cancel);
    });
    return known;
}

HalvoState StateQueries::pixelMaskApplied(HalvoState known)
{
    Retry(_flags).run([&] { known.pixelMaskApplied = _detector.pixelMaskApplied(_flags.cancel); });
    return known;
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One table for CBF, TIFF and EDF.
#include "imagelib/io/formats/base/HeaderKeys.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace morvend::imglib {

namespace {

constexpr Unit Lengths[] = {{"m", 1},
                            {"cm", 1e-2},
                            {"mm", 1e-3},
                            {"um", 1e-6},
                            {"\xc2\xb5m", 1e-6},
                            {"\xce\xbcm", 1e-6},
                            {"\xb5m", 1e-6},
                            {"micron", 1e-6},
                            {"microns", 1e-6},
                            {"micrometer", 1e-6},
                            {"micrometre", 1e-6},
                            {"micrometers", 1e-6},
                            {"micrometres", 1e-6},
                            {"nm", 1e-9},
                            {"meter", 1},
                            {"metre", 1},
                            {"meters", 1},
                            {"metres", 1},
                            {"millimeter", 1e-3},
                            {"millimetre", 1e-3},
                            {"millimeters", 1e-3},
                            {"millimetres", 1e-3}};
constexpr Unit Times[] = {{"s", 1},
                          {"sec", 1},
                          {"secs", 1},
                          {"second", 1},
                          {"seconds", 1},
                          {"ms", 1e-3},
                          {"msec", 1e-3},
                          {"millisecond", 1e-3},
                          {"milliseconds", 1e-3},
                          {"us", 1e-6},
                          {"\xc2\xb5s", 1e-6},
                          {"usec", 1e-6},
                          {"ns", 1e-9},
                          {"min", 60},
                          {"h", 3600}};
constexpr Unit Waves[] = {{"A", 1},        {"Angstrom", 1},     {"Angstroms", 1}, {"Ang", 1},
                          {"\xc3\x85", 1}, {"\xe2\x84\xab", 1}, {"\xc5", 1},      {"nm", 10},
                          {"pm", 0.01},    {"m", 1e10}};
constexpr Unit Angles[] = {{"deg", 1},
                           {"degs", 1},
                           {"degree", 1},
                           {"degrees", 1},
                           {"\xc2\xb0", 1},
                           {"\xb0", 1},
                           {"rad", 57.29577951308232},
                           {"mrad", 0.05729577951308232}};
constexpr Unit Counts[] = {{"counts", 1}, {"count", 1}, {"cts", 1},    {"ct", 1},
                           {"ADU", 1},    {"ADUs", 1},  {"photons", 1}};
constexpr Unit Rates[] = {{"ph/s", 1},     {"ph/sec", 1}, {"photons/s", 1}, {"photons/sec", 1},
                          {"photon/s", 1}, {"1/s", 1},    {"/s", 1},        {"s-1", 1},
                          {"s^-1", 1},     {"Hz", 1},     {"counts/s", 1},  {"cts/s", 1},
                          {"cps", 1}};
constexpr Unit Percent[] = {{"%", 0.01}, {"percent", 0.01}};
constexpr Unit Pixels[] = {{"pixels", 1}, {"pixel", 1}, {"px", 1}, {"pix", 1}};

constexpr double Any = std::numeric_limits<double>::infinity();
constexpr bool Own = true;

using enum HeaderItem;

constexpr HeaderKey key(std::string_view name, HeaderItem item, Units units, double below = 0,
                        bool own = false, HeaderKey::Shape shape = HeaderKey::Number,
                        double least = 0)
{
    return {name, item, shape, units, least, below, own};
}
constexpr HeaderKey text(std::string_view name, HeaderItem item, bool own = false,
                         HeaderKey::Shape shape = HeaderKey::Text)
{
    return {name, item, shape, {}, 0, 0, own};
}

// Where programs differ, only the magnitude can give a bare number its unit: nobody
// measures a camera length of 100 m or a pixel of 1 cm.
constexpr double Far = 100;
constexpr double Wide = 0.01;

constexpr HeaderKey Keys[] = {
    text("detector", Detector, Own, HeaderKey::Description),
    text("detectorname", Detector, false, HeaderKey::Description),
    text("detectormodel", Detector, false, HeaderKey::Description),
    text("detectortype", Detector, false, HeaderKey::Description),
    text("cameramodel", Detector, false, HeaderKey::Description),
    text("cameraname", Detector, false, HeaderKey::Description),
    text("detectornumber", DetectorNumber),
    text("detectorserialnumber", DetectorNumber),
    text("detectorserial", DetectorNumber),
    text("detectorsn", DetectorNumber),
    text("cameraserialnumber", DetectorNumber),
    text("serialnumber", DetectorNumber),
    text("serialno", DetectorNumber),

    text("date", Date, Own),
    text("datetime", Date),
    text("datatime", Date),
    text("datescanbegin", Date),
    text("dateofexposure", Date),
    text("exposuredate", Date),
    text("acquisitiondate", Date),
    text("acquisitiontimestamp", Date),
    text("datacollectiondate", Date),
    text("hmstarttime", Date),
    text("starttime", Date),
    text("timestamp", Date),
    text("time", Date),
    text("timeofday", Date),

    key("pixelsize", PixelSizeX, Lengths, Wide, Own, HeaderKey::Pair),
    key("psize1", PixelSizeX, Lengths, Wide),
    key("psize2", PixelSizeY, Lengths, Wide),
    key("xpixelsize", PixelSizeX, Lengths, Wide),
    key("ypixelsize", PixelSizeY, Lengths, Wide),
    key("pixelxsize", PixelSizeX, Lengths, Wide),
    key("pixelysize", PixelSizeY, Lengths, Wide),
    key("pixelsizex", PixelSizeX, Lengths, Wide),
    key("pixelsizey", PixelSizeY, Lengths, Wide),
    key("detectorpixelsize", PixelSizeX, Lengths, Wide, false, HeaderKey::Pair),

    key("sensorthickness", SensorThickness, Lengths, Wide, Own),

    key("exposuretime", ExposureTime, Times, Any, Own),
    key("counttime", ExposureTime, Times, Any),
    key("acqexpotime", ExposureTime, Times, Any),
    key("acquisitiontime", ExposureTime, Times),
    key("acquiretime", ExposureTime, Times, Any),
    key("integrationtime", ExposureTime, Times),
    key("countingtime", ExposureTime, Times),
    key("expotime", ExposureTime, Times),
    key("exptime", ExposureTime, Times),
    key("exposure", ExposureTime, Times),

    key("exposureperiod", ExposurePeriod, Times, Any, Own),
    key("acquireperiod", ExposurePeriod, Times, Any),
    key("frametime", ExposurePeriod, Times),
    key("frameperiod", ExposurePeriod, Times),

    key("countcutoff", CountCutoff, Counts, Any, Own),
    key("saturationvalue", CountCutoff, Counts, Any),
    key("saturationlevel", CountCutoff, Counts, Any),
    key("ccdimagesaturation", CountCutoff, Counts, Any),

    key("thresholdsetting", Threshold, EnergyUnits, Any, Own),
    key("thresholdenergy", Threshold, EnergyUnits, Any, false, HeaderKey::Number, 1000),
    key("energythreshold", Threshold, EnergyUnits, Any, false, HeaderKey::Number, 1000),
    key("threshold", Threshold, EnergyUnits),

    key("wavelength", Wavelength, Waves, Any, Own),
    key("xraywavelength", Wavelength, Waves, Any),
    key("beamwavelength", Wavelength, Waves, Any),
    key("incidentwavelength", Wavelength, Waves, Any),
    key("energy", Wavelength, EnergyUnits, Any, Own, HeaderKey::Energy, 1000),
    key("photonenergy", Wavelength, EnergyUnits, Any, false, HeaderKey::Energy, 1000),
    key("xrayenergy", Wavelength, EnergyUnits, Any, false, HeaderKey::Energy, 1000),
    key("beamenergy", Wavelength, EnergyUnits, Any, false, HeaderKey::Energy, 1000),
    key("incidentenergy", Wavelength, EnergyUnits, Any, false, HeaderKey::Energy, 1000),

    key("detectordistance", Distance, Lengths, Far, Own),
    key("sampledistance", Distance, Lengths, Far),
    key("distancesampledetector", Distance, Lengths),
    key("sampledetectordistance", Distance, Lengths),
    key("sampletodetectordistance", Distance, Lengths),
    key("distancesampletodetector", Distance, Lengths),
    key("detectorsampledistance", Distance, Lengths),
    key("distancedetectorsample", Distance, Lengths),
    key("cameralength", Distance, Lengths),
    key("cameradistance", Distance, Lengths),
    key("distance", Distance, Lengths),

    key("beamxy", BeamX, Pixels, Any, Own, HeaderKey::Pair),
    key("center1", BeamX, Pixels, Any),
    key("center2", BeamY, Pixels, Any),
    key("beamcenter", BeamX, Pixels, 0, false, HeaderKey::Pair),
    key("beamcentre", BeamX, Pixels, 0, false, HeaderKey::Pair),
    key("beamposition", BeamX, Pixels, 0, false, HeaderKey::Pair),
    key("directbeam", BeamX, Pixels, 0, false, HeaderKey::Pair),
    key("beamcenterx", BeamX, Pixels),
    key("beamcentery", BeamY, Pixels),
    key("beamcentrex", BeamX, Pixels),
    key("beamcentrey", BeamY, Pixels),
    key("xbeamcenter", BeamX, Pixels),
    key("ybeamcenter", BeamY, Pixels),
    key("xbeamcentre", BeamX, Pixels),
    key("ybeamcentre", BeamY, Pixels),
    key("beamx", BeamX, Pixels),
    key("beamy", BeamY, Pixels),

    key("flux", Flux, Rates, Any, Own),
    key("beamflux", Flux, Rates, Any),
    key("photonflux", Flux, Rates, Any),

    key("filtertransmission", Transmission, Percent, Any, Own),
    key("transmission", Transmission, Percent, Any, Own),
    key("attenuatortransmission", Transmission, Percent, Any),
    key("beamtransmission", Transmission, Percent, Any),

    key("startangle", StartAngle, Angles, Any, Own),
    key("oscstart", StartAngle, Angles, Any),
    key("rotationangle", StartAngle, Angles, Any),
    key("angleincrement", AngleIncrement, Angles, Any, Own),
    key("oscrange", AngleIncrement, Angles, Any),
    key("oscillationrange", AngleIncrement, Angles, Any),
    key("rotationanglestep", AngleIncrement, Angles, Any),
};

/// True if a ':' or '=' is between two words of a line.
bool endsKey(std::string_view word, std::string_view next)
{
    const char* const end = word.data() + word.size();
    return std::any_of(end, next.data(), [](char c) { return c == ':' || c == '='; });
}

const HeaderKey* find(std::string_view name)
{
    const auto found = std::ranges::find(Keys, name, &HeaderKey::name);
    return found == std::end(Keys) ? nullptr : found;
}

}  // namespace

const Units Metres = Lengths;
const Units PixelCounts = Pixels;

bool HeaderKey::takesBare(double value) const
{
    const double size = std::abs(value);
    return size < below && size >= least;
}

std::span<const HeaderKey> headerKeys() { return Keys; }

KeyMatch matchKey(const Words& words)
{
    constexpr std::size_t LongestName = 32;
    KeyMatch match;
    std::string name;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0 && endsKey(words[i - 1], words[i]))
            break;
        for (const char c : words[i])
            if (isLetter(c) || isDigit(c))
                name += isLetter(c) ? static_cast<char>(c | 0x20) : c;
        if (name.size() > LongestName)
            break;
        if (const HeaderKey* key = find(name))
            match = {key, i + 1};
    }
    return match;
}

}  // namespace morvend::imglib

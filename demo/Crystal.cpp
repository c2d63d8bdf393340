// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Rotation geometry: a reciprocal lattice point r diffracts when the rotated r ends on the Ewald
// sphere, |s0 + r| = |s0|, and the beam goes on along s0 + r.
#include "demo/Crystal.h"

#include "demo/Random.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarvik::demo {

namespace {

using Vector = std::array<double, 3>;

constexpr Vector Cell = {58.0, 71.0, 97.0};  // Angstrom
constexpr double MosaicWidth = 1.4;          // frames from the first photon to the last

/// Sine and cosine of a small or moderate angle by their series, the same on every machine.
std::array<double, 2> sineAndCosine(double degrees)
{
    const double x = degrees * (3.14159265358979323846 / 180);
    double term = 1, cosine = 0, sine = 0;
    for (int n = 0; n < 60; n += 2) {
        cosine += term;
        term *= x / (n + 1);
        sine += term;
        term *= -x / (n + 2);
    }
    return {sine, cosine};
}

/// The reciprocal axes a*, b*, c* in the laboratory at angle 0, from a random unit quaternion.
std::array<Vector, 3> orientedAxes(std::uint64_t seed)
{
    constexpr std::uint64_t Stream = 0xc2957a1;
    Random random(seed, Stream);
    double q[4], norm = 0;
    for (double& part : q) {
        part = random.normal();
        norm += part * part;
    }
    norm = std::sqrt(norm);
    const double w = q[0] / norm, x = q[1] / norm, y = q[2] / norm, z = q[3] / norm;
    std::array<Vector, 3> axes = {
        Vector{1 - 2 * (y * y + z * z), 2 * (x * y + w * z), 2 * (x * z - w * y)},
        Vector{2 * (x * y - w * z), 1 - 2 * (x * x + z * z), 2 * (y * z + w * x)},
        Vector{2 * (x * z + w * y), 2 * (y * z - w * x), 1 - 2 * (x * x + y * y)}};
    for (std::size_t i = 0; i < 3; ++i)
        for (double& part : axes[i])
            part /= Cell[i];
    return axes;
}

/// Follows one lattice point through the series.
class Tracer {
public:
    Tracer(const Detector& detector, int frames, std::vector<Reflection>& found)
        : _detector(detector)
        , _found(found)
    {
        for (int edge = -1; edge <= frames + 1; ++edge)
            _turns.push_back(sineAndCosine(StartAngle + edge * AngleStep));
    }

    void follow(const Vector& r, double intensity)
    {
        const double lengthSquared = r[0] * r[0] + r[1] * r[1] + r[2] * r[2];
        // |s0 + r|^2 - |s0|^2 changes its sign where the point passes through the sphere.
        const auto excess = [&](std::size_t edge) {
            return 2 / Wavelength * turned(r, _turns[edge])[2] + lengthSquared;
        };
        double before = excess(0);
        for (std::size_t edge = 1; edge < _turns.size(); ++edge) {
            const double after = excess(edge);
            if ((before < 0) != (after < 0)) {
                const double part = before / (before - after);
                std::array<double, 2> turn{};
                for (std::size_t i = 0; i < 2; ++i)
                    turn[i] = _turns[edge - 1][i] + part * (_turns[edge][i] - _turns[edge - 1][i]);
                add(turned(r, turn), static_cast<double>(edge) - 2 + part, intensity);
            }
            before = after;
        }
    }

private:
    static Vector turned(const Vector& r, const std::array<double, 2>& turn)
    {
        return {r[0], r[1] * turn[1] - r[2] * turn[0], r[1] * turn[0] + r[2] * turn[1]};
    }

    void add(const Vector& r, double frame, double intensity)
    {
        const double forward = 1 / Wavelength + r[2];
        if (forward <= 0)
            return;
        const double scale = _detector.distance / forward / _detector.pixelSize;
        const double x = _detector.beamX() + scale * r[0], y = _detector.beamY() + scale * r[1];
        if (x >= 0 && y >= 0 && x < _detector.width() && y < _detector.height())
            _found.push_back({x, y, frame, intensity});
    }

    const Detector& _detector;
    std::vector<Reflection>& _found;
    std::vector<std::array<double, 2>> _turns;  // at the borders of the frames
};

std::uint64_t key(int h, int k, int l)
{
    const auto part = [](int index) { return static_cast<std::uint64_t>(index + 0x8000); };
    return part(h) << 32 | part(k) << 16 | part(l);
}

/// 1/d squared at the farthest corner of the detector.
double farthestSquared(const Detector& detector)
{
    const double x = detector.beamX() * detector.pixelSize;
    const double y = (detector.height() - detector.beamY()) * detector.pixelSize;
    const double cosine =
        detector.distance / std::sqrt(x * x + y * y + detector.distance * detector.distance);
    return 2 * (1 - cosine) / (Wavelength * Wavelength);
}

}  // namespace

std::vector<Reflection> reflections(const Detector& detector, int frames, std::uint64_t seed)
{
    constexpr std::uint64_t Stream = 0x57a73;
    const auto axes = orientedAxes(seed);
    const double most = farthestSquared(detector);
    int limit[3];
    for (std::size_t i = 0; i < 3; ++i)
        limit[i] = static_cast<int>(Cell[i] * std::sqrt(most)) + 1;
    std::vector<Reflection> found;
    Tracer tracer(detector, frames, found);
    for (int h = -limit[0]; h <= limit[0]; ++h)
        for (int k = -limit[1]; k <= limit[1]; ++k)
            for (int l = -limit[2]; l <= limit[2]; ++l) {
                Vector r{};
                for (std::size_t i = 0; i < 3; ++i)
                    r[i] = h * axes[0][i] + k * axes[1][i] + l * axes[2][i];
                const double squared = r[0] * r[0] + r[1] * r[1] + r[2] * r[2];
                if (squared > most || squared == 0)
                    continue;
                // By index, so that a crystal is the same on all detectors.
                const double strength = 1 / (0.003 + Random(seed, Stream, key(h, k, l)).uniform());
                const double fade = 1 / (1 + 20 * squared);
                tracer.follow(r, 12000 * strength * fade * fade);
            }
    return found;
}

double partIn(int frame, double reflectionFrame)
{
    const auto passed = [&](double border) {
        const double t = std::clamp((border - reflectionFrame) / MosaicWidth + 0.5, 0.0, 1.0);
        return t * t * (3 - 2 * t);
    };
    return passed(frame + 1) - passed(frame);
}

}  // namespace tarvik::demo

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The results for a region of interest.
#pragma once

#include <string>
#include <vector>

/// Numbers and curves of one region of interest, filled by RoiComputer. Fields that a kind of
/// region doesn't have stay 0 or empty. A value.
struct RoiStatistics {
    /// Sum, mean and standard deviation of the good pixels, each weighted by the part of it that
    /// belongs to the region.
    double integral = 0;
    double mean = 0;
    double sigma = 0;
    /// Line, circle: length of the line or of the section, in pixels.
    double length = 0;
    /// Box, circles: area in pixels.
    double area = 0;
    /// Circle: ring around it, and the intensity of the spot above that background.
    double backgroundMean = 0;
    double backgroundSigma = 0;
    double intensity = 0;
    double intensitySigma = 0;
    double centroidX = 0;
    double centroidY = 0;
    double minimum = 0;
    double maximum = 0;
    /// Points of three numbers: abscissa, value, and the mask there (not 0: a bad stretch).
    std::vector<std::vector<double>> curve;
    /// Titles of the x and y axis.
    std::vector<std::string> curveLabels = std::vector<std::string>(2);
    std::vector<std::vector<double>> secondCurve;
    std::vector<std::string> secondCurveLabels = std::vector<std::string>(2);
    /// Line: the positions of the reflections along it, their pixels (all but the last), and the
    /// distance of each from the next as a text.
    std::vector<double> reflectionPositions;
    std::vector<std::vector<int>> reflectionPixels;
    std::vector<std::string> lineSpotsString;
    /// Good pixels, each counted by the part of it that belongs to the region; 0 where the mask
    /// leaves nothing to sum.
    double weight = 0;
};

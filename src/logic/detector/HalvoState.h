// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What is known of a detector.
#pragma once

#include <QMetaType>
#include <QString>

#include <optional>
#include <set>

/// Each field is empty until the detector has answered. A value; copies go from thread to thread.
struct HalvoState {
    /// A number, with the least and the largest one that the detector accepts now.
    template <class T>
    struct Limited {
        T value, min, max;
        friend bool operator==(const Limited&, const Limited&) = default;
    };
    /// A text, with those that the detector accepts now.
    struct Choice {
        QString value;
        std::set<QString> allowed;
        friend bool operator==(const Choice&, const Choice&) = default;
    };
    enum class Status {
        NotAvailable = 0,  ///< no answer, or an error flag without the status "error"
        Initializing = 1,
        Ready = 2,
        Acquiring = 3,  ///< a series that was started here
        Error = 4
    };

    std::optional<Status> state;
    std::optional<QString> detectorDescription, detectorNumber;
    std::optional<Limited<double>> frameTime;        ///< seconds between frames
    std::optional<Limited<double>> countTime;        ///< seconds of exposure
    std::optional<Limited<double>> photonEnergy;     ///< eV
    std::optional<Limited<double>> thresholdEnergy;  ///< eV
    std::optional<Choice> triggerMode;               ///< "ints", ...
    std::optional<Limited<int>> nImages;             ///< of the next series
    std::optional<bool> flatfieldCorrectionApplied, pixelMaskApplied;

    /// Copies each field that is not empty into `target`; the others of `target` stay.
    void override(HalvoState& target) const;
    /// For users: "Not Available", "Initializing", "Ready", "Acquiring", "Error".
    static QString label(Status status);
};

Q_DECLARE_METATYPE(HalvoState)

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Names of the files of a series.
#pragma once

#include <QString>

/// The master file itself if neither it nor a data file of it exists; else with the next number for
/// which that holds: "x_master.h5" leads to "x_001_master.h5", "x_007_master.h5" to
/// "x_008_master.h5". Thread: any; reads the folder.
/// @throws MNoFileAccessException when all numbers up to 99999 are taken
QString freeSeriesFile(const QString& master);

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the build knows about the program.
#pragma once

#include <QString>

QString programVersion();
/// Of the last commit, or as SOURCE_DATE_EPOCH says, as day-month-year: two builds of one source
/// give the same program.
QString buildDate();

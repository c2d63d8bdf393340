// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Setting up a batch over the files of a series.
#pragma once

#include "logic/headerfiles/WriteHeaderToFilesThread.h"
#include "logic/service/HeaderEdits.h"

#include <memory>
#include <string>

/// A batch, not started yet, that writes header values into the files of the numbered series that a
/// file belongs to.
/// @throws MUnknownFormatException when the file has no ending
std::unique_ptr<WriteHeaderToFilesThread> headerFilesBatch(const std::string& path,
                                                           const HeaderEdits::Header& header);

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Undoes the last batch in the background.
#pragma once

#include "logic/headerfiles/HeaderFilesThread.h"

/// Puts the header lines back that the last batch replaced. Start it, and follow progress().
class UndoHeadersThread : public HeaderFilesThread {
    Q_OBJECT
public:
    ~UndoHeadersThread() override;

protected:
    void run() override;
};

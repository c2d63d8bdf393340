// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/UndoHeadersThread.h"

#include "logic/headerfiles/HeaderUndo.h"

UndoHeadersThread::~UndoHeadersThread()
{
    abort();
    wait();
}

void UndoHeadersThread::run()
{
    HeaderReport report;
    try {
        HeaderUndo undo(mode(), journalFolder());
        const int total = static_cast<int>(undo.count());
        emit progress(0, total);
        for (int i = 0; i < total && !aborted(); ++i) {
            try {
                undo.putBack(static_cast<std::size_t>(i));
            } catch (const std::exception& error) {
                print(error);
            }
            emit progress(i + 1, total);
        }
        report = undo.report();
    } catch (const std::exception& error) {
        print(error);
        report.failed(error.what());
    }
    setReport(report);
}

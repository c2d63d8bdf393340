// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A table of peaks whose lines can be highlighted.
#pragma once

#include <QList>
#include <QTextEdit>

#include <set>

/// A text with a header, an empty line and a line for each peak. Lines are highlighted by clicks
/// and drags, with Control in addition to others, and copied with the header. Thread: GUI only.
class PeakTable : public QTextEdit {
    Q_OBJECT
public:
    explicit PeakTable(QWidget* parent = nullptr);

    /// Leaves the header alone. The highlight goes with the lines.
    void clear();
    /// Adds a peak below the others.
    void insertLine(int x, int y, double intensity);
    /// Highlights these peaks, counted from 0, and no others; those without a line are remembered.
    void highlightLines(const std::set<int>& peaks);

signals:
    /// The user has chosen the peaks that are highlighted.
    void highlightSignal(std::set<int> peaks);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private slots:
    void _copyToClipboard();

private:
    void _writeHeader(const QString& header);
    void _forgetHighlight();
    /// Shows a selection as highlighted.
    void _addSelection(const QTextCursor& cursor);

    QList<ExtraSelection> _selections;
    int anchorBlock = -1;  // line of the last press
    int currentBlock = -1;
    std::set<int> highlighted;
};

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/PeakTable.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QTextBlock>

#include <algorithm>

namespace {

/// Lines before the first peak.
constexpr int HeaderLines = 2;

const QColor Highlight(20, 100, 220);

}  // namespace

PeakTable::PeakTable(QWidget* parent)
    : QTextEdit(parent)
{
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setLineWrapMode(NoWrap);
    _writeHeader(QStringLiteral("X\tY\tIntensity\n"));
}

void PeakTable::_writeHeader(const QString& header)
{
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    QTextCursor(document()).insertText(header, bold);
}

void PeakTable::clear()
{
    QTextEdit::clear();
    _forgetHighlight();
    setExtraSelections(_selections);
    _writeHeader(QStringLiteral("X\tY\tIntensity\t\n"));
}

void PeakTable::insertLine(int x, int y, double intensity)
{
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    end.insertBlock({}, {});
    end.insertText(
        QStringLiteral("%1\t%2\t%3\t").arg(x).arg(y).arg(QString::number(intensity, 'g', 6)), {});
}

void PeakTable::highlightLines(const std::set<int>& peaks)
{
    _forgetHighlight();
    highlighted = peaks;
    for (const int peak : peaks) {
        const QTextBlock line = document()->findBlockByNumber(peak + HeaderLines);
        if (peak < 0 || !line.isValid())
            continue;
        QTextCursor cursor(line);
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        _addSelection(cursor);
    }
    setExtraSelections(_selections);
}

void PeakTable::_forgetHighlight()
{
    _selections.clear();
    highlighted.clear();
}

void PeakTable::_addSelection(const QTextCursor& cursor)
{
    ExtraSelection selection;
    selection.cursor = cursor;
    selection.format.setBackground(Highlight);
    selection.format.setForeground(Qt::white);
    _selections.append(selection);
}

void PeakTable::mousePressEvent(QMouseEvent* event)
{
    QTextEdit::mousePressEvent(event);
    QTextCursor cursor = cursorForPosition(event->pos());
    const int line = cursor.blockNumber();
    // A menu over the highlight is for what is highlighted.
    if (event->button() == Qt::RightButton && highlighted.contains(line - HeaderLines))
        return;
    anchorBlock = currentBlock = line;
    cursor.select(QTextCursor::LineUnderCursor);
    if (!(event->modifiers() & Qt::ControlModifier))
        _forgetHighlight();
    _addSelection(cursor);
    setExtraSelections(_selections);
    if (line >= HeaderLines)
        highlighted.insert(line - HeaderLines);
    emit highlightSignal(highlighted);
}

void PeakTable::mouseMoveEvent(QMouseEvent* event)
{
    QTextEdit::mouseMoveEvent(event);
    if (!(event->buttons() & Qt::LeftButton) || anchorBlock < 0)
        return;
    currentBlock = cursorForPosition(event->pos()).blockNumber();
    const auto [first, last] = std::minmax(anchorBlock, currentBlock);
    QTextCursor cursor(document()->findBlockByNumber(first));
    cursor.setPosition(document()->findBlockByNumber(last).position(), QTextCursor::KeepAnchor);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    if (!(event->modifiers() & Qt::ControlModifier))
        _forgetHighlight();
    _addSelection(cursor);
    setExtraSelections(_selections);
    for (int line = std::max(first, HeaderLines); line <= last; ++line)
        highlighted.insert(line - HeaderLines);
    emit highlightSignal(highlighted);
}

void PeakTable::keyPressEvent(QKeyEvent* event)
{
    if (!event->matches(QKeySequence::Copy))
        return QTextEdit::keyPressEvent(event);
    _copyToClipboard();
    event->accept();
}

void PeakTable::contextMenuEvent(QContextMenuEvent* event)
{
    QMenu menu(this);
    menu.addAction(QStringLiteral("Copy"), this, &PeakTable::_copyToClipboard);
    menu.exec(event->globalPos());
}

void PeakTable::_copyToClipboard()
{
    QString kept;
    int line = 0;
    for (const QChar character : toPlainText()) {
        if (line == 0 || highlighted.contains(line - HeaderLines))
            kept += character;
        if (character == '\n')
            ++line;
    }
    QApplication::clipboard()->setText(kept);
}

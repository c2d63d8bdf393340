// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/info/FieldEdit.h"

#include <QAbstractTextDocumentLayout>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <utility>

namespace {

const QColor FieldColour(150, 150, 150);
const QString Mark = QStringLiteral("%");

bool belongsToANumber(const QString& text)
{
    static const QString Allowed = QStringLiteral("0123456789+-.E");
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return Allowed.contains(c); });
}

}  // namespace

FieldEdit::FieldEdit(QWidget* parent)
    : QTextEdit(parent)
{
    setUndoRedoEnabled(false);
    setAcceptDrops(false);
    setReadOnly(true);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(this, &QTextEdit::cursorPositionChanged, this, &FieldEdit::_cursorChangedSlot);
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &FieldEdit::documentSizeChanged);
}

void FieldEdit::_appendLine(const QString& text, bool bold)
{
    const QTextCursor before = textCursor();
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    QTextCharFormat format;
    format.setFontWeight(bold ? QFont::Bold : QFont::Normal);
    if (!document()->isEmpty())
        end.insertBlock({}, format);
    end.insertText(text, format);
    // A cursor at the end would have moved along.
    if (before.position() != textCursor().position()) {
        QTextCursor kept = textCursor();
        kept.setPosition(before.position());
        setTextCursor(kept);
    }
    _showFields();
}

void FieldEdit::append(const QString& text) { _appendLine(text, false); }

void FieldEdit::appendHeader(const QString& text)
{
    if (document()->blockCount() >= 2)
        append(QStringLiteral("\n"));
    _appendLine(text, true);
}

int FieldEdit::_makeField()
{
    QTextCursor closing =
        document()->find(Mark, document()->characterCount() - 1, QTextDocument::FindBackward);
    // Two blanks: the first shows where an empty field is, the second parts it from what follows.
    const int end = closing.selectionStart();
    closing.insertText(QStringLiteral("  "));
    QTextCursor opening = document()->find(Mark, end, QTextDocument::FindBackward);
    const int begin = opening.selectionStart();
    opening.removeSelectedText();
    _fields.push_back({begin, end - 1});
    return int(_fields.size()) - 1;
}

int FieldEdit::appendEditLine(const QString& text)
{
    append(text);
    const int index = _makeField();
    _showFields();
    return index;
}

void FieldEdit::appendEditLine(const QString& text, int& first, int& second)
{
    append(text);
    second = _makeField();
    const int length = document()->characterCount();
    first = _makeField();
    const int moved = document()->characterCount() - length;
    _fields[std::size_t(second)].begin += moved;
    _fields[std::size_t(second)].end += moved;
    _showFields();
}

void FieldEdit::clear()
{
    _fields.clear();
    QTextEdit::clear();
    _showFields();
    _cursorChangedSlot();
}

bool FieldEdit::getValue(int index, double& value) const
{
    if (index < 0 || index >= int(_fields.size()))
        return false;
    const Field& field = _fields[std::size_t(index)];
    QTextCursor cursor(document());
    cursor.setPosition(field.begin);
    cursor.setPosition(field.end, QTextCursor::KeepAnchor);
    bool parsed = false;
    const double number = cursor.selectedText().toDouble(&parsed);
    if (parsed)
        value = number;
    return parsed;
}

FieldEdit::CursorState FieldEdit::_getCursorPos()
{
    const int position = textCursor().position();
    const auto field = std::find_if(_fields.begin(), _fields.end(), [&](const Field& each) {
        return position >= each.begin && position <= each.end;
    });
    if (field == _fields.end()) {
        _current = -1;
        return NoField;
    }
    _current = int(field - _fields.begin());
    if (field->begin == field->end)
        return EmptyField;
    return position == field->begin ? AtStart : position == field->end ? AtEnd : Inside;
}

void FieldEdit::_cursorChangedSlot()
{
    _cursorState = _getCursorPos();
    setReadOnly(_cursorState == NoField);
}

void FieldEdit::_showFields()
{
    QList<ExtraSelection> selections;
    for (const Field& field : _fields) {
        // The field and its end mark, the blank after it.
        QTextCursor cursor(document());
        cursor.setPosition(field.begin);
        cursor.setPosition(field.end + 1, QTextCursor::KeepAnchor);
        QTextCharFormat format;
        format.setFont(font());
        format.setBackground(FieldColour);
        format.setForeground(isEnabled() ? Qt::black : Qt::darkGray);
        selections.append({cursor, format});
    }
    setExtraSelections(selections);
}

void FieldEdit::_replace(int begin, int end, const QString& text)
{
    QTextCursor cursor = textCursor();
    cursor.setPosition(begin);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    cursor.insertText(text);
    const int grown = int(text.size()) - (end - begin);
    const int place = begin;
    for (Field& field : _fields) {
        if (field.begin > place)
            field.begin += grown;
        if (field.end >= place)
            field.end += grown;
    }
    setTextCursor(cursor);
    _showFields();
    _cursorChangedSlot();
}

void FieldEdit::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy) || event->matches(QKeySequence::SelectAll))
        return QTextEdit::keyPressEvent(event);
    if (_cursorState == NoField)
        return;
    const bool beforeEnd = _cursorState == AtStart || _cursorState == Inside;
    const bool afterStart = _cursorState == AtEnd || _cursorState == Inside;
    const Field field = _fields[std::size_t(_current)];
    const QTextCursor cursor = textCursor();
    const int begin = std::clamp(cursor.selectionStart(), field.begin, field.end);
    const int end = std::clamp(cursor.selectionEnd(), field.begin, field.end);
    const bool selected = begin < end;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (event->key() == Qt::Key_Left ? afterStart : beforeEnd)
            QTextEdit::keyPressEvent(event);
        return;
    case Qt::Key_Backspace:
        if (selected || afterStart)
            _replace(selected ? begin : begin - 1, end, {});
        return;
    case Qt::Key_Delete:
        if (selected || beforeEnd)
            _replace(begin, selected ? end : end + 1, {});
        return;
    default:
        // With these keys held down it is a command.
        if (!(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)))
            _type(event->text());
    }
}

void FieldEdit::_type(const QString& text)
{
    if (_cursorState == NoField || !belongsToANumber(text))
        return;
    const Field field = _fields[std::size_t(_current)];
    const QTextCursor cursor = textCursor();
    _replace(std::clamp(cursor.selectionStart(), field.begin, field.end),
             std::clamp(cursor.selectionEnd(), field.begin, field.end), text);
}

void FieldEdit::inputMethodEvent(QInputMethodEvent* event)
{
    // What it would replace, and what is not final yet, may be outside of the field.
    _type(event->commitString());
    event->accept();
}

void FieldEdit::mousePressEvent(QMouseEvent* event)
{
    // A selection that is dragged out of an editable text is taken out of it.
    if (event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier)) {
        QTextCursor cursor = textCursor();
        cursor.clearSelection();
        setTextCursor(cursor);
    }
    QTextEdit::mousePressEvent(event);
}

void FieldEdit::mouseDoubleClickEvent(QMouseEvent* event)
{
    setTextCursor(cursorForPosition(event->position().toPoint()));
    if (_cursorState == NoField)
        return;
    const Field field = _fields[std::size_t(_current)];
    QTextCursor whole = textCursor();
    whole.setPosition(field.begin);
    whole.setPosition(field.end, QTextCursor::KeepAnchor);
    setTextCursor(whole);
}

void FieldEdit::contextMenuEvent(QContextMenuEvent* event)
{
    QMenu menu(this);
    menu.addAction(QStringLiteral("Copy"), this, &QTextEdit::copy)
        ->setEnabled(textCursor().hasSelection());
    menu.addAction(QStringLiteral("Select All"), this, &QTextEdit::selectAll);
    menu.exec(event->globalPos());
}

void FieldEdit::changeEvent(QEvent* event)
{
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::EnabledChange)
        _showFields();
}

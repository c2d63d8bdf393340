// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A text with fields for numbers in it.
#pragma once

#include <QColor>
#include <QSizeF>
#include <QString>
#include <QTextEdit>

#include <vector>

/// Lines of text, some of which hold fields that the user types numbers into; the text around them
/// can be selected and copied, but not changed. Thread: GUI only.
class FieldEdit : public QTextEdit {
    Q_OBJECT
public:
    /// Where the text cursor is.
    enum CursorState { NoField = 0, AtStart = 1, AtEnd = 2, EmptyField = 3, Inside = 4 };

    explicit FieldEdit(QWidget* parent = nullptr);

    /// A line without fields.
    void append(const QString& text);
    /// A line in bold, after an empty one unless it is near the top.
    void appendHeader(const QString& text);
    /// A line with a field: the text between two percent signs, as in "Distance (m): %0.15%".
    /// @returns the number of the field, which counts from 0
    int appendEditLine(const QString& text);
    /// The same with two fields, whose numbers go to `first` and `second`.
    void appendEditLine(const QString& text, int& first, int& second);
    void clear();

    /// @returns false, and leaves the value, for a field that is unknown or holds no number
    bool getValue(int index, double& value) const;
    CursorState cursorState() const { return _cursorState; }

signals:
    void documentSizeChanged(QSizeF size);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool canInsertFromMimeData(const QMimeData*) const override { return false; }
    void insertFromMimeData(const QMimeData*) override {}

private slots:
    void _cursorChangedSlot();

private:
    /// Positions in the document. They are kept as numbers: text cursors at the border of a field
    /// move when text is inserted there.
    struct Field {
        int begin;
        int end;
    };

    /// Makes a field of the last pair of percent signs.
    int _makeField();
    CursorState _getCursorPos();
    void _showFields();
    void _appendLine(const QString& text, bool bold);
    /// Replaces what is selected of the cursor's field by a text, which may belong to a number.
    void _type(const QString& text);
    void _replace(int begin, int end, const QString& text);

    std::vector<Field> _fields;
    int _current = -1;  // the field of the cursor
    CursorState _cursorState = NoField;
};

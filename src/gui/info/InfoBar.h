// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The base of the panels of text.
#pragma once

#include "gui/kit/SideBar.h"

#include <QSizeF>
#include <QString>

#include <cstdio>

class FieldEdit;
class QPushButton;
class QVBoxLayout;
class TarvikService;

/// A panel of lines of text about the image of a view, some with fields to type into. Its text is
/// made anew for each image while the panel is unfolded.
class InfoBar : public SideBar {
    Q_OBJECT
public:
    /// @param service  of the view; outlives the panel
    InfoBar(unsigned long long syncClass, TarvikService* service);

    void clearText();
    /// "key: value"
    void addLine(const QString& key, const QString& value);
    /// The same with a value that is printed by a format of printf, which must fit it.
    template <class T>
    void addLine(const char* format, const QString& key, T value)
    {
        char text[256];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        std::snprintf(text, sizeof text, format, value);
#pragma GCC diagnostic pop
        addLine(key, QString::fromUtf8(text));
    }
    void addHeader(const QString& text);
    /// See FieldEdit::appendEditLine().
    int addEditLine(const QString& text);
    void addEditLine(const QString& text, int& first, int& second);
    void addEmptyLine();
    void addText(const QString& text);
    bool getValue(int index, double& value) const;

    /// "Reset", "Apply" and "Write To All" below the text, and "Undo Last Write" below these.
    void addButtons();
    void enableResetButton(bool enabled);
    void enableApplyButton(bool enabled);
    void enableWriteToAllButton(bool enabled);

    TarvikService* tarvikService() const { return _service; }
    FieldEdit* fieldEdit() const { return _text; }

signals:
    void clickedApply();
    void clickedReset();
    void clickedWriteToAll();
    void clickedUndo();
    void changedHeader();

protected:
    /// Fills the text, which is empty.
    virtual void setText() = 0;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

    /// Makes the text anew, at once or when the panel is unfolded.
    void refresh();

private slots:
    void _newImageSlot() { refresh(); }
    void _resizeTextEdit(QSizeF size);

private:
    TarvikService* const _service;
    FieldEdit* _text;
    QVBoxLayout* _layout;
    bool _hasButtons = false;
    bool _outdated = true;
    QPushButton* _reset = nullptr;
    QPushButton* _apply = nullptr;
    QPushButton* _writeToAll = nullptr;
};

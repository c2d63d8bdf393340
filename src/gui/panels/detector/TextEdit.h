// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A field for a value of the detector.
#pragma once

#include "gui/kit/DelayedLineEdit.h"

class InfoField;

/// Reports what was typed two seconds after the last key, or when the field is left. Who enters it
/// has read the last report, which goes. Thread: GUI only.
class TextEdit : public DelayedLineEdit {
    Q_OBJECT
public:
    /// @param help  the tooltip
    /// @param info  not owned; lives as long as the field
    TextEdit(const QString& help, InfoField* info, QWidget* parent = nullptr);

    /// As wide as a panel has room for: paths are typed, too.
    QSize sizeHint() const override;

protected:
    void focusInEvent(QFocusEvent* event) override;

private:
    static constexpr int Delay = 2000;  // ms

    InfoField* const _info;
};

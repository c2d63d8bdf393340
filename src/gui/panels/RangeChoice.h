// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The choice of the pixels that a contrast spans.
#pragma once

#include <QWidget>

class QAction;
class QActionGroup;
class QCheckBox;
class QToolButton;
class TarvikService;
struct ContrastChoice;

/// A button that sets the contrast by a range of the pixels, with the ranges in its menu, and a box
/// that has it done for each new image. Thread: GUI only.
class RangeChoice : public QWidget {
    Q_OBJECT
public:
    /// @param service  not owned; lives as long as the widget
    explicit RangeChoice(TarvikService* service, QWidget* parent = nullptr);

private:
    QAction* _add(QActionGroup* group, const QString& text, void (*apply)(ContrastChoice&));
    void _show();

    TarvikService* _service;
    QToolButton* _button;
    QActionGroup* _ranges;
    QActionGroup* _parts;
    QCheckBox* _followBox;
};

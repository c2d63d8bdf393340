// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A small control of the foreground.
#pragma once

#include "gui/kit/DropDownWidget.h"
#include "gui/panels/FastContrastScale.h"
#include "logic/records/ContrastData.h"

class TarvikService;

/// A colour bar that drops from its button, with a handle at the foreground. Thread: GUI only.
class FastContrastControl : public DropDownWidget {
    Q_OBJECT
public:
    /// @param service  not owned; lives as long as the widget
    FastContrastControl(QWidget* parent, TarvikService* service);

    QSize sizeHint() const override { return {200, 30}; }

protected slots:
    void exec() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private slots:
    /// Takes scale and handle from the view's contrast.
    void _setThresholdValues();
    /// Ends a drag.
    void _finished();

private:
    void _drag(double x);

    TarvikService* _service;
    ContrastData _contrast;
    panels::FastContrastScale _scale;
    int _slider = 0;  // pixel
    bool _dragging = false;
};

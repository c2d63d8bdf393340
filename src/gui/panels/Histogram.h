// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The distribution of an image's intensities, in which its contrast is set.
#pragma once

#include "gui/panels/ContrastDrag.h"
#include "gui/panels/HistogramPainter.h"

#include <QWidget>

class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;
class TarvikService;

/// Plots the intensities of a view's image and lets the user drag the zones below the background
/// and above the foreground, or what is between them. Thread: GUI only. No work over pixels: the
/// counts come from the image's statistics.
class Histogram : public QWidget {
    Q_OBJECT
public:
    /// @param service  not owned; lives as long as the widget
    explicit Histogram(TarvikService* service, QWidget* parent = nullptr);

    QSize sizeHint() const override { return {330, 320}; }
    const panels::HistogramModel& model() const { return _model; }
    const panels::HistogramPicture& picture() const { return _picture; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private slots:
    void _newImageSlot();
    void _setContrastSlot(const ContrastData& contrast);
    void _defaultContrastSlot();
    /// Shows the levels in the spin boxes.
    void _setThresholdValues();
    void _foregroundSpinBoxSlot(double value);
    void _backgroundSpinBoxSlot(double value);
    void _toggleLogX(bool logarithmic);
    void _toggleLogY(bool logarithmic);

private:
    static const QColor _normalFGBGColor;   // NOLINT(readability-identifier-naming)
    static const QColor _hoveredFGBGColor;  // NOLINT(readability-identifier-naming)

    void _createLayout();
    QCheckBox* _logBox(const QString& toolTip);
    panels::Zone _getCursorPos(const QPoint& point) const;
    void _setCursorInfo();
    void _highlight(panels::Zone zone);
    /// Ends a drag whose record is still marked as one.
    void _endDrag();
    /// Hands an edited contrast to the view.
    void _send(ContrastData contrast, bool dragUpdate);

    TarvikService* _service;
    panels::HistogramModel _model;
    panels::HistogramPicture _picture;
    panels::ContrastDrag _drag;
    QPoint _cursor{-1, -1};
    int _dragX = 0;          // of the mouse at the last step
    bool _dragSent = false;  // the last record was one of a drag
    QCheckBox* _logXBox;
    QCheckBox* _logYBox;
    QDoubleSpinBox* _backgroundBox;
    QDoubleSpinBox* _foregroundBox;
    QPushButton* _autoButton;
    QLabel* _summary;
};

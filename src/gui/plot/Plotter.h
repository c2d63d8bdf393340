// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A small plot of one curve.
#pragma once

#include "gui/plot/PlotPainter.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <optional>
#include <utility>

class QCheckBox;

/// Draws one curve with axes, ticks, an optional logarithmic y axis, arrows that measure along x
/// and the values at the cursor. The wheel zooms into x about the cursor, a drag with the right
/// button into the dragged range, a double click shows all again. A right click offers to save and
/// copy the plot. It knows nothing of images. Thread: GUI only.
class Plotter : public QWidget {
    Q_OBJECT
public:
    /// @param minimumWidth,minimumHeight  in pixels, also the size hint
    /// @param margin  pixels around the plot, to which the texts of the axes are added
    Plotter(int minimumWidth, int minimumHeight, int margin, QWidget* parent = nullptr);

    /// @param rows  x, y and mask in ascending order of x, see plot::Rows
    /// @param topPadding,bottomPadding  pixels kept free above the highest and below the lowest
    /// point
    void setPlot(plot::Rows rows, int topPadding, int bottomPadding, const QString& xLabel,
                 const QString& yLabel);
    void clearPlot();
    /// An arrow between two x with a text over it. Texts of neighbours stand at two heights.
    void addLeftRightArrow(double x1, double x2, const QString& text);

    /// The x are whole numbers, such as of images; see plot::PlotFrame. A click then emits
    /// clickedSignal().
    void setWholeX(bool whole);
    /// Marks an x by a line, or none.
    void setMarker(std::optional<double> x);
    /// The text that is saved and copied instead of text(); empty for that.
    void setSavedText(std::function<QString()> text) { _savedText = std::move(text); }

    /// Shows a part of the x axis; all of it without a range, or if fewer than two rows are inside.
    void showRange(std::optional<std::pair<double, double>> range);
    /// What is drawn.
    const plot::Picture& picture() const { return _picture; }
    /// All rows as text, one in a line under the labels; masked ones have a y of 0.
    QString text() const;

    /// Asks for a file and writes the plot as a picture or its text.
    void save();

    QSize sizeHint() const override { return minimumSize(); }

signals:
    /// The left button was clicked next to the row of this x.
    void clickedSignal(double x);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private slots:
    void _setPlot(bool logarithmic);

private:
    void _clicked(const QMouseEvent& event);
    void _openMenu(const QPoint& position);
    void _copy();
    void _setCursorInfo(double x);
    void _zoom(double factor, double x);
    QString _textToSave() const { return _savedText ? _savedText() : text(); }

    plot::Rows _data;
    plot::Picture _picture;
    std::optional<std::pair<double, double>> _range;
    std::optional<std::pair<double, double>> _axis;  // first and last x of the last rows
    std::optional<double> _dragFrom;                 // pixel
    std::optional<QPoint> _pressedAt;                // by the left button, global
    std::function<QString()> _savedText;
    QCheckBox* _logBox;
};

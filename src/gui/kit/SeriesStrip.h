// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A slim line that shows where one is in a series, and goes anywhere in it.
#pragma once

#include <QRect>
#include <QString>
#include <QWidget>

#include <map>
#include <optional>
#include <vector>

class QPainter;

/// Like the line of a video player: the whole series from left to right, with the position, the
/// numbers that can be shown at once, those that are missing and those that failed. A press or a
/// drag asks for numbers, the wheel for steps; a tooltip says what is under the cursor. Costs what
/// its runs of numbers cost, however many numbers there are. Thread: GUI only.
class SeriesStrip : public QWidget {
    Q_OBJECT
public:
    /// In pixels.
    static constexpr int FixedHeight = 12;

    /// Numbers from first to last, both included.
    struct Run {
        int first;
        int last;
    };
    using Runs = std::vector<Run>;
    using Failures = std::map<int, QString>;  ///< messages by number

    explicit SeriesStrip(QWidget* parent = nullptr);

    /// The series has these numbers; none where last is below first.
    void setSeries(int first, int last);
    /// How many numbers there are, missing ones included.
    long long count() const
    {
        return _last < _first ? 0 : static_cast<long long>(_last) - _first + 1;
    }
    void setPosition(int number);
    int position() const { return _position; }
    // By rising numbers, without overlap.
    void setHeld(Runs held);
    void setMissing(Runs missing);
    void setFailed(Failures failed);

    /// The number at a distance from the left edge, held inside the series; first without any.
    int numberAt(int x) const;
    /// The columns of pixels that a run takes, one at least.
    QRect columns(Run run) const;
    /// What is said of a number.
    QString textOf(int number) const;

    QSize sizeHint() const override { return {200, FixedHeight}; }
    QSize minimumSizeHint() const override { return {0, FixedHeight}; }

signals:
    /// The hand is at another number: the newest counts.
    void requested(int number);
    /// The wheel was turned by so many notches, towards the user for a positive number.
    void stepped(int notches);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void _moveHand(int x);
    void _paintRuns(QPainter& painter, const Runs& runs, const QRect& exposed,
                    const QColor& colour) const;

    int _first = 0;
    int _last = -1;
    int _position = 0;
    std::optional<int> _hand;  // the number under a pressed button
    int _wheel = 0;            // eighths of a degree that are no notch yet
    Runs _held;
    Runs _missing;
    Failures _failed;
};

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The series strip of a view.
#pragma once

#include "gui/kit/SeriesStrip.h"
#include "logic/loading/SeriesState.h"

#include <QObject>
#include <QTimer>

#include <functional>

class AbstractSubWindow;
class TarvikService;

/// Puts a strip below the image of a frame and connects it to the service. It is shown while the
/// series has more than one image and the title bar shows its buttons. While it can be seen, it
/// follows the read-ahead, at most three times a second. It has to be made
/// before the view in the frame, so that it takes its place before the view centres its first
/// image. Child of the frame.
class SubWindowStrip : public QObject {
    Q_OBJECT
public:
    /// @param step  images to go for a notch of the wheel
    SubWindowStrip(AbstractSubWindow& frame, TarvikService& service, std::function<int()> step);

    SeriesStrip* strip() const { return _strip; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Another image, or another state of the series.
    void _refresh();
    void _showState(const SeriesState& state);
    void _showReadAhead();
    /// Begins to look at the read-ahead.
    void _lookSoon();
    void _setVisible();

    AbstractSubWindow& _frame;
    TarvikService& _service;
    SeriesStrip* _strip;
    QTimer _look;
    int _pause = 0;      // ms until the next look
    SeriesState _shown;  // what the strip shows
};

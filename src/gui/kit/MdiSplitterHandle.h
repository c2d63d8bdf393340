// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The handle between two tiled frames.
#pragma once

#include <QSplitterHandle>

/// A black bar; the style's own highlighting on hover would flicker beside dark images.
class MdiSplitterHandle : public QSplitterHandle {
    Q_OBJECT
public:
    using QSplitterHandle::QSplitterHandle;

protected:
    void paintEvent(QPaintEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QRect _painted;
    bool _left = false;
};

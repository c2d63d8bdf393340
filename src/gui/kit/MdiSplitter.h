// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The splitters between the tiled frames.
#pragma once

#include <QSplitter>

/// A splitter with narrow black handles whose children can't be folded away.
class MdiSplitter : public QSplitter {
    Q_OBJECT
public:
    explicit MdiSplitter(Qt::Orientation orientation, QWidget* parent = nullptr);

protected:
    QSplitterHandle* createHandle() override;
};

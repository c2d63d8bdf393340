// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The way to an image of a series by its number.
#pragma once

#include <QWidget>

class QPushButton;
class QSlider;
class QSpinBox;
class TarvikService;

/// A slider and a box for a number of the series, and what opens that image. They follow the image
/// on show until the user chooses a number. Thread: GUI only.
class GotoWidget : public QWidget {
    Q_OBJECT
public:
    /// @param service  not owned; lives as long as the widget
    GotoWidget(TarvikService* service, QWidget* parent);

signals:
    /// An image was requested.
    void loadFile();
    void cancel();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private slots:
    void _update();
    void _load();

private:
    /// Follows the image again.
    void _follow();

    TarvikService* _service;
    QSlider* _slider;
    QSpinBox* _box;
    bool _updating = false;
    bool _chosen = false;  // a number, by the user
    QPushButton* _loadButton;
};

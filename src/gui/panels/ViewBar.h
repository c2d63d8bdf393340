// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The panel of how an image looks.
#pragma once

#include "gui/kit/SideBar.h"

class ImageDrawerMain;
class ImageDrawerThumbnail;
class QCheckBox;
class QVBoxLayout;
class TarvikService;

/// Which part of an image is shown, its contrast, its colours and some overlays. Thread: GUI only.
class ViewBar : public SideBar {
    Q_OBJECT
public:
    /// @param id  the key of the panel
    /// @param service,view  not owned; live as long as the panel
    ViewBar(unsigned long long id, TarvikService* service, ImageDrawerMain* view,
            QWidget* parent = nullptr);

public slots:
    /// The navigator knows now whether it can plot in three dimensions.
    void initializedSlot();
    void toggle3dMode(bool on);

private:
    QCheckBox* _addBox(const QString& text);
    void _createBoxes();

    TarvikService* _service;
    ImageDrawerThumbnail* _thumbnail;
    QVBoxLayout* _boxes = nullptr;
    QCheckBox* _plot3dBox = nullptr;
};

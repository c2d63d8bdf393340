// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/ViewBar.h"

#include "gui/panels/ColorModeSelector.h"
#include "gui/panels/Histogram.h"
#include "gui/render/ImageDrawerMain.h"
#include "gui/render/ImageDrawerThumbnail.h"
#include "logic/service/TarvikService.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace {

/// Shows a state without a request for it.
auto silently(QCheckBox* box)
{
    return [box](bool on) {
        const QSignalBlocker quiet(box);
        box->setChecked(on);
    };
}

}  // namespace

ViewBar::ViewBar(unsigned long long id, TarvikService* service, ImageDrawerMain* view,
                 QWidget* parent)
    : SideBar(id, parent)
    , _service(service)
    , _thumbnail(new ImageDrawerThumbnail(view))
{
    setTitle(QStringLiteral("View"));
    setInfoText(QStringLiteral("View settings e.g. image section, fore- and background settings"));
    auto* navigator = new QHBoxLayout;
    navigator->addStretch();
    navigator->addWidget(_thumbnail);
    navigator->addStretch();
    auto* rows = new QVBoxLayout(this);
    constexpr int Side = 5;  // the column is 345 pixels wide beside its scroll bar
    rows->setContentsMargins(Side, Side, Side, Side);
    rows->addLayout(navigator);
    rows->addWidget(new Histogram(service), 0, Qt::AlignHCenter);
    // In line with the frame of the histogram.
    _boxes = new QVBoxLayout;
    _boxes->setContentsMargins(10, 0, 0, 0);
    rows->addLayout(_boxes);
    _boxes->addWidget(new ColorModeSelector(service));
    _createBoxes();
    connect(_thumbnail, &ImageDrawer::initializedSignal, this, &ViewBar::initializedSlot);
    initializedSlot();
}

QCheckBox* ViewBar::_addBox(const QString& text)
{
    auto* box = new QCheckBox(text);
    _boxes->addWidget(box);
    return box;
}

void ViewBar::_createBoxes()
{
    _plot3dBox = _addBox(QStringLiteral("Plot 3D"));
    _plot3dBox->setToolTip(QStringLiteral("Show 3d profile of the image. Needs OpenGL 3.0"));
    connect(_plot3dBox, &QCheckBox::toggled, this, &ViewBar::toggle3dMode);
    connect(_service, &TarvikService::plottingModeSignal, _plot3dBox,
            [show = silently(_plot3dBox)](PlottingMode mode) {
                show(mode == PlottingMode::ThreeDimensional);
            });

    QCheckBox* const rings = _addBox(QStringLiteral("Show Resolution Rings"));
    rings->setEnabled(_service->resolutionDefined());
    connect(_service, &TarvikService::resolutionDefinedSignal, rings, &QWidget::setEnabled);

    QCheckBox* const largest = _addBox(QStringLiteral("Keep Spots When Zoomed Out"));
    largest->setToolTip(QStringLiteral(
        "Below 1:1 the largest of the pixels that one of the screen covers, not the nearest"));
    largest->setChecked(_service->minification() == Minification::Largest);
    connect(largest, &QCheckBox::toggled, _service, [service = _service](bool on) {
        service->setMinification(on ? Minification::Largest : Minification::Nearest);
    });
    connect(_service, &TarvikService::minificationSignal, largest,
            [show = silently(largest)](Minification minification) {
                show(minification == Minification::Largest);
            });

    using Setter = void (TarvikService::*)(bool);
    const auto join = [this](QCheckBox* box, bool on, Setter set, Setter signal) {
        box->setChecked(on);
        connect(box, &QCheckBox::toggled, _service, set);
        connect(_service, signal, box, silently(box));
    };
    join(rings, _service->showResolutionRings(), &TarvikService::toggleShowResolutionRings,
         &TarvikService::resolutionRingsSignal);
    join(_addBox(QStringLiteral("Highlight Defective Pixels")), _service->highlightDefective(),
         &TarvikService::toggleHighlightDefective, &TarvikService::defectiveSignal);
    join(_addBox(QStringLiteral("Highlight Saturated Pixels")), _service->highlightSaturated(),
         &TarvikService::toggleHighlightSaturated, &TarvikService::saturatedSignal);
}

void ViewBar::initializedSlot() { _plot3dBox->setEnabled(_thumbnail->canPlot3d()); }

void ViewBar::toggle3dMode(bool on)
{
    _service->setPlottingMode(on ? PlottingMode::ThreeDimensional : PlottingMode::Flat);
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/Histogram.h"

#include "gui/panels/LevelBox.h"
#include "gui/panels/LevelColours.h"
#include "gui/panels/RangeChoice.h"
#include "imagelib/display/MColorTable.h"
#include "logic/service/TarvikService.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <cmath>
#include <utility>

using panels::Zone;

const QColor Histogram::_normalFGBGColor(150, 150, 150, 100);
const QColor Histogram::_hoveredFGBGColor(200, 200, 200, 100);

namespace {

const QString SmallText = QStringLiteral("font-size: 10pt;");

QLabel* levelLabel(const QString& text, QWidget* buddy)
{
    auto* label = new QLabel(text);
    label->setBuddy(buddy);
    label->setStyleSheet(SmallText);
    return label;
}

QDoubleSpinBox* levelBox()
{
    auto* box = new LevelBox;
    box->setStyleSheet(SmallText);
    // As wide as its place, however large the numbers may get.
    box->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return box;
}

void adopt(QDoubleSpinBox& box, double minimum, double maximum, double value, double step)
{
    const QSignalBlocker quiet(box);
    box.setSingleStep(step);
    box.setRange(minimum, maximum);
    box.setValue(value);
}

std::vector<double> columnValues(const panels::HistogramScale& scale, bool whole)
{
    std::vector<double> values;
    for (int column = 0; column < panels::histogramplace::Columns; ++column) {
        const double value = scale.columnValue(column);
        values.push_back(whole ? std::trunc(value) : value);
    }
    return values;
}

}  // namespace

Histogram::Histogram(TarvikService* service, QWidget* parent)
    : QWidget(parent)
    , _service(service)
    , _logXBox(_logBox(QStringLiteral("Plot intensiy on a logarithmic scale")))
    , _logYBox(_logBox(QStringLiteral("Plot # pixels on a logarithmic scale")))
    , _backgroundBox(levelBox())
    , _foregroundBox(levelBox())
    , _autoButton(new QPushButton(QStringLiteral("Auto Contrast")))
    , _summary(new QLabel)
{
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    setFixedWidth(sizeHint().width());
    setEnabled(false);
    _picture.foregroundZone = _normalFGBGColor;
    _picture.backgroundZone = _normalFGBGColor;
    _createLayout();
    connect(_logXBox, &QCheckBox::toggled, this, &Histogram::_toggleLogX);
    connect(_logYBox, &QCheckBox::toggled, this, &Histogram::_toggleLogY);
    connect(_backgroundBox, &QDoubleSpinBox::valueChanged, this,
            &Histogram::_backgroundSpinBoxSlot);
    connect(_foregroundBox, &QDoubleSpinBox::valueChanged, this,
            &Histogram::_foregroundSpinBoxSlot);
    connect(_autoButton, &QPushButton::clicked, this, &Histogram::_defaultContrastSlot);
    connect(_service, &TarvikService::newImageSignal, this, &Histogram::_newImageSlot);
    connect(_service, &TarvikService::newContrastSignal, this, &Histogram::_setContrastSlot);
    _newImageSlot();
}

QCheckBox* Histogram::_logBox(const QString& toolTip)
{
    auto* box = new QCheckBox(this);
    box->setToolTip(toolTip);
    box->setAccessibleName(QStringLiteral("Log"));
    box->setFocusPolicy(Qt::NoFocus);
    box->setStyleSheet(
        QStringLiteral("QCheckBox{spacing: 0px; background: transparent;}"
                       "QCheckBox::indicator{width: 8px; height: 8px; border: 1px solid "
                       "rgb(200,200,200); background: transparent;}"
                       "QCheckBox::indicator:checked{background: white;}"));
    box->setChecked(true);
    box->hide();
    return box;
}

void Histogram::_createLayout()
{
    using panels::AxisBox;
    _logXBox->setGeometry(panels::intensityTexts().box, panels::IntensityLine - AxisBox + 2,
                          AxisBox, AxisBox);
    _logYBox->setGeometry(panels::CountLine - AxisBox + 2,
                          panels::histogramplace::Bottom - panels::countTexts().box - AxisBox,
                          AxisBox, AxisBox);

    auto* levels = new QHBoxLayout;
    levels->setContentsMargins(0, 0, 0, 0);
    levels->setSpacing(5);
    levels->addStretch();
    levels->addWidget(levelLabel(QStringLiteral("Background"), _backgroundBox));
    levels->addWidget(_backgroundBox, 100);
    levels->addSpacing(5);
    levels->addWidget(levelLabel(QStringLiteral("Foreground"), _foregroundBox));
    levels->addWidget(_foregroundBox, 100);
    levels->addStretch();

    _autoButton->setMaximumWidth(100);
    _autoButton->setStyleSheet(SmallText);
    _summary->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    _summary->setStyleSheet(QStringLiteral("font-size: 12pt;"));
    _summary->hide();

    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(10, 0, 10, 0);
    rows->setSpacing(0);
    rows->addSpacing(panels::histogramplace::Height);
    rows->addLayout(levels);
    rows->addSpacing(10);
    auto* choices = new QHBoxLayout;
    choices->setSpacing(5);
    choices->addWidget(_autoButton);
    choices->addWidget(new RangeChoice(_service));
    choices->addStretch();
    rows->addLayout(choices);
    rows->addSpacing(10);
    rows->addWidget(_summary);
    rows->addStretch();
}

void Histogram::_newImageSlot()
{
    if (!_service->imageLoaded())
        return;
    setEnabled(true);
    _logXBox->show();
    _logYBox->show();
    ContrastData contrast = _service->contrastData();
    contrast.dragUpdate = false;
    _setContrastSlot(contrast);
}

void Histogram::_setContrastSlot(const ContrastData& contrast)
{
    const auto statistics = _service->statistics();
    if (!_service->imageLoaded() || !statistics || !contrast.defined)
        return;
    const panels::Span before = _model.span();
    const double unit =
        panels::intensityUnit(statistics->minimum, statistics->maximum, _service->floatingPixels());
    _model.adopt(contrast, statistics->minimum, statistics->maximum, unit,
                 [&](double value) { return statistics->histogram.value(value); });
    if (_model.span() != before) {
        // A drag goes on from where its levels are now.
        _drag.foreground = _model.foreground();
        _drag.background = _model.background();
    }
    _picture.empty = false;
    ContrastData shown = contrast;
    if (!shown.colorTable)
        shown.colorTable = _service->defaultColorTable();
    _picture.darkMark = shown.colorTable && shown.colorTable->identifier() == "Rainbow";
    _picture.colours =
        panels::levelColours(columnValues(_model.scale(), !_service->floatingPixels()), shown);
    _setThresholdValues();
    _summary->setText(_model.summary());
    _summary->show();
    _setCursorInfo();
    update();
}

void Histogram::_setThresholdValues()
{
    const ContrastData& contrast = _model.contrast();
    const panels::Span& span = _model.span();
    const double step = panels::spinStep(span, _service->floatingPixels());
    adopt(*_foregroundBox, panels::leastForeground(contrast, span.unit), span.maximum,
          contrast.foreground, step);
    adopt(*_backgroundBox, span.minimum, panels::largestBackground(contrast, span.unit),
          contrast.background, step);
}

void Histogram::_send(ContrastData contrast, bool dragUpdate)
{
    contrast.dragUpdate = dragUpdate;
    _dragSent = dragUpdate;
    _service->setContrastData(contrast);
}

void Histogram::_foregroundSpinBoxSlot(double value)
{
    ContrastData contrast = _model.contrast();
    // The box rounds, which may carry a level over the other.
    contrast.foreground = std::max(value, panels::leastForeground(contrast, _model.span().unit));
    _send(contrast, false);
}

void Histogram::_backgroundSpinBoxSlot(double value)
{
    ContrastData contrast = _model.contrast();
    contrast.background = std::min(value, panels::largestBackground(contrast, _model.span().unit));
    _send(contrast, false);
}

void Histogram::_defaultContrastSlot()
{
    const auto statistics = _service->statistics();
    if (!statistics)
        return;
    // Part of the statistics of each image: nothing to compute here.
    const ContrastData contrast(statistics->foreground, statistics->background,
                                _service->shownContrast().colorTable, false);
    _setContrastSlot(contrast);
    _send(contrast, false);
}

void Histogram::_toggleLogX(bool logarithmic)
{
    _model.setLogarithmic(logarithmic, _logYBox->isChecked());
    _newImageSlot();
}

void Histogram::_toggleLogY(bool logarithmic)
{
    _model.setLogarithmic(_logXBox->isChecked(), logarithmic);
    _newImageSlot();
}

void Histogram::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    panels::paint(painter, _model, _picture);
}

Zone Histogram::_getCursorPos(const QPoint& point) const
{
    return _picture.empty ? Zone::None
                          : panels::zoneAt(point, _model.foreground(), _model.background());
}

void Histogram::_setCursorInfo()
{
    _picture.readout =
        panels::readoutAt(_cursor, _getCursorPos(_cursor), _model.bins(), _model.scale());
}

void Histogram::_highlight(Zone zone)
{
    const auto colour = [](bool lit) { return lit ? _hoveredFGBGColor : _normalFGBGColor; };
    _picture.foregroundZone = colour(zone == Zone::Foreground || zone == Zone::Between);
    _picture.backgroundZone = colour(zone == Zone::Background || zone == Zone::Between);
}

void Histogram::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    _cursor = event->position().toPoint();
    _dragX = _cursor.x();
    _drag = {_getCursorPos(_cursor), _model.foreground(), _model.background()};
}

void Histogram::mouseMoveEvent(QMouseEvent* event)
{
    using namespace panels::histogramplace;
    _cursor = event->position().toPoint();
    if (event->buttons().testFlag(Qt::LeftButton) && _drag.zone != Zone::None) {
        ContrastData contrast = _model.contrast();
        const int dx = _cursor.x() - std::exchange(_dragX, _cursor.x());
        _drag.step(dx, _model.scale(), _model.span(), contrast);
        _send(contrast, true);
    } else if (event->buttons() == Qt::NoButton) {
        setCursor(_cursor.y() >= Top && _cursor.y() <= Bottom ? Qt::CrossCursor : Qt::ArrowCursor);
        _highlight(_getCursorPos(_cursor));
    }
    _setCursorInfo();
    update();
}

void Histogram::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mouseReleaseEvent(event);
    _drag.zone = Zone::None;
    _endDrag();
}

void Histogram::leaveEvent(QEvent*)
{
    _cursor = {-1, -1};
    _highlight(Zone::None);
    _setCursorInfo();
    _endDrag();
    update();
}

void Histogram::_endDrag()
{
    if (_dragSent)
        _send(_model.contrast(), false);
}

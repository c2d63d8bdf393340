// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "api/ViewAnswers.h"

#include "gui/render/ImageDrawerMain.h"
#include "gui/window/SubWindow.h"
#include "logic/service/ComputedRegion.h"
#include "logic/service/TarvikService.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <cstring>
#include <map>

namespace {

using morvend::imglib::MImage;
using viewanswers::Answer;

QString text(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

ApiAnswer noImage() { return {ApiResult::failure(QStringLiteral("NoImage"))}; }

QJsonObject imageInfo(SubWindow& view)
{
    const TarvikService& service = *view.service();
    return {{"file", service.imagePath()},          {"index", service.imageIndex()},
            {"first", service.firstIndex()},        {"last", service.lastIndex()},
            {"width", service.imageSize().width()}, {"height", service.imageSize().height()},
            {"loading", service.loading()}};
}

QJsonObject viewport(SubWindow& view)
{
    const ViewportData viewport = view.service()->viewportData();
    const QRectF visible = view.visibileRange();
    return {{"offset_x", viewport.offsetX},
            {"offset_y", viewport.offsetY},
            {"zoom_power", viewport.zoomPower},
            {"visible", QJsonArray{visible.x(), visible.y(), visible.width(), visible.height()}}};
}

QJsonObject contrast(SubWindow& view)
{
    const ContrastData contrast = view.service()->shownContrast();
    return {{"foreground", contrast.foreground},
            {"background", contrast.background},
            {"color_mode", contrast.colorTable
                               ? QString::fromStdString(contrast.colorTable->identifier())
                               : QString()}};
}

/// JSON knows no NaN and no infinity.
QJsonValue finite(double value) { return std::isfinite(value) ? QJsonValue(value) : QJsonValue(); }

QJsonObject cursor(SubWindow& view)
{
    const ImageDrawerMain& drawer = *view.imageDrawer();
    const auto info = drawer.infoAtCursor();
    if (!info)
        return {{"inside", false}};
    return {{"inside", true},
            {"x", std::floor(drawer.imgX())},
            {"y", std::floor(drawer.imgY())},
            {"intensity", info->intensity()},
            {"distance", info->distance()},
            {"resolution", info->resolution()}};
}

QJsonArray points(const std::vector<std::vector<double>>& curve)
{
    QJsonArray all;
    for (const std::vector<double>& point : curve) {
        QJsonArray numbers;
        for (const double number : point)
            numbers.append(finite(number));
        all.append(numbers);
    }
    return all;
}

QJsonObject regionPlace(const StatisticsData& region)
{
    switch (region.roiType) {
    case StatisticsData::Line:
    case StatisticsData::Box:
        return {{"type", region.roiType == StatisticsData::Line ? "line" : "box"},
                {"begin", QJsonArray{region.beginX, region.beginY}},
                {"end", QJsonArray{region.endX, region.endY}}};
    case StatisticsData::Circle:
        return {{"type", "circle"},
                {"centre", QJsonArray{region.circleX, region.circleY}},
                {"radius", region.radius},
                {"theta", region.theta}};
    case StatisticsData::CentredCircle:
        return {{"type", "ring"},
                {"centre", QJsonArray{finite(region.powderX), finite(region.powderY)}},
                {"inner_radius", region.innerRadius},
                {"outer_radius", region.outerRadius}};
    default:
        return {{"type", QJsonValue()}};
    }
}

QJsonObject regionNumbers(const RoiStatistics& numbers)
{
    return {{"integral", finite(numbers.integral)},
            {"mean", finite(numbers.mean)},
            {"sigma", finite(numbers.sigma)},
            {"length", finite(numbers.length)},
            {"area", finite(numbers.area)},
            {"minimum", finite(numbers.minimum)},
            {"maximum", finite(numbers.maximum)},
            {"background_mean", finite(numbers.backgroundMean)},
            {"background_sigma", finite(numbers.backgroundSigma)},
            {"intensity", finite(numbers.intensity)},
            {"intensity_sigma", finite(numbers.intensitySigma)},
            {"centroid", QJsonArray{finite(numbers.centroidX), finite(numbers.centroidY)}}};
}

QJsonObject peaks(SubWindow& view)
{
    QJsonArray all;
    const ImagePeaks found = view.service()->imagePeaks();
    for (const ImagePeaks::Pixel& peak : found.pixels())
        all.append(QJsonArray{peak.x, peak.y, finite(peak.value)});
    return {{"peaks", all}};
}

/// A picture as pixels 0xAARRGGBB.
MImage pixelsOf(const QImage& picture)
{
    const QImage argb = picture.convertToFormat(QImage::Format_ARGB32);
    MImage pixels(argb.width(), argb.height(), morvend::datatypes::UINT, 32);
    const auto row = static_cast<std::size_t>(argb.width()) * sizeof(QRgb);
    auto* to = static_cast<unsigned char*>(pixels.data());
    for (int y = 0; y < argb.height(); ++y)
        std::memcpy(to + static_cast<std::size_t>(y) * row, argb.constScanLine(y), row);
    return pixels;
}

Answer ofJson(QJsonObject (*make)(SubWindow&))
{
    return [make](SubWindow& view) -> ApiAnswer { return {ApiResult::of(text(make(view)))}; };
}

ApiAnswer withImage(SubWindow& view, const MImage& image)
{
    if (image.empty())
        return noImage();
    return {ApiResult::of(text(imageInfo(view))), image};
}

}  // namespace

viewanswers::Answer viewanswers::find(const QString& command)
{
    static const std::map<QString, Answer> answers{
        {"viewInfo", ofJson(imageInfo)},
        {"viewport", ofJson(viewport)},
        {"contrast", ofJson(contrast)},
        {"cursor", ofJson(cursor)},
        {"peaks", ofJson(peaks)},
        {"region", [](SubWindow& view) -> ApiAnswer { return {ApiResult::of(region(view))}; }},
        {"image", [](SubWindow& view) { return withImage(view, view.service()->image()); }},
        {"mask", [](SubWindow& view) { return withImage(view, view.service()->mask()); }},
        {"picture", [](SubWindow& view) {
             const QImage picture = view.imageDrawer()->grab(view.devicePixelRatioF());
             return picture.isNull() ? noImage() : withImage(view, pixelsOf(picture));
         }}};
    const auto found = answers.find(command);
    return found == answers.end() ? nullptr : found->second;
}

bool viewanswers::pending(const QString& command, SubWindow& view)
{
    return command == QLatin1String("region") && view.service()->regionPending();
}

QString viewanswers::region(SubWindow& view)
{
    const ComputedRegion& computed = view.service()->computedRegion();
    QJsonObject all = regionPlace(computed.region);
    all["numbers"] = regionNumbers(computed.numbers);
    all["curve"] = points(computed.numbers.curve);
    all["second_curve"] = points(computed.numbers.secondCurve);
    const auto labels = [](const std::vector<std::string>& texts) {
        QJsonArray array;
        for (const std::string& each : texts)
            array.append(QString::fromStdString(each));
        return array;
    };
    all["curve_labels"] = labels(computed.numbers.curveLabels);
    all["second_curve_labels"] = labels(computed.numbers.secondCurveLabels);
    return text(all);
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/overlays/Outline.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace render {

namespace {

/// Greatest distance of a straight line from the curve it replaces, in screen pixels.
constexpr double tolerance = 0.05;

class EllipseWalk {
public:
    EllipseWalk(const QRectF& box, const QRectF& window, Outline::Piece& points)
        : _centre(box.center())
        , _radiusX(box.width() / 2)
        , _radiusY(box.height() / 2)
        , _radius(std::max(_radiusX, _radiusY))
        , _window(window)
        , _points(points)
    {
        // An arc is at most its angle squared times an eighth of the radius from its chord. Half
        // of that is added to the radius.
        constexpr double most = 1 << 20;
        const double steps = std::ceil(quarter * std::sqrt(_radius / (16 * tolerance)));
        _steps = static_cast<int>(std::clamp(steps, 1.0, most));
        _stretch = 1 + (1 - std::cos(angle(1) / 2)) / 2;
        add(0);
        for (int i = 0; i < 4; ++i)
            walk(i * _steps, (i + 1) * _steps);
    }

private:
    static constexpr double quarter = std::numbers::pi / 2;

    double angle(int step) const { return quarter * step / _steps; }
    QPointF at(int step) const
    {
        const double angle = this->angle(step);
        return _centre + _stretch * QPointF(_radiusX * std::cos(angle), _radiusY * std::sin(angle));
    }
    void add(int step) { _points.push_back({at(step), angle(step) * _radius}); }

    /// Within a quarter an arc stays in the box that its ends span.
    bool mayBeSeen(QPointF a, QPointF b) const
    {
        return std::min(a.x(), b.x()) <= _window.right() &&
               std::max(a.x(), b.x()) >= _window.left() &&
               std::min(a.y(), b.y()) <= _window.bottom() &&
               std::max(a.y(), b.y()) >= _window.top();
    }

    /// Out of view one straight line is enough.
    void walk(int first, int last)
    {
        if (last - first == 1 || !mayBeSeen(at(first), at(last))) {
            add(last);
            return;
        }
        const int middle = (first + last) / 2;
        walk(first, middle);
        walk(middle, last);
    }

    QPointF _centre;
    double _radiusX;
    double _radiusY;
    double _radius;
    int _steps;       ///< of a quarter
    double _stretch;  ///< of the radii
    QRectF _window;
    Outline::Piece& _points;
};

/// The part of a segment within a window, as fractions of the segment; none when last < first.
struct Part {
    double first = 0;
    double last = 1;

    /// Keeps the part on the positive side of a border.
    void cut(double distanceFirst, double distanceLast)
    {
        if (distanceFirst < 0 && distanceLast < 0) {
            last = -1;
            return;
        }
        if (distanceFirst >= 0 && distanceLast >= 0)
            return;
        const double crossing = distanceFirst / (distanceFirst - distanceLast);
        if (distanceFirst < 0)
            first = std::max(first, crossing);
        else
            last = std::min(last, crossing);
    }
};

Part visiblePart(QPointF a, QPointF b, const QRectF& window)
{
    Part part;
    part.cut(a.x() - window.left(), b.x() - window.left());
    part.cut(window.right() - a.x(), window.right() - b.x());
    part.cut(a.y() - window.top(), b.y() - window.top());
    part.cut(window.bottom() - a.y(), window.bottom() - b.y());
    return part;
}

Outline::Point between(const Outline::Point& a, const Outline::Point& b, double t)
{
    if (t <= 0)
        return a;
    if (t >= 1)
        return b;
    return {a.at + t * (b.at - a.at), a.way + t * (b.way - a.way)};
}

/// A convex polygon without the part on the negative side of a border.
template <class Distance>
QPolygonF cutPolygon(const QPolygonF& polygon, Distance&& distance)
{
    QPolygonF result;
    for (qsizetype i = 0; i < polygon.size(); ++i) {
        const QPointF a = polygon[i];
        const QPointF b = polygon[(i + 1) % polygon.size()];
        const double da = distance(a);
        const double db = distance(b);
        if (da >= 0)
            result << a;
        if ((da < 0) != (db < 0))
            result << a + da / (da - db) * (b - a);
    }
    return result;
}

bool finite(const QRectF& box)
{
    return std::isfinite(box.x()) && std::isfinite(box.y()) && std::isfinite(box.width()) &&
           std::isfinite(box.height());
}

}  // namespace

Outline Outline::along(const QPolygonF& points)
{
    Outline outline;
    for (const QPointF& point : points) {
        double way = 0;
        if (!outline._points.empty()) {
            const QPointF step = point - outline._points.back().at;
            way = outline._points.back().way + std::hypot(step.x(), step.y());
        }
        outline._points.push_back({point, way});
    }
    return outline;
}

Outline Outline::ellipse(const QRectF& box, const QRectF& window)
{
    Outline outline;
    if (finite(box))
        EllipseWalk(box.normalized(), window, outline._points);
    return outline;
}

Outline Outline::mapped(const QTransform& transform) const
{
    Outline outline = *this;
    for (Point& point : outline._points)
        point.at = transform.map(point.at);
    return outline;
}

std::vector<Outline::Piece> Outline::within(const QRectF& window) const
{
    std::vector<Piece> pieces;
    bool hangsOn = false;
    for (std::size_t i = 1; i < _points.size(); ++i) {
        const Point& a = _points[i - 1];
        const Point& b = _points[i];
        const Part part = visiblePart(a.at, b.at, window);
        if (part.last < part.first) {
            hangsOn = false;
            continue;
        }
        if (!hangsOn || part.first > 0)
            pieces.push_back({between(a, b, part.first)});
        pieces.back().push_back(between(a, b, part.last));
        hangsOn = part.last >= 1;
    }
    return pieces;
}

QPolygonF Outline::areaWithin(const QRectF& window) const
{
    QPolygonF area;
    for (const Point& point : _points)
        area << point.at;
    area = cutPolygon(area, [&](QPointF p) { return p.x() - window.left(); });
    area = cutPolygon(area, [&](QPointF p) { return window.right() - p.x(); });
    area = cutPolygon(area, [&](QPointF p) { return p.y() - window.top(); });
    return cutPolygon(area, [&](QPointF p) { return window.bottom() - p.y(); });
}

}  // namespace render

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours on the processor what shaders would colour.
#include "gui/render/SampledColouring.h"

#include "gui/render/CpuColouring.h"
#include "gui/render/ParallelRows.h"
#include "gui/render/ScreenPixels.h"
#include "imagelib/image/PixelTypes.h"

#include <QPainter>

#include <cstring>
#include <vector>

namespace render {

namespace {

using morvend::imglib::MImage;

/// The pixels of the given columns and rows.
MImage pick(const MImage& image, const std::vector<int>& columns, const std::vector<int>& rows)
{
    MImage picked(int(columns.size()), int(rows.size()), image.type(), image.typeBits());
    morvend::datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        const T* const from = image.pixels<T>();
        T* const to = static_cast<T*>(picked.data());
        const auto width = static_cast<std::size_t>(image.width());
        parallelRows(picked.height(), columns.size(), [&](int y) {
            const T* const line = from + width * std::size_t(rows[std::size_t(y)]);
            T* out = to + columns.size() * std::size_t(y);
            for (const int column : columns)
                *out++ = line[column];
        });
    });
    return picked;
}

}  // namespace

bool SampledColouring::holds(const ViewportData& viewport, QSize view,
                             double devicePixelRatio) const
{
    return _devicePixelRatio == devicePixelRatio && _view == view && _viewport == viewport;
}

void SampledColouring::take(const DisplayImage& image, const ViewportData& viewport, QSize view,
                            double devicePixelRatio, int side)
{
    _viewport = viewport;
    _view = view;
    _devicePixelRatio = devicePixelRatio;
    _picture = {};
    const ScreenPixels screen = ScreenPixels(view, viewport, devicePixelRatio).ofBlocks(side);
    _target = screen.showing(QRect(QPoint(), image.size()));
    _sample = {};
    if (_target.isEmpty())
        return;
    std::vector<int> columns;
    for (int x = _target.left(); x <= _target.right(); ++x)
        columns.push_back(screen.column(x));
    std::vector<int> rows;
    for (int y = _target.top(); y <= _target.bottom(); ++y)
        rows.push_back(screen.row(y));
    MImage sample = pick(image.image(), columns, rows);
    sample.optionalData().set_pixel_mask(pick(image.mask(), columns, rows));
    _sample = DisplayImage(sample);
}

void SampledColouring::_colour(const Colouring& colouring)
{
    _picture =
        QImage(qRound(_view.width() * _devicePixelRatio),
               qRound(_view.height() * _devicePixelRatio), QImage::Format_ARGB32_Premultiplied);
    _picture.setDevicePixelRatio(_devicePixelRatio);
    _picture.fill(Qt::transparent);
    const MImage colours = CpuColouring::rgb(_sample, colouring, QRect(QPoint(), _target.size()));
    _colouredPixels += colours.size();
    const auto length = static_cast<std::size_t>(_target.width()) * sizeof(QRgb);
    const auto* from = static_cast<const std::byte*>(colours.cdata());
    for (int y = _target.top(); y <= _target.bottom(); ++y, from += length)
        std::memcpy(_picture.scanLine(y) + std::size_t(_target.left()) * sizeof(QRgb), from,
                    length);
}

void SampledColouring::draw(QPainter& painter, const Colouring& colouring)
{
    if (_target.isEmpty())
        return;
    if (_picture.isNull())
        _colour(colouring);
    painter.drawImage(QPoint(0, 0), _picture);
}

}  // namespace render

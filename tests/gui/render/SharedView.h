// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Views that serve many cases.
#pragma once

#include "tests/gui/render/DrawnImage.h"

#include <gtest/gtest.h>

#include <array>

/// Cases that share one view with shaders and one without: each new view costs a tenth of a second.
template <class View>
class SharedView : public testing::Test {
protected:
    explicit SharedView(QSize size, bool useGlsl = true)
        : _view(_shared(size, useGlsl))
    {}
    static void TearDownTestSuite() { _views = {}; }

    View& drawer() { return *_view.drawer; }
    TarvikService& service() { return *_view.service; }
    ViewportData viewport() const { return _view.service->viewportData(); }
    void look(double offsetX, double offsetY, int zoomPower)
    {
        service().setViewportData({offsetX, offsetY, zoomPower, 0, 0});
    }
    void setGrey(double foreground, double background = 0)
    {
        service().setContrastData(
            {foreground, background, morvend::imglib::MColorTable::grey(), false});
    }

    DrawnView<View>& _view;

private:
    static DrawnView<View>& _shared(QSize size, bool useGlsl)
    {
        auto& view = _views[useGlsl];
        if (!view)
            view = std::make_unique<DrawnView<View>>(size, useGlsl);
        view->drawer->show();
        view->drawer->move(useGlsl ? 300 : 0, 0);  // neither covers the other
        view->drawer->resize(size);
        return *view;
    }
    static inline std::array<std::unique_ptr<DrawnView<View>>, 2> _views;
};

/// With shaders and without.
template <class View>
class EitherView : public SharedView<View>, public testing::WithParamInterface<bool> {
protected:
    explicit EitherView(QSize size)
        : SharedView<View>(size, GetParam())
    {}
};

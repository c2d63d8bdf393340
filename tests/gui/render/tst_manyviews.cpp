// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// More views than there are OpenGL surfaces: the same pictures, and little memory.
#include "gui/render/OpenGlSupport.h"
#include "logic/support/PacedCalls.h"
#include "tests/gui/render/ExpectedView.h"
#include "tests/gui/render/SharedView.h"

#include <QCursor>
#include <QElapsedTimer>

namespace {

using morvend::imglib::MColorTable;
using morvend::imglib::MImage;
using render::Surfaces;

class ManyViews : public testing::Test {
protected:
    struct View {
        TarvikService* service;
        std::unique_ptr<ImageDrawerMain> drawer;
    };

    ManyViews()
    {
        _core.setDefaultColorTable("High Dynamic Range");
        render::OpenGlSupport::prepare(_window);
        _window.resize(800, 600);
        _window.show();
        (void)QTest::qWaitForWindowExposed(&_window, Patience);
        const std::size_t before = Surfaces::ofThisProcess().taken();
        for (std::size_t i = before; i < Surfaces::most + 3; ++i)
            add(int(i));
        QCursor::setPos(799, 599);  // where no view is
        settle();
    }

    void add(int number)
    {
        View view{_core.newService("test"), nullptr};
        view.drawer = std::make_unique<ImageDrawerMain>(view.service, true, &_window);
        view.drawer->setGeometry(number % 5 * 160, number / 5 * 120, 150, 110);
        view.drawer->show();
        _views.push_back(std::move(view));
    }
    void open(View& view, const MImage& image)
    {
        QSignalSpy arrived(view.service, &TarvikService::newImageSignal);
        view.service->openImage(image);
        ASSERT_TRUE(waitFor([&] { return arrived.count() > 0; }));
        view.service->setContrastData({120, 3, MColorTable::grey(), false});
        settle();
    }
    View& last() { return _views.back(); }
    bool packed() const
    {
        return waitFor([this] { return !_views.back().service->pixelsAtHand(); });
    }
    static std::string difference(const View& view)
    {
        return differenceFromImage(view.drawer->grab(), *view.service, 1,
                                   view.drawer->backgroundColor().rgb());
    }

    const MImage _image = images::patterned(310, 290);
    TarvikCore _core;
    QWidget _window;
    std::vector<View> _views;
};

TEST_F(ManyViews, ShareSurfacesAndShowTheSameWithoutOne)
{
    EXPECT_EQ(Surfaces::ofThisProcess().taken(), Surfaces::most);
    EXPECT_TRUE(_views.front().drawer->hasSurface());
    ASSERT_FALSE(last().drawer->hasSurface());
    open(_views.front(), _image);
    open(last(), _image);
    for (int zoomPower = -2; zoomPower < ViewportData::maximumZoomPower; ++zoomPower) {
        last().service->setViewportData({20.4, 30.25, zoomPower, 0, 0});
        EXPECT_EQ(difference(last()), "");
        EXPECT_EQ(difference(_views.front()), "") << "of the same group";
    }

    last().drawer->setPlottingMode(PlottingMode::ThreeDimensional);
    settle();
    EXPECT_TRUE(last().drawer->usesGlsl()) << "a height map needs one";
    EXPECT_FALSE(_views.front().drawer->hasSurface()) << "which the oldest one gave";
    EXPECT_EQ(difference(_views.front()), "");
    EXPECT_EQ(Surfaces::ofThisProcess().taken(), Surfaces::most);

    View& waiting = _views[_views.size() - 2];
    ASSERT_FALSE(waiting.drawer->hasSurface());
    _views.pop_back();
    EXPECT_EQ(Surfaces::ofThisProcess().taken(), Surfaces::most - 1);
    waiting.drawer->resize(160, 110);
    settle();
    EXPECT_TRUE(waiting.drawer->hasSurface()) << "one that came free";
    open(waiting, _image);
    waiting.service->setViewportData({20.4, 30.25, 0, 0, 0});
    EXPECT_TRUE(waiting.drawer->usesGlsl());
    EXPECT_EQ(difference(waiting), "");
}

TEST_F(ManyViews, WithoutSurfaceHoldPackedPixels)
{
    open(_views.front(), _image);
    open(last(), _image);
    EXPECT_TRUE(packed());
    EXPECT_TRUE(_views.front().service->pixelsAtHand());
    TarvikService& service = *last().service;

    // What needs no look at them.
    service.setContrastData({60, 3, MColorTable::heat(), false});
    const QImage heat = last().drawer->grab();
    EXPECT_EQ(service.imageSize(), QSize(310, 290));
    EXPECT_TRUE(service.optionalData().pixel_mask());
    EXPECT_FALSE(service.pixelsAtHand());
    EXPECT_EQ(heat, last().drawer->grab());

    // What does.
    EXPECT_EQ(service.intensityString(11, 5), "41");
    EXPECT_TRUE(samePixels(service.image(), _image));
    EXPECT_TRUE(packed());
    StatisticsData region;
    region.defined = region.roiActive = true;
    region.roiType = StatisticsData::Box;
    region.endX = region.endY = 50;
    for (View* view : {&_views.front(), &last()})
        view->service->setStatisticsData(region);
    EXPECT_NE(service.roiStatistics().integral, 0);
    EXPECT_EQ(service.roiStatistics().integral, _views.front().service->roiStatistics().integral);
    service.setStatisticsData({});  // nothing is drawn over the image
    service.setViewportData({40, 30, 0, 0, 0});
    EXPECT_EQ(difference(last()), "");
    EXPECT_TRUE(packed()) << "again";

    last().drawer->setInUse(true);
    EXPECT_TRUE(samePixels(service.image(), _image));
    settle();
    EXPECT_TRUE(service.pixelsAtHand()) << "as long as the user works with it";
    last().drawer->setInUse(false);
    EXPECT_TRUE(packed());
}

TEST(ViewsShownTogether, WaitForTheirContextsWhileTheTurnIsLong)
{
    TarvikCore core;
    ImageDrawerMain view(core.newService("test"), true);
    PacedCalls::ofThisProcess().call(&view, [] {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 50) {
        }
    });
    view.show();
    ASSERT_TRUE(view.hasSurface());
    EXPECT_TRUE(view.grab().isNull());
    EXPECT_TRUE(waitFor([&] { return !view.grab().isNull(); }));
}

}  // namespace

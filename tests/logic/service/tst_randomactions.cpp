// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Random actions on several views against a simple model of them.
//
// TARVIK_ACTIONS and TARVIK_SEED in the environment ask for more actions, and for others.
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageWriter.h"
#include "logic/support/Console.h"
#include "tests/logic/service/ServiceTest.h"
#include "tests/logic/service/ViewModel.h"
#include "tests/support/EdfFile.h"
#include "tests/support/EdfText.h"

#include <random>

namespace {

using namespace tarvik::tests;

std::string numbered(const std::string& stem, int number, const std::string& ending)
{
    return stem + std::to_string(1000 + number).substr(1) + ending;
}

/// The files that are opened: numbered and in one file, with gaps and broken ones, three sizes.
class Files {
public:
    Files()
    {
        using morvend::imglib::MImageWriter;
        SeriesModel& edf = _begin();
        for (const int number : {1, 2, 3, 5, 8})
            _add(edf, number, {8, 4, 100 + number}, numbered("a_", number, ".edf"),
                 [&](const MImage&, const std::string& name) {
                     return writeEdf(_folder, name, 8, std::vector(32, 100 + number));
                 });
        _addBroken(edf, 6, numbered("a_", 6, ".edf"), true);
        _addBroken(edf, 7, numbered("a_", 7, ".edf"), false);

        SeriesModel& frames = _begin();
        std::string text;
        for (int number = 0; number < 5; ++number) {
            text += edfFrame(std::vector(6, 200 + number));
            frames.pictures[number] = {6, 1, 200 + number};
        }
        frames.paths[0] = _folder.write("frames.edf", text);
        frames.last = 4;

        SeriesModel& tiff = _begin();
        for (int number = 0; number < 4; ++number)
            _add(tiff, number, {8, 4, 300 + number}, numbered("t_", number, ".tif"),
                 [&](const MImage& image, const std::string& name) {
                     MImageWriter::write(image, _folder / name, MImageWriter::TIFF);
                     return _folder / name;
                 });

        SeriesModel& cbf = _begin();
        for (int number = 10; number < 13; ++number)
            _add(cbf, number, {30, 7, 400 + number}, numbered("c_", number, ".cbf"),
                 [&](const MImage& image, const std::string& name) {
                     MImageWriter::write(image, _folder / name, MImageWriter::CBF);
                     return _folder / name;
                 });

        SeriesModel& hdf5 = _begin();
        hdf5.paths[1] = _folder / "h_master.h5";
        morvend::imglib::MHdf5Writer writer(hdf5.paths[1], 0, {},
                                            morvend::imglib::MCompression::NONE);
        for (int number = 1; number <= 6; ++number) {
            writer.write(MImage(30, 7, 500 + number));
            hdf5.pictures[number] = {30, 7, 500 + number};
        }
        hdf5.last = 6;
    }
    const std::vector<SeriesModel>& all() const { return _all; }
    /// A path that can't be opened.
    std::string unknown() const { return _garbage; }

private:
    SeriesModel& _begin()
    {
        _all.reserve(5);
        return _all.emplace_back();
    }
    template <class Write>
    void _add(SeriesModel& series, int number, const Picture& picture, const std::string& name,
              Write&& write)
    {
        series.paths[number] = write(MImage(picture.width, picture.height, picture.value), name);
        series.pictures[number] = picture;
        series.last = std::max(series.last, number);
    }
    /// A file that is no image, or one whose pixels end too early.
    void _addBroken(SeriesModel& series, int number, const std::string& name, bool garbage)
    {
        if (garbage) {
            _garbage = _folder.write(name, "garbage");
        } else {
            const std::string whole = edfFrame({1, 2, 3});
            series.paths[number] = _folder.write(name, whole.substr(0, whole.size() - 3));
        }
        series.last = std::max(series.last, number);
    }

    const TempFolder _folder;
    std::vector<SeriesModel> _all;
    std::string _garbage;
};

/// A view and its model.
class View {
public:
    View(TarvikCore& core, const std::string& window)
        : model(window)
        , service(core.newService(QString::fromStdString(window)))
        , _core(core)
    {
        const auto count = [this] { ++answers; };
        QObject::connect(service, &TarvikService::newImageSignal, service, count);
        QObject::connect(service, &TarvikService::imageLoadErrorSignal, service,
                         [this, count] { ++errors, count(); });
    }
    ~View()
    {
        _core.deleteService(service);
        QCoreApplication::sendPostedEvents(service, QEvent::DeferredDelete);
    }
    /// Waits until a request is answered and compares the answer.
    void expectAnswer(int answersBefore, int errorsBefore, bool success)
    {
        ASSERT_TRUE(QTest::qWaitFor([&] { return answers > answersBefore; }, 20000)) << "no answer";
        EXPECT_EQ(errors - errorsBefore, success ? 0 : 1);
        settle();
        EXPECT_EQ(answers, answersBefore + 1);
    }
    /// Waits until nothing is under way.
    void settle() const
    {
        ASSERT_TRUE(QTest::qWaitFor([&] { return !service->loading(); }, 20000));
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
    /// Takes over where the view has gone by itself. @param allowed  the numbers it may be at
    void adopt(const std::set<int>& allowed)
    {
        const int index = service->imageIndex();
        EXPECT_TRUE(index == model.index || allowed.contains(index)) << index;
        if (index != model.index) {
            EXPECT_TRUE(model.show(index));
        }
    }
    void expectModel() const
    {
        ASSERT_EQ(service->imageLoaded(), model.loaded());
        EXPECT_EQ(service->imageIndex(), model.index);
        EXPECT_EQ(service->contrastData().foreground, model.contrast());
        if (!model.loaded())
            return;
        const MImage& image = service->image();
        EXPECT_EQ((Picture{image.width(), image.height(), image.pixel<int>(1, 0, -1)}),
                  model.shown);
        EXPECT_EQ(service->lastIndex(), model.series.last);
        EXPECT_EQ(service->statistics()->mean, model.shown.value);
        const auto edit = service->globalHeader().wavelength();
        EXPECT_EQ(edit ? std::optional(*edit) : std::nullopt, model.wavelength);
        EXPECT_FALSE(service->movieMode() || service->watchSeriesMode() ||
                     service->halvoMonitorMode());
    }

    ViewModel model;
    TarvikService* const service;
    int answers = 0;
    int errors = 0;

private:
    TarvikCore& _core;
};

class RandomActions : public ServiceTest {
protected:
    int pick(int from, int to) { return std::uniform_int_distribution(from, to)(random); }

    void act()
    {
        View& view = *views[static_cast<std::size_t>(pick(0, 2))];
        switch (pick(0, 13)) {
        case 0:
        case 1:
            return open(view);
        case 2:
        case 3:
            return jump(view, view.model.index + pick(-2, 3));
        case 4:
            return jump(view, pick(-2, 12));
        case 5:
            return push(view);
        case 6:
            return setContrast(view);
        case 7:
            return editHeader(view);
        case 8:
            return play(view);
        case 9:
            return watch(view);
        case 10:
            return monitor(view);
        case 11:
            return burst(view);
        case 12:
            return selectRegion(view);
        default:
            return replaceView();
        }
    }

    void open(View& view)
    {
        const auto& all = files.all();
        const SeriesModel& series = all[static_cast<std::size_t>(pick(0, int(all.size()) - 1))];
        auto entry = series.paths.begin();
        std::advance(entry, pick(0, static_cast<int>(series.paths.size()) - 1));
        const bool known = pick(0, 9) > 0;
        const int answers = view.answers;
        const int errors = view.errors;
        view.service->openImage((known ? entry->second : files.unknown()).c_str());
        view.expectAnswer(answers, errors, known && view.model.openFile(series, entry->first));
    }

    void jump(View& view, int number)
    {
        const int answers = view.answers;
        const int errors = view.errors;
        const int way = pick(0, 2);
        if (way == 0) {
            number = view.model.series.last;
            view.service->openLast();
        } else if (way == 1) {
            view.service->openImage(number);
        } else {
            view.service->nextImage(number - view.model.index);
        }
        if (!view.model.loaded()) {
            view.settle();
            EXPECT_EQ(view.answers, answers);
            return;
        }
        view.expectAnswer(answers, errors, view.model.show(number));
    }

    void push(View& view)
    {
        const Picture picture{pick(2, 9), pick(1, 5), pick(0, 1000)};
        const int answers = view.answers;
        const int errors = view.errors;
        view.service->openImage(MImage(picture.width, picture.height, picture.value));
        view.expectAnswer(answers, errors, view.model.push(picture));
    }

    void setContrast(View& view)
    {
        const double foreground = pick(1, 1000);
        view.service->setContrastData(ContrastData(foreground, 0, MColorTable::heat(), pick(0, 1)));
        view.model.setContrast(foreground);
    }

    void editHeader(View& view)
    {
        TarvikService::Header header;
        const auto value = static_cast<float>(pick(1, 100));
        if (pick(0, 2) > 0)
            header.set_wavelength(value);
        const bool keep = pick(0, 2) > 0;
        if (keep)
            view.service->applyHeaderToSeries(header);
        else
            view.service->resetHeader();
        if (view.model.loaded())
            view.model.wavelength =
                keep && header.wavelength() ? std::optional(value) : std::nullopt;
    }

    /// The numbers of a series that can be shown, from one on.
    static std::set<int> behind(const ViewModel& model, int number)
    {
        std::set<int> numbers;
        for (const auto& [each, picture] : model.series.pictures)
            if (each > number)
                numbers.insert(each);
        return numbers;
    }

    void play(View& view)
    {
        if (view.model.loaded() && !view.model.uniform())
            return;
        const int errors = view.errors;
        view.service->setMovieModeStep(pick(1, 3));
        view.service->setMovieMode(true);
        QTest::qWait(pick(0, 3) ? pick(0, 20) : pick(200, 450));
        if (pick(0, 3) == 0)
            view.service->setWatchSeriesMode(true);
        view.service->setWatchSeriesMode(false);
        view.service->setMovieMode(false);
        view.settle();
        EXPECT_EQ(view.errors, errors) << "modes fail in silence";
        view.adopt(behind(view.model, view.model.index));
    }

    void watch(View& view)
    {
        if (view.model.loaded() && !view.model.uniform())
            return;
        const int errors = view.errors;
        view.service->setWatchSeriesMode(true);
        QTest::qWait(pick(0, 30));
        view.service->setWatchSeriesMode(false);
        view.settle();
        EXPECT_EQ(view.errors, errors);
        view.adopt({view.model.series.last});
    }

    void monitor(View& view)
    {
        view.service->setHalvoMonitorMode(true);
        if (pick(0, 1))
            view.service->setHalvoMonitorHost("host", pick(1, 1000), 0);
        view.service->setHalvoMonitorMode(false);
    }

    /// Several requests at once. What the view can't take in time is dropped; it ends at one of
    /// them.
    void burst(View& view)
    {
        if (!view.model.uniform())
            return;
        std::set<int> asked;
        for (int i = pick(2, 6); i > 0; --i) {
            const int number = pick(-1, 12);
            view.service->openImage(number);
            if (view.model.series.at(number))
                asked.insert(number);
        }
        view.settle();
        view.adopt(asked);
        EXPECT_TRUE(asked.empty() || asked.contains(view.model.index));
    }

    void selectRegion(View& view)
    {
        StatisticsData region;
        region.defined = true;
        region.roiActive = true;
        region.roiType = pick(0, 4);
        region.beginX = pick(-5, 20);
        region.endX = pick(-5, 20);
        region.endY = pick(-5, 20);
        region.radius = region.outerRadius = pick(0, 9);
        region.powderX = region.powderY = pick(-3, 9);
        view.service->setStatisticsData(region);
    }

    void replaceView()
    {
        const auto place = static_cast<std::size_t>(pick(0, 2));
        // Some views go while they load.
        if (pick(0, 1))
            views[place]->service->openImage(files.all()[0].paths.begin()->second.c_str());
        views[place].reset();
        views[place] = std::make_unique<View>(core, windows[place]);
    }

    const std::vector<std::string> windows = {"1", "1", "2"};
    const Files files;
    std::mt19937 random;
    std::vector<std::unique_ptr<View>> views;
};

int fromEnvironment(const char* name, int absent)
{
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue(name, &isNumber);
    return isNumber ? number : absent;
}

TEST_F(RandomActions, LeaveAllViewsAsTheModelSays)
{
    console::muteInformation();
    const int seed = fromEnvironment("TARVIK_SEED", 1);
    random.seed(static_cast<unsigned int>(seed));
    for (const std::string& window : windows)
        views.push_back(std::make_unique<View>(core, window));
    const int actions = fromEnvironment("TARVIK_ACTIONS", 150);
    for (int i = 0; i < actions; ++i) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", action " + std::to_string(i));
        act();
        for (const auto& view : views)
            view->expectModel();
        if (HasFailure())
            return;
    }
    EXPECT_TRUE(std::any_of(views.begin(), views.end(),
                            [](const auto& view) { return view->model.loaded(); }));
}

}  // namespace

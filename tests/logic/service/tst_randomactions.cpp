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
#include "tests/support/Regions.h"
#include "tests/support/WaitFor.h"

#include <random>

namespace {

using namespace tarvik::tests;

/// The files that are opened: numbered and in one file, with gaps and broken ones, three sizes.
class Files {
public:
    Files()
    {
        using namespace morvend::imglib;
        const auto write = [this](const MImage& image, const std::string& name) {
            MImageWriter::write(image, _folder / name,
                                name.ends_with("tif") ? MImageWriter::TIFF : MImageWriter::CBF);
        };
        SeriesModel& edf = _add("a_", ".edf", {1, 2, 3, 5, 8}, {8, 4, 100},
                                [this](const MImage& image, const std::string& name) {
                                    const int* pixels = image.pixels<int>();
                                    writeEdf(_folder, name, 8, {pixels, pixels + image.size()});
                                });
        _garbage = _folder.write("a_006.edf", "garbage");
        edf.paths[7] = _folder.write("a_007.edf", edfFrame({1, 2, 3}).substr(0, 1033));
        _add("t_", ".tif", {0, 1, 2, 3}, {8, 4, 300}, write);
        _add("c_", ".cbf", {10, 11, 12}, {30, 7, 400}, write);

        std::string text;
        SeriesModel& frames = _add("", "", {0, 1, 2, 3, 4}, {6, 1, 200},
                                   [&](const MImage& image, const std::string&) {
                                       text += edfFrame(std::vector(6, image.pixel<int>(0, 0, 0)));
                                   });
        frames.paths = {{0, _folder.write("frames.edf", text)}};

        const std::string master = _folder / "h_master.h5";
        MHdf5Writer writer(master, 0, {}, MCompression::NONE);
        SeriesModel& hdf5 =
            _add("", "", {1, 2, 3, 4, 5, 6}, {30, 7, 500},
                 [&](const MImage& image, const std::string&) { writer.write(image); });
        hdf5.paths = {{1, master}};
    }
    const std::vector<SeriesModel>& all() const { return _all; }
    /// A path that can't be opened.
    std::string unknown() const { return _garbage; }

private:
    /// Images whose values are their numbers beyond that of the first picture.
    template <class Write>
    SeriesModel& _add(const std::string& stem, const std::string& ending,
                      const std::vector<int>& numbers, Picture picture, Write&& write)
    {
        _all.reserve(5);
        SeriesModel& series = _all.emplace_back();
        const int base = picture.value;
        for (const int number : numbers) {
            const std::string name = stem + std::to_string(1000 + number).substr(1) + ending;
            picture.value = base + number;
            write(MImage(picture.width, picture.height, picture.value), name);
            series.paths[number] = _folder / name;
            series.pictures[number] = picture;
            series.last = number;
        }
        return series;
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
        ASSERT_TRUE(waitFor([&] { return answers > answersBefore; })) << "no answer";
        EXPECT_EQ(errors - errorsBefore, success ? 0 : 1);
        settle();
        EXPECT_EQ(answers, answersBefore + 1);
    }
    /// Waits until nothing is under way.
    void settle() const
    {
        ASSERT_TRUE(waitFor([&] { return !service->loading(); }));
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
        using Self = RandomActions;
        constexpr void (Self::*actions[])(View&) = {
            &Self::open,    &Self::open,        &Self::jump,         &Self::jump,   &Self::jump,
            &Self::push,    &Self::setContrast, &Self::editHeader,   &Self::play,   &Self::watch,
            &Self::monitor, &Self::burst,       &Self::selectRegion, &Self::replace};
        (this->*actions[pick(0, int(std::size(actions)) - 1)])(view);
    }

    void open(View& view)
    {
        const auto& all = files.all();
        const SeriesModel& series = all[static_cast<std::size_t>(pick(0, int(all.size()) - 1))];
        auto entry = series.paths.begin();
        std::advance(entry, pick(0, static_cast<int>(series.paths.size()) - 1));
        const bool known = pick(0, 9) > 0;
        const int answers = view.answers, errors = view.errors;
        view.service->openImage((known ? entry->second : files.unknown()).c_str());
        view.expectAnswer(answers, errors, known && view.model.openFile(series, entry->first));
    }

    void jump(View& view)
    {
        int number = pick(0, 2) ? view.model.index + pick(-2, 3) : pick(-2, 12);
        const int answers = view.answers, errors = view.errors;
        const int way = pick(0, 2);
        if (way == 0) {
            number = view.model.series.last;
            view.service->openLast();
        } else if (way == 1) {
            view.service->openImage(number);
        } else {
            view.service->nextImage(number - view.model.index);
            if (view.model.loaded() && view.model.step(number - view.model.index))
                return view.expectAnswer(answers, errors, true);
        }
        if (way == 2 || !view.model.loaded()) {
            view.settle();
            EXPECT_EQ(view.answers, answers);
            return;
        }
        view.expectAnswer(answers, errors, view.model.show(number));
    }

    void push(View& view)
    {
        const Picture picture{pick(2, 9), pick(1, 5), pick(0, 1000)};
        const int answers = view.answers, errors = view.errors;
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

    /// Several requests at once. What the view can't take in time is overtaken by the next; it ends
    /// at the last one, if that can be shown.
    void burst(View& view)
    {
        if (!view.model.uniform())
            return;
        std::set<int> asked;
        int last = -1;
        for (int i = pick(2, 6); i > 0; --i) {
            last = pick(-1, 12);
            view.service->openImage(last);
            if (view.model.series.at(last))
                asked.insert(last);
        }
        view.settle();
        view.adopt(asked);
        EXPECT_TRUE(!asked.contains(last) || view.model.index == last);
    }

    void selectRegion(View& view)
    {
        StatisticsData region =
            regions::between(pick(0, 4), pick(-5, 20), 0, pick(-5, 20), pick(-5, 20));
        region.radius = region.outerRadius = pick(0, 9);
        region.powderX = region.powderY = pick(-3, 9);
        view.service->setStatisticsData(region);
    }

    void replace(View& old)
    {
        // Some views go while they load, or in a mode.
        if (pick(0, 1))
            old.service->openImage(files.all()[0].paths.begin()->second.c_str());
        constexpr void (TarvikService::*modes[])(bool) = {&TarvikService::setMovieMode,
                                                          &TarvikService::setWatchSeriesMode,
                                                          &TarvikService::setHalvoMonitorMode};
        if (pick(0, 1))
            (old.service->*modes[pick(0, 2)])(true);
        for (std::size_t i = 0; i < views.size(); ++i)
            if (views[i].get() == &old) {
                views[i].reset();
                views[i] = std::make_unique<View>(core, windows[i]);
                return;
            }
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

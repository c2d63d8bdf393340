// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The service with a simulated detector: connection, series and their ends.
#include "imagelib/control/MHalvoFileWriter.h"
#include "logic/detector/HalvoClient.h"
#include "logic/detector/HalvoService.h"
#include "simulator/HttpServer.h"
#include "tests/support/SignalLog.h"
#include "tests/support/SimulatedDetector.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <filesystem>

using namespace tarvik::tests;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using Status = HalvoState::Status;
const std::atomic<bool> Never = false;

QString addressOf(const SimulatedDetector& unit)
{
    return QString("127.0.0.1:%1").arg(unit.port());
}

class Service : public testing::Test {
protected:
    Service()
    {
        using S = HalvoService;
        S* const from = service.get();
        log.watch(from, &S::startSeries, "series starts");
        log.watch(from, &S::finished, "closed");
        QObject::connect(from, &S::finishedInitialize, from, [this](bool good, const QString& why) {
            initialized.push_back(good ? "good" : why.toStdString());
        });
        QObject::connect(from, &S::finishedSeries, from, [this](bool good, const QString& why) {
            series.push_back(good ? "good" : why.toStdString());
        });
        QObject::connect(from, &S::error, from,
                         [this](const QString& text) { errors.push_back(text.toStdString()); });
        service->setFileNamePattern(QString::fromStdString(folder / "x"));
    }
    /// @returns whether all requests have ended
    bool idle()
    {
        return waitFor([this] { return issued() == closed.size(); });
    }
    qsizetype issued() const
    {
        qsizetype count = 0;
        for (const QSignalSpy* spy : {&states, &images, &counts, &inits, &starts, &aborts})
            count += spy->size();
        return count;
    }
    void connectToUnit()
    {
        ASSERT_TRUE(service->setHost(addressOf(unit)));
        service->setConnected(true);
        ASSERT_TRUE(idle());
        ASSERT_THAT(initialized, ElementsAre("good"));
        ASSERT_TRUE(service->connected());
        ASSERT_EQ(service->state(false), Status::Ready);
    }
    /// Starts a series for the client and waits for its end.
    std::string runSeries()
    {
        series.clear();
        client.startDetector();
        EXPECT_TRUE(waitFor([this] { return !series.empty(); }) && idle());
        return series.empty() ? "" : series.front();
    }

    const TempFolder folder;
    SimulatedDetector unit;
    std::shared_ptr<HalvoService> service =
        std::make_shared<HalvoService>(nullptr, QString::fromStdString(folder / "TARVIK.conf"));
    HalvoClient client{service}, other{service};
    SignalLog log;
    QSignalSpy states{service.get(), &HalvoService::stateSignal};
    QSignalSpy images{service.get(), &HalvoService::setNImagesSignal};
    QSignalSpy counts{service.get(), &HalvoService::setCountTimeSignal};
    QSignalSpy inits{service.get(), &HalvoService::initDetector};
    QSignalSpy starts{service.get(), &HalvoService::startSeries};
    QSignalSpy aborts{service.get(), &HalvoService::abortSeries};
    QSignalSpy closed{service.get(), &HalvoService::finished};
    std::vector<std::string> initialized, series, errors;
};

TEST_F(Service, KnowsNothingAndAsksNothingWithoutAConnection)
{
    EXPECT_FALSE(service->nImages(true));
    service->setNImages(3);
    service->startDetector(&client);
    service->abortDetector();
    EXPECT_EQ(issued(), 0);
    EXPECT_FALSE(service->connected());
    EXPECT_EQ(service->fileName().toStdString(), folder / "x_master.h5");
}

TEST_F(Service, TakesAnAddress)
{
    for (const auto& [text, good] : {std::pair{"beamline:8080", true},
                                     {"http://beamline/", true},
                                     {"beamline:$1", false},
                                     {"/data", false},
                                     {"", false}}) {
        SCOPED_TRACE(text);
        errors.clear();
        const QString before = service->host();
        EXPECT_EQ(service->setHost(text), good);
        EXPECT_EQ(errors.empty(), good);
        EXPECT_EQ(service->host(), good ? QString(text) : before);
    }
    EXPECT_EQ(HalvoService::defaultHost(), "beamline");
    EXPECT_EQ(HalvoService::defaultPort(), 80);
}

TEST_F(Service, RunsASeriesFromConnectionToFile)
{
    QSignalSpy mine(&client, &HalvoClient::monitorSignal);
    QSignalSpy progress(&client, &HalvoClient::progressSignal);
    QSignalSpy notMine(&other, &HalvoClient::monitorSignal);
    QSignalSpy frames(&other, &HalvoClient::newFrame);
    testing::internal::CaptureStdout();
    connectToUnit();
    service->setNImages(3);
    ASSERT_TRUE(idle());
    EXPECT_EQ(service->nImages(false)->value, 3);
    EXPECT_EQ(runSeries(), "good");
    EXPECT_TRUE(waitFor([&] {
        return !progress.empty() && progress.back()[0].value<SeriesProgress>().written == 3 &&
               !progress.back()[0].value<SeriesProgress>().fileOpen;
    }));
    EXPECT_TRUE(waitFor([&] { return !mine.empty(); }));
    const auto picture = mine.front()[0].value<morvend::imglib::MImage>();
    EXPECT_EQ(picture.width(), 96);
    EXPECT_EQ(picture.height(), 80);
    EXPECT_GT(frames.size(), 0);
    EXPECT_EQ(notMine.size(), 0);
    EXPECT_EQ(progress.back()[0].value<SeriesProgress>().lost, 0);
    EXPECT_TRUE(std::filesystem::exists(folder / "x_master.h5"));
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_THAT(printed, HasSubstr("\nDEBUG NIMAGES: 3\n"));
    EXPECT_THAT(printed, HasSubstr("Number of open HALVO requests: 0\n"));
    EXPECT_THAT(errors, testing::IsEmpty());

    EXPECT_EQ(runSeries(), "good");
    EXPECT_EQ(service->fileName().toStdString(), folder / "x_001_master.h5");
}

TEST_F(Service, ThinsThePicturesOfAClient)
{
    QSignalSpy mine(&client, &HalvoClient::monitorSignal);
    QSignalSpy frames(service.get(), &HalvoService::newFrame);
    service->setMonitorMinPause(1e9);
    connectToUnit();
    service->setNImages(5);
    ASSERT_TRUE(idle());
    EXPECT_EQ(runSeries(), "good");
    EXPECT_TRUE(waitFor([&] { return !frames.empty() && frames.back()[2].toInt() == 4; }));
    EXPECT_EQ(mine.size(), 1);
    service->setMonitorMinPause(0);
    EXPECT_EQ(runSeries(), "good");
    EXPECT_EQ(mine.size(), 1) << "the pause is that of the first frame";
}

/// A unit that answers nothing but its status.
class StatusOnly : public Service {
protected:
    QByteArray answer = R"({"status": "idle", "error": false})";
    tarvik::simulator::FaultScript faults;
    tarvik::simulator::HttpServer server{
        [this](const tarvik::simulator::Request& request,
               const tarvik::simulator::Respond& respond) {
            if (request.path.endsWith("status"))
                respond({200, answer});
            else
                respond({200, R"({"type": "string", "access": "r", "value": "x"})"});
        },
        faults};
};

TEST_F(StatusOnly, IsMadeOfWordAndFlagAndAnErrorEndsTheConnection)
{
    server.listen(0);
    for (const auto& [word, flag, status] : {std::tuple{"idle", "false", Status::Ready},
                                             {"error", "false", Status::Ready},
                                             {"initialize", "false", Status::Initializing},
                                             {"initialize", "true", Status::NotAvailable},
                                             {"error", "true", Status::Error}}) {
        SCOPED_TRACE(std::string(word) + flag);
        answer = R"({"status": "idle", "error": false})";
        errors.clear();
        ASSERT_TRUE(service->setHost(QString("127.0.0.1:%1").arg(server.port())));
        service->setConnected(true);
        ASSERT_TRUE(idle());
        ASSERT_TRUE(service->connected());
        answer = QString(R"({"status": "%1", "error": %2})").arg(word, flag).toUtf8();
        service->abortDetector();
        ASSERT_TRUE(idle());
        const bool good = status == Status::Ready || status == Status::Initializing;
        EXPECT_EQ(service->connected(), good);
        EXPECT_EQ(service->state(false), good ? std::optional(status) : std::nullopt);
        EXPECT_EQ(std::count(errors.begin(), errors.end(), "Lost connection to detector"), !good);
    }
}

TEST_F(Service, AStartWaitsForOpenRequests)
{
    connectToUnit();
    log.take();
    unit.fault("PUT */nimages times=1 delay 200");
    service->setNImages(2);
    client.startDetector();
    EXPECT_EQ(service->seriesClient(), nullptr) << "not before it starts";
    EXPECT_TRUE(waitFor([this] { return !series.empty(); }) && idle());
    EXPECT_THAT(log.take(), ElementsAre("closed", "series starts", "closed"));

    unit.fault("PUT */nimages hang");
    service->setNImages(3);
    client.startDetector();
    series.clear();
    service->abortDetector();
    EXPECT_TRUE(idle());
    EXPECT_EQ(starts.size(), 1) << "the pending one is aborted with the request it waited for";
    EXPECT_THAT(series, ElementsAre("Series Aborted"));
}

TEST_F(Service, AnAbortEndsASeriesAtEachStage)
{
    connectToUnit();
    for (const char* stage :
         {"GET */stream/parameters/version", "PUT */nimages", "GET */frame_time",
          "GET */filewriter/parameters/enabled", "PUT */filewriter/parameters/enabled",
          "POST */arm", "POST */trigger"}) {
        SCOPED_TRACE(stage);
        unit.fault(std::string(stage) + " times=1 hang");
        const int struck = unit.struck();
        series.clear();
        client.startDetector();
        ASSERT_TRUE(waitFor([&] { return unit.struck() > struck; }));
        QSignalSpy aborted(service.get(), &HalvoService::finishedAbort);
        service->abortDetector();
        ASSERT_TRUE(waitFor([&] { return !series.empty() && !aborted.empty(); }) && idle());
        EXPECT_NE(series.front(), "good");
        EXPECT_TRUE(aborted[0][0].toBool());
        EXPECT_TRUE(service->connected());
        EXPECT_EQ(service->state(false), Status::Ready);
        morvend::imglib::MHalvoFileWriter writer(SimulatedDetector::Host, unit.port());
        EXPECT_TRUE(writer.enabled(Never));
    }
    // Before anything has begun, and while frames come.
    client.startDetector();
    series.clear();
    service->abortDetector();
    EXPECT_TRUE(waitFor([this] { return !series.empty(); }) && idle());
    EXPECT_NE(series.front(), "good");
    service->setNImages(1'000'000);
    ASSERT_TRUE(idle());
    QSignalSpy frames(service.get(), &HalvoService::newFrame);
    series.clear();
    client.startDetector();
    EXPECT_TRUE(waitFor([&] { return !frames.empty(); }));
    service->abortDetector();
    EXPECT_TRUE(waitFor([this] { return !series.empty(); }) && idle());
    EXPECT_NE(series.front(), "good");
    service->setNImages(2);
    ASSERT_TRUE(idle());
    EXPECT_EQ(runSeries(), "good");
    service->abortDetector();
    EXPECT_TRUE(idle());
    EXPECT_TRUE(service->connected());
}

TEST_F(Service, ALostDetectorEndsTheConnectionUntilItIsBack)
{
    connectToUnit();
    unit.fault("* * drop");
    service->abortDetector();
    EXPECT_TRUE(idle());
    EXPECT_THAT(errors, Contains("Lost connection to detector"));
    EXPECT_FALSE(service->connected());
    EXPECT_FALSE(service->nImages(true));
    unit.heal();
    initialized.clear();
    connectToUnit();
    EXPECT_EQ(runSeries(), "good");
}

TEST_F(Service, OnlyTheLastConnectionCounts)
{
    SimulatedDetector silent;
    silent.fault("* * hang");
    ASSERT_TRUE(service->setHost(addressOf(silent)));
    service->setConnected(true);
    ASSERT_TRUE(waitFor([&] { return silent.struck() > 0; }));
    connectToUnit();
    service->setConnected(false);
    EXPECT_TRUE(idle());
    EXPECT_FALSE(service->connected());
}

TEST(ServiceEnd, WaitsForNoAnswerAndNoQueue)
{
    SimulatedDetector raw({96, 80}, false);
    raw.fault("* */initialize hang\n* */nimages hang");
    auto service = std::make_unique<HalvoService>(nullptr, "/proc/none/TARVIK.conf");
    ASSERT_TRUE(service->setHost(addressOf(raw)));
    service->setConnected(true);
    for (std::uint32_t i = 0; i < 100; ++i)
        emit service->nImagesSignal({SimulatedDetector::Host, raw.port(), {}, 1000 + i});
    ASSERT_TRUE(waitFor([&] { return raw.struck() > 0; }));
    service.reset();
    EXPECT_EQ(raw.struck(), 1) << "nothing of the queue is begun";
}

}  // namespace

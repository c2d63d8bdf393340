// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The detector's panel under keys and mouse, with a simulated detector.
#include "gui/panels/detector/HalvoCtrlWidget.h"
#include "gui/panels/detector/InfoField.h"
#include "gui/panels/detector/SeriesLine.h"
#include "gui/panels/detector/TextEdit.h"
#include "gui/panels/detector/TextField.h"
#include "logic/detector/HalvoClient.h"
#include "tests/support/SimulatedDetector.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>

using tarvik::tests::SimulatedDetector;
using tarvik::tests::TempFolder;
using testing::StartsWith;

namespace {

/// The panel of one view, and what a user sees of it.
struct View {
    View(const std::shared_ptr<HalvoService>& service, const QString& settings)
        : client(service)
        , panel(1, &client, settings)
    {
        QObject::connect(&client, &HalvoClient::monitorSignal, [this] { ++pictures; });
        panel.resize(340, 700);
        panel.show();
    }
    QLabel& label(const QString& text) const
    {
        for (QLabel* each : panel.findChildren<QLabel*>())
            if (each->text() == text)
                return *each;
        throw std::runtime_error("no label " + text.toStdString());
    }
    QLineEdit& field(const char* name) const
    {
        return *qobject_cast<QLineEdit*>(label(name).buddy());
    }
    std::string text(const char* name) const { return field(name).text().toStdString(); }
    void type(const char* name, const QString& text, bool leave = true) const
    {
        field(name).selectAll();
        QTest::keyClicks(&field(name), text);
        if (leave)
            QTest::keyClick(&field(name), Qt::Key_Return);
    }
    /// The label that stands right of a widget.
    std::string besides(const QWidget& widget) const
    {
        for (QLabel* each : panel.findChildren<QLabel*>())
            if (each->x() > widget.x() &&
                each->geometry().top() <= widget.geometry().center().y() &&
                each->geometry().bottom() >= widget.geometry().center().y())
                return each->text().toStdString();
        return {};
    }
    std::string state() const { return besides(label("Detector State")); }
    std::string connection() const { return besides(*panel.findChild<QStackedWidget*>()); }
    bool showsConnect() const { return panel.findChild<QStackedWidget*>()->currentIndex() == 0; }
    template <class Button>
    Button& button(const QString& tip) const
    {
        for (Button* each : panel.findChildren<Button*>())
            if (each->toolTip() == tip || each->text() == tip)
                return *each;
        throw std::runtime_error("no button " + tip.toStdString());
    }
    QPushButton& start() const { return button<QPushButton>("Start/abort taking images"); }
    QProgressBar& bar() const { return *panel.findChild<QProgressBar*>(); }
    bool busy() const { return bar().maximum() == 0; }
    InfoField& info() const { return *panel.findChild<InfoField*>(); }
    SeriesLine& counts() const { return *panel.findChild<SeriesLine*>(); }
    int count(const char* name) const { return counts().findChild<QLabel*>(name)->text().toInt(); }
    bool becomes(const char* wanted) const
    {
        return waitFor([&] { return state() == wanted; });
    }

    HalvoClient client;
    HalvoCtrlWidget panel;
    int pictures = 0;
};

class PanelTest : public testing::Test {
protected:
    /// Through the panel, until all its fields are filled.
    void connectDetector()
    {
        const QString host = QStringLiteral("127.0.0.1:%1").arg(detector.port());
        view.type("Host", host);
        EXPECT_EQ(view.connection(), "Connecting to " + host.toStdString() + " \u2026");
        EXPECT_TRUE(view.becomes("Ready"));
        EXPECT_TRUE(waitFor([&] { return !view.text("Number of Images").empty(); }));
    }
    void startSeries(int images)
    {
        view.type("File Pattern", QString::fromStdString(folder / "x"));
        view.type("Number of Images", QString::number(images));
        EXPECT_TRUE(waitFor([&] { return view.client.nImages(false)->value == images; }));
        QTest::mouseClick(&view.start(), Qt::LeftButton);
        EXPECT_TRUE(view.becomes("Acquiring"));
        EXPECT_EQ(view.start().text(), "Abort");
    }

    TempFolder folder;
    QString settings = QString::fromStdString(folder / "TARVIK.conf");
    SimulatedDetector detector;
    std::shared_ptr<HalvoService> service = std::make_shared<HalvoService>(nullptr, settings);
    View view{service, settings};
};

TEST_F(PanelTest, OffersNothingBeforeItIsConnected)
{
    EXPECT_EQ(view.state(), "Not Available");
    EXPECT_EQ(view.connection(), "Disconnected");
    EXPECT_TRUE(view.showsConnect());
    for (const char* name : {"Number of Images", "Frame Time (s)", "Photon Energy (eV)"})
        EXPECT_TRUE(view.field(name).isVisible() && !view.field(name).isEnabled()) << name;
    for (const char* name : {"Count Time (s)", "Threshold Energy (eV)", "Trigger Mode"})
        EXPECT_FALSE(view.field(name).isVisible() || view.label(name).isVisible()) << name;
    EXPECT_FALSE(view.start().isEnabled());
    EXPECT_EQ(view.text("File Pattern"), view.client.fileNamePattern().toStdString());
    EXPECT_EQ(view.panel.findChild<TextField*>()->fullText(), view.client.fileName());
    auto& mode = *view.panel.findChild<QComboBox*>();
    EXPECT_FALSE(mode.isVisible());
    mode.setCurrentIndex(1);
    EXPECT_EQ(view.client.mode(), HalvoClient::Mode::Manual);
    EXPECT_TRUE(view.field("Trigger Mode").isVisible());
}

TEST_F(PanelTest, OffersTheLastAddress)
{
    HalvoService::setDefaultHost("beamline");
    HalvoService::setDefaultPort(8080);
    const View restarted(std::make_shared<HalvoService>(nullptr, settings), settings);
    EXPECT_EQ(restarted.text("Host"), "beamline:8080");
}

TEST_F(PanelTest, TakesASeries)
{
    connectDetector();
    EXPECT_EQ(view.connection(), "Connected: Simulated detector 96 x 80 SIM-0001");
    EXPECT_FALSE(view.showsConnect());
    EXPECT_EQ(view.text("Photon Energy (eV)"), "8047.8");
    view.panel.findChild<QComboBox*>()->setCurrentIndex(1);  // all fields

    view.type("Frame Time (s)", "1e-2");
    const auto takes = [&](const char* field, const char* typed, auto value) {
        view.type(field, typed);
        EXPECT_TRUE(waitFor(value)) << field << ' ' << view.info().text().toStdString();
    };
    auto& c = view.client;
    takes("Frame Time (s)", "1e-2", [&] { return c.frameTime(false)->value == 0.01; });
    EXPECT_EQ(view.text("Frame Time (s)"), "1e-2") << "as it was typed";
    takes("Photon Energy (eV)", "Mo", [&] { return c.photonEnergy(false)->value > 17479; });
    EXPECT_EQ(view.text("Photon Energy (eV)"), "17479.3");
    takes("Photon Energy (eV)", "12000", [&] { return c.thresholdEnergy(false)->value == 6000; });
    takes("Count Time (s)", "0.005", [&] { return c.countTime(false)->value == 0.005; });
    takes("Threshold Energy (eV)", "5e3", [&] { return c.thresholdEnergy(false)->value == 5000; });
    takes("Trigger Mode", "exts", [&] { return c.triggerMode(false)->value == "exts"; });
    for (const char* name : {"Apply flatfield correction", "Apply pixel mask"}) {
        auto& box = view.button<QCheckBox>(name);
        const bool before = box.isChecked();
        box.click();
        EXPECT_TRUE(waitFor([&] {
            return (name[6] == 'f' ? c.flatfieldCorrectionApplied(false)
                                   : c.pixelMaskApplied(false)) != before;
        })) << name;
    }
    view.panel.findChild<QComboBox*>()->setCurrentIndex(0);

    startSeries(20);
    EXPECT_TRUE(waitFor([&] { return view.bar().text() == "20/20"; }));
    EXPECT_TRUE(view.becomes("Ready"));
    EXPECT_EQ(view.start().text(), "Start");
    EXPECT_TRUE(
        waitFor([&] { return QFile::exists(QString::fromStdString(folder / "x_master.h5")); }));
    EXPECT_TRUE(waitFor([&] { return view.count("written") == 20; }));
    EXPECT_EQ(view.count("lost"), 0);
    EXPECT_TRUE(waitFor([&] { return view.count("waiting") == 0; })) << "the last one is shown";
    EXPECT_EQ(view.count("shown"), view.pictures);
    EXPECT_GE(view.pictures, 1);
    EXPECT_EQ(view.bar().text(), "20/20") << "stays until the next series";
}

TEST_F(PanelTest, DropsWhatIsNoValue)
{
    connectDetector();
    QSignalSpy numbers(service.get(), &HalvoService::setNImagesSignal);
    QSignalSpy energies(service.get(), &HalvoService::setPhotonEnergySignal);
    QSignalSpy elements(service.get(), &HalvoService::setElementSignal);
    for (const char* typed : {"Cux", "C1", "", "1,5"})
        view.type("Photon Energy (eV)", typed);
    view.type("Number of Images", "1.5");
    view.type("Frame Time (s)", "soon");
    EXPECT_EQ(numbers.size() + energies.size() + elements.size(), 0);
    EXPECT_EQ(view.text("Frame Time (s)"), "soon");
    view.type("Photon Energy (eV)", "Cu");
    EXPECT_EQ(elements.size(), 1);
    EXPECT_TRUE(waitFor([&] { return view.text("Frame Time (s)") == "0.1"; }))
        << "the answer corrects the others";
    EXPECT_EQ(view.text("Photon Energy (eV)"), "8047.8");
}

TEST_F(PanelTest, ReportsRefusalsUntilTheNextKey)
{
    connectDetector();
    view.type("Number of Images", "0");
    EXPECT_TRUE(waitFor([&] { return view.info().isVisible(); }));
    EXPECT_EQ(view.info().text().toStdString(),
              "<i>Error setting number of images: Not within range [1,1000000]\n</i>");
    EXPECT_EQ(view.text("Number of Images"), "1");
    view.type("Number of Images", "7", false);
    EXPECT_FALSE(view.info().isVisible());
    emit service->configChanged(true);
    EXPECT_EQ(view.text("Number of Images"), "7") << "is still being typed";
}

TEST_F(PanelTest, AHostThatIsNoneConnectsNothing)
{
    QSignalSpy requests(service.get(), &HalvoService::initDetector);
    view.type("Host", "[");
    EXPECT_TRUE(view.info().isVisible());
    EXPECT_THAT(view.info().text().toStdString(), StartsWith("<i>"));
    EXPECT_EQ(requests.size(), 0);
    EXPECT_TRUE(view.panel.findChild<QStackedWidget*>()->isEnabled());
}

TEST_F(PanelTest, AbortsASeries)
{
    connectDetector();
    startSeries(100000);
    EXPECT_TRUE(waitFor([&] { return view.bar().value() > 2; }));
    QTest::mouseClick(&view.start(), Qt::LeftButton);
    EXPECT_TRUE(view.becomes("Ready"));
    EXPECT_EQ(view.start().text(), "Start");
    EXPECT_TRUE(view.start().isEnabled());
    EXPECT_FALSE(view.busy());
    const auto file = QString::fromStdString(folder / "x_master.h5");
    EXPECT_TRUE(waitFor([&] { return QFile::exists(file); })) << "what there was is kept";
}

TEST_F(PanelTest, LosesTheDetectorAndFindsItAgain)
{
    connectDetector();
    QSignalSpy errors(&view.client, &HalvoClient::error);
    detector.fault("* * drop");
    EXPECT_TRUE(waitFor([&] { return view.showsConnect(); })) << "after the next poll";
    EXPECT_TRUE(errors.contains(QVariantList{"Lost connection to detector"}));
    EXPECT_TRUE(view.info().isVisible());
    EXPECT_EQ(view.state(), "Not Available");
    EXPECT_FALSE(view.start().isEnabled());

    QTest::keyClick(&view.field("Host"), Qt::Key_Return);
    EXPECT_TRUE(waitFor([&] { return view.info().text().startsWith("Initalize: "); }));
    EXPECT_EQ(view.connection(), "Disconnected");
    detector.heal();
    connectDetector();
    EXPECT_FALSE(view.info().isVisible());
    QTest::mouseClick(&view.button<QPushButton>("Disconnect"), Qt::LeftButton);
    EXPECT_EQ(view.connection(), "Disconnected");
}

TEST_F(PanelTest, AnotherViewShowsNothingOfTheSeries)
{
    connectDetector();
    View other(service, settings);
    EXPECT_EQ(other.state(), "Ready") << "the connection is common";
    startSeries(20);
    EXPECT_TRUE(other.becomes("Acquiring"));
    EXPECT_EQ(other.start().text(), "Abort");
    EXPECT_TRUE(waitFor([&] { return view.count("written") == 20; }));
    EXPECT_TRUE(other.becomes("Ready"));
    EXPECT_GE(view.pictures, 1);
    EXPECT_EQ(other.pictures, 0);
    EXPECT_TRUE(other.counts().isHidden());
    QTest::mouseClick(&other.start(), Qt::LeftButton);
    EXPECT_TRUE(waitFor([&] { return other.count("received") > 0; }));
    EXPECT_TRUE(view.counts().isHidden()) << "the numbers of its own series are over";
}

TEST_F(PanelTest, AdministratorsDecideWhetherUsersSeeIt)
{
    View other(service, settings);
    view.button<QCheckBox>("Show in user mode").click();
    EXPECT_FALSE(service->userPermission());
    EXPECT_FALSE(other.button<QCheckBox>("Show in user mode").isChecked());
    const View user(service, "/proc/none/TARVIK.conf");
    EXPECT_THROW(user.button<QCheckBox>("Show in user mode"), std::runtime_error);
}

}  // namespace

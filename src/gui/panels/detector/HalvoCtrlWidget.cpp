// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/detector/HalvoCtrlWidget.h"

#include "gui/kit/PopupButton.h"
#include "gui/panels/detector/HalvoCtrlLayout.h"
#include "gui/panels/detector/InfoField.h"
#include "gui/panels/detector/OptToString.h"
#include "gui/panels/detector/SeriesLine.h"
#include "gui/panels/detector/TextEdit.h"
#include "gui/panels/detector/TextField.h"
#include "logic/detector/HalvoClient.h"
#include "logic/detector/HalvoState.h"
#include "logic/support/GlobalStyle.h"

#include <QCheckBox>
#include <QComboBox>
#include <QMenu>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace {

using Status = HalvoState::Status;

constexpr int DefaultPort = 80;

bool sameAddress(const QString& one, const QString& other)
{
    const QUrl first = QUrl::fromUserInput(one);
    const QUrl second = QUrl::fromUserInput(other);
    return first.host() == second.host() && first.port(DefaultPort) == second.port(DefaultPort);
}

/// Why a text is no address: QUrl::fromUserInput() does not say it.
QString addressFault(const QString& text)
{
    const QString fault = QUrl(QStringLiteral("http://") + text).errorString();
    return fault.isEmpty() ? QStringLiteral("Not the address of a host")
                           : fault.section(QLatin1Char(';'), 0, 0);
}

/// The address that was used last; empty if there was none.
QString lastAddress()
{
    const QString host = HalvoClient::defaultHost();
    const int port = HalvoClient::defaultPort();
    return host.isEmpty() || port == DefaultPort ? host
                                                 : QStringLiteral("%1:%2").arg(host).arg(port);
}

/// Shows a text from the detector. What is being typed stays: its own report is still to come.
void fill(TextEdit* field, const QString& text)
{
    if (text != field->text() && !field->pending())
        field->setText(text);
}

template <class Number>
void fill(TextEdit* field, const std::optional<HalvoState::Limited<Number>>& reported)
{
    fill(field, optToString(field->text(),
                            reported ? std::optional(reported->value) : std::optional<Number>()));
}

void fill(QCheckBox* box, std::optional<bool> reported)
{
    const QSignalBlocker quiet(box);
    box->setChecked(reported.value_or(false));
}

}  // namespace

HalvoCtrlWidget::HalvoCtrlWidget(unsigned long long id, HalvoClient* client,
                                 const QString& machineSettings)
    : SideBar(id)
    , _client(client)
    , _ui(std::make_unique<HalvoCtrlLayout>(*this, GlobalSettings(machineSettings).isWritable()))
{
    setTitle(QStringLiteral("Data Acquisition"));
    setInfoText(QStringLiteral("Take images with a detector"));
    _connectService();
    _connectFields();
    if (_ui->userMode)
        _ui->userMode->setChecked(client->userPermission());
    _ui->host->setText(lastAddress());
    // Another panel may have connected before this one was made.
    _updateMode();
    _updateFileName();
    _updateConfig(true);
    _updateState(true);
}

HalvoCtrlWidget::~HalvoCtrlWidget() = default;

void HalvoCtrlWidget::_connectService()
{
    using C = HalvoClient;
    using W = HalvoCtrlWidget;
    connect(_client, &C::stateChanged, this, &W::_updateState);
    connect(_client, &C::configChanged, this, &W::_updateConfig);
    connect(_client, &C::fileNameChanged, this, &W::_updateFileName);
    connect(_client, &C::modeChanged, this, &W::_updateMode);
    connect(_client, &C::finished, this, &W::_finished);
    connect(_client, &C::finishedInitialize, this, &W::_finishedInitialize);
    connect(_client, &C::finishedSeries, this, &W::_finishedSeries);
    connect(_client, &C::finishedAbort, this, &W::_finishedAbort);
    connect(_client, &C::error, this, &W::_error);
    connect(_client, &C::newFrame, this, &W::_newFrame);
    connect(_client, &C::monitorSignal, this, &W::_newPicture);
    connect(_client, &C::progressSignal, this, &W::_newProgress);
    connect(_client, &C::permissionSignal, this, [this](bool permitted) {
        if (!_ui->userMode)
            return;
        const QSignalBlocker quiet(_ui->userMode);
        _ui->userMode->setChecked(permitted);
    });
}

void HalvoCtrlWidget::_connectFields()
{
    using W = HalvoCtrlWidget;
    if (_ui->userMode)
        connect(_ui->userMode, &QCheckBox::toggled, this, &W::_setVisibleInUserMode);
    const auto accepted = [this] {
        // First, since the focus that comes back to a field would clear what _connect() reports.
        _ui->connectButton->hideMenu();
        _connect();
    };
    connect(_ui->connectButton->menu(), &QMenu::aboutToShow, _ui->host, &QLineEdit::selectAll);
    connect(_ui->ok, &QPushButton::clicked, this, accepted);
    connect(_ui->host, &QLineEdit::returnPressed, this, accepted);
    connect(_ui->host, &TextEdit::delayedTextEdited, this, &W::_setHost);
    connect(_ui->disconnectButton, &QPushButton::clicked, this, &W::_disconnect);
    connect(_ui->start, &QPushButton::clicked, this, &W::_series);
    connect(_ui->mode, &QComboBox::currentIndexChanged, this, &W::_setAdvancedMode);
    connect(_ui->filePattern, &QLineEdit::textEdited, this, &W::_setFilePattern);
    connect(_ui->nImages, &TextEdit::delayedTextEdited, this, &W::_setNImages);
    connect(_ui->frameTime, &TextEdit::delayedTextEdited, this, &W::_setFrameTime);
    connect(_ui->photonEnergy, &TextEdit::delayedTextEdited, this, &W::_setPhotonEnergy);
    connect(_ui->countTime, &TextEdit::delayedTextEdited, this, &W::_setCountTime);
    connect(_ui->thresholdEnergy, &TextEdit::delayedTextEdited, this, &W::_setThresholdEnergy);
    connect(_ui->triggerMode, &TextEdit::delayedTextEdited, this, &W::_setTriggerMode);
    connect(_ui->flatfield, &QCheckBox::toggled, this, &W::_setFlatfieldCorrectionApplied);
    connect(_ui->pixelMask, &QCheckBox::toggled, this, &W::_setPixelMaskApplied);
}

void HalvoCtrlWidget::paintEvent(QPaintEvent* event)
{
    QPainter(this).fillRect(rect(), GLOBALSTYLE::sidebarColor);
    SideBar::paintEvent(event);
}

void HalvoCtrlWidget::_updateState(bool success)
{
    const std::optional<Status> state = _client->state(success);
    if (state == Status::Acquiring)
        _showRunning();
    else
        _showIdle(state == Status::Ready);
    // A series of another view: the counts of an earlier one of this view are over.
    if (state == Status::Acquiring && _client->service()->seriesClient() != _client)
        _ui->counts->clear();
    const auto description = _client->detectorDescription(success);
    const auto number = _client->detectorNumber(success);
    _ui->connection->setCurrentWidget(
        _client->connected() ? static_cast<QWidget*>(_ui->disconnectButton) : _ui->connectButton);
    _ui->connectionLabel->setText(
        description && number ? QStringLiteral("Connected: %1 %2").arg(*description, *number)
                              : QStringLiteral("Disconnected"));
    _ui->stateLabel->setText(HalvoState::label(state.value_or(Status::NotAvailable)));
}

void HalvoCtrlWidget::_showIdle(bool ready)
{
    _running = false;
    for (QWidget* widget : _ui->steered())
        widget->setEnabled(ready);
    _ui->start->setText(QStringLiteral("Start"));
    if (_ui->progress->maximum() == 0)
        _ui->progress->setMaximum(std::max(_nImages, 1));
}

void HalvoCtrlWidget::_showRunning()
{
    _running = true;
    for (QWidget* widget : _ui->steered())
        widget->setEnabled(true);
    _ui->start->setText(QStringLiteral("Abort"));
    // Busy until the first frame.
    _ui->progress->setMaximum(_ui->progress->value() >= 1 ? _nImages : 0);
}

void HalvoCtrlWidget::_updateConfig(bool success)
{
    // The service begins with a text that is no address where the port is not 80.
    const QString host = _client->host();
    if (!QUrl::fromUserInput(host).host().isEmpty() && !sameAddress(_ui->host->text(), host))
        fill(_ui->host, host);
    const auto nImages = _client->nImages(success);
    if (nImages) {
        _nImages = nImages->value;
        if (!_running)
            _ui->progress->setMaximum(_nImages);
    }
    fill(_ui->nImages, nImages);
    fill(_ui->frameTime, _client->frameTime(success));
    fill(_ui->countTime, _client->countTime(success));
    fill(_ui->photonEnergy, _client->photonEnergy(success));
    fill(_ui->thresholdEnergy, _client->thresholdEnergy(success));
    const auto triggerMode = _client->triggerMode(success);
    fill(_ui->triggerMode, triggerMode ? triggerMode->value : QString());
    fill(_ui->flatfield, _client->flatfieldCorrectionApplied(success));
    fill(_ui->pixelMask, _client->pixelMaskApplied(success));
}

void HalvoCtrlWidget::_updateFileName()
{
    // What is being typed is the pattern already.
    if (const QString pattern = _client->fileNamePattern(); pattern != _ui->filePattern->text())
        _ui->filePattern->setText(pattern);
    _ui->pathName->setText(_client->fileName());
}

void HalvoCtrlWidget::_updateMode()
{
    const QSignalBlocker quiet(_ui->mode);
    _ui->mode->setCurrentIndex(static_cast<int>(_client->mode()));
}

void HalvoCtrlWidget::_finished() {}

void HalvoCtrlWidget::_finish(const QString& what, bool success, const QString& error)
{
    if (success)
        _ui->info->clearReport();
    else
        _ui->info->report(what + error);
    _updateState(true);
}

void HalvoCtrlWidget::_finishedInitialize(bool success, const QString& error)
{
    _ui->connection->setEnabled(true);
    _finish(QStringLiteral("Initalize: "), success, error);
}

void HalvoCtrlWidget::_finishedSeries(bool success, const QString& error)
{
    _finish(QStringLiteral("Starting detector: "), success, error);
}

void HalvoCtrlWidget::_finishedAbort(bool success, const QString& error)
{
    _finish(QStringLiteral("Aborting dectector: "), success, error);
}

void HalvoCtrlWidget::_error(const QString& text) { _ui->info->reportError(text); }

void HalvoCtrlWidget::_newFrame(const ImageData& /*image*/, int seriesId, int frameId)
{
    if (seriesId != std::exchange(_seriesId, seriesId)) {
        _pictures = 0;
        _shownFrame = -1;
    }
    _lastFrame = frameId;
    _ui->progress->setMaximum(_nImages);
    _ui->progress->setValue(frameId + 1);
}

void HalvoCtrlWidget::_newPicture()
{
    // A picture is the newest frame at its time.
    _shownFrame = _lastFrame;
    ++_pictures;
    // The last one comes after the end of the series.
    if (!_running)
        _showCounts();
}

void HalvoCtrlWidget::_newProgress(const SeriesProgress& progress)
{
    _progress = progress;
    _showCounts();
}

void HalvoCtrlWidget::_showCounts()
{
    // Of what the display is handed, the view gets what it can show in peace.
    SeriesProgress counts = _progress;
    const bool complete = !_running && _shownFrame == _lastFrame;
    const std::int64_t waiting =
        complete ? 0 : std::max<std::int64_t>(counts.received + counts.lost - _shownFrame - 1, 0);
    counts.shown = _pictures;
    counts.leftOut = counts.received - counts.shown - waiting;
    _ui->counts->setProgress(counts);
}

bool HalvoCtrlWidget::_setHost()
{
    const QSignalBlocker quiet(_ui->host);
    const QString text = _ui->host->text();
    const bool accepted = _client->setHost(text);
    if (!accepted && _ui->info->text().isEmpty())
        _ui->info->reportError(addressFault(text));
    return accepted;
}

void HalvoCtrlWidget::_connect()
{
    if (!_setHost())
        return;
    _ui->connection->setEnabled(false);
    _client->setConnected(true);
    // Until the next state: the answer of a slow detector takes seconds.
    _ui->connectionLabel->setText(QStringLiteral("Connecting to %1 \u2026").arg(_client->host()));
}

void HalvoCtrlWidget::_disconnect() { _client->setConnected(false); }

void HalvoCtrlWidget::_series()
{
    if (_running) {
        _client->abortDetector();
        _ui->start->setEnabled(false);
        return;
    }
    _running = true;
    if (const auto nImages = _client->nImages(true))
        _nImages = nImages->value;
    _ui->progress->setMaximum(0);
    _newProgress({});
    _client->startDetector();
    _ui->start->setText(QStringLiteral("Abort"));
}

void HalvoCtrlWidget::_setFilePattern(const QString& text)
{
    _client->setFileNamePattern(text);
    _ui->pathName->setText(_client->fileName());
}

void HalvoCtrlWidget::_setNImages(const QString& text)
{
    bool number = false;
    const int value = text.toInt(&number);
    if (number)
        _client->setNImages(value);
}

void HalvoCtrlWidget::_setFrameTime(const QString& text)
{
    bool number = false;
    const double value = text.toDouble(&number);
    if (number)
        _client->setFrameTime(value);
}

void HalvoCtrlWidget::_setCountTime(const QString& text)
{
    bool number = false;
    const double value = text.toDouble(&number);
    if (number)
        _client->setCountTime(value);
}

void HalvoCtrlWidget::_setThresholdEnergy(const QString& text)
{
    bool number = false;
    const double value = text.toDouble(&number);
    if (number)
        _client->setThresholdEnergy(value);
}

void HalvoCtrlWidget::_setPhotonEnergy(const QString& text)
{
    bool number = false;
    const double value = text.toDouble(&number);
    const bool letters =
        std::all_of(text.begin(), text.end(), [](QChar c) { return c.isLetter(); });
    if (number)
        _client->setPhotonEnergy(value);
    else if (letters && (text.size() == 1 || text.size() == 2))
        _client->setElement(text);
}

void HalvoCtrlWidget::_setTriggerMode(const QString& text) { _client->setTriggerMode(text); }

void HalvoCtrlWidget::_setFlatfieldCorrectionApplied(bool on)
{
    _client->setFlatfieldCorrectionApplied(on);
}

void HalvoCtrlWidget::_setPixelMaskApplied(bool on) { _client->setPixelMaskApplied(on); }

void HalvoCtrlWidget::_setAdvancedMode(int index)
{
    _client->setMode(index == 0 ? HalvoService::Mode::Automatic : HalvoService::Mode::Manual);
    for (QWidget* widget : std::as_const(_ui->advanced))
        widget->setVisible(index != 0);
    _ui->info->clearReport();
}

void HalvoCtrlWidget::_setVisibleInUserMode(bool visible) { _client->setUserPermission(visible); }

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/detector/HalvoCtrlLayout.h"

#include "gui/kit/PopupButton.h"
#include "gui/panels/detector/InfoField.h"
#include "gui/panels/detector/SeriesLine.h"
#include "gui/panels/detector/TextEdit.h"
#include "gui/panels/detector/TextField.h"
#include "logic/support/GlobalStyle.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>

namespace {

// Black text is for the white fields; what stands on the ground of the panel is light.
const char* const PanelStyle = R"(
QWidget {color: black;}
QComboBox {border: 1px solid black; height: 20px; min-width: 30px; background-color: transparent;}
QComboBox::down-arrow {image: url(:icons/down.svg);}
QLabel, QCheckBox, QToolTip, QPushButton, QToolButton, QProgressBar {color: rgb(232,232,232);}
QLineEdit {background-color: white; selection-color: white; selection-background-color: rgb(20,100,220);}
QLineEdit:disabled {background-color: rgb(130,130,130); color: rgb(60,60,60);}
QPushButton:disabled, QToolButton:disabled, QLabel:disabled, QCheckBox:disabled {color: rgb(130,130,130);}
QToolButton, QStackedWidget > QPushButton {background-color: rgb(75,75,75); border: 1px solid rgb(100,100,100);
    border-radius: 2px; padding: 0px; margin: 0px; font-size: 10pt; min-height: 26px; max-height: 26px;}
QToolButton:hover {background-color: rgb(90,90,90);}
QToolButton::menu-indicator {image: none;}
QProgressBar {border: 1px solid rgb(100,100,100); background-color: rgb(40,40,40); text-align: center;}
QProgressBar::chunk {background-color: rgb(20,100,220); width: 20px;}
QMenu {border: 1px solid rgb(110,110,110); background-color: %1;}
)";

constexpr int RowHeight = 28;  // pixels, of a field and the label beside it

QLabel* plainLabel(const QString& text = {})
{
    auto* label = new QLabel(text);
    // Texts of the detector are no markup.
    label->setTextFormat(Qt::PlainText);
    return label;
}

}  // namespace

HalvoCtrlLayout::HalvoCtrlLayout(QWidget& panel, bool administrator)
{
    // Before there are children: the first one has its parent's sheet remembered.
    panel.setStyleSheet(panel.styleSheet() +
                        QString::fromLatin1(PanelStyle).arg(GLOBALSTYLE::sidebarColor.name()));
    info = new InfoField(&panel);
    mode = new QComboBox(&panel);
    auto* rows = new QVBoxLayout(&panel);
    if (administrator) {
        userMode = new QCheckBox(QStringLiteral("Show in user mode"));
        rows->addWidget(userMode);
    }
    rows->addSpacing(10);
    _addConnection(rows);
    rows->addSpacing(10);
    auto* separator = new QFrame;
    separator->setFrameStyle(int(QFrame::HLine) | int(QFrame::Sunken));
    separator->setFixedHeight(2);
    separator->setStyleSheet(QStringLiteral("background-color: rgb(100,100,100);"));
    rows->addWidget(separator);
    rows->addSpacing(10);
    _addFields(rows);
    _addSeries(rows);
    rows->addWidget(info);
    rows->addStretch();

    mode->addItems({QStringLiteral("Automatic"), QStringLiteral("Manual")});
    mode->setToolTip(QStringLiteral(
        "Switch between automatic and manual mode. Manual mode lets you configure extra "
        "parameters, which are automatically set in automatic mode"));
    mode->hide();
}

QList<QWidget*> HalvoCtrlLayout::steered() const
{
    return {nImages,     frameTime, photonEnergy, countTime, thresholdEnergy,
            triggerMode, flatfield, pixelMask,    start};
}

QWidget* HalvoCtrlLayout::_makeHostPopup()
{
    auto* popup = new QWidget;
    host = new TextEdit(QStringLiteral("Enter name or IP of host of HALVO control unit"), info);
    ok = new QPushButton(QStringLiteral("OK"));
    ok->setDefault(true);
    auto* row = new QHBoxLayout(popup);
    auto* label = plainLabel(QStringLiteral("Host"));
    label->setBuddy(host);
    host->setFixedWidth(220);
    row->addWidget(label);
    row->addWidget(host);
    row->addWidget(ok);
    popup->setFocusProxy(host);
    return popup;
}

void HalvoCtrlLayout::_addConnection(QVBoxLayout* rows)
{
    connectButton = new PopupButton(_makeHostPopup());
    connectButton->setText(QStringLiteral("Connect"));
    connectButton->setPopupMode(QToolButton::InstantPopup);
    connectButton->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    disconnectButton = new QPushButton(QStringLiteral("Disconnect"));
    disconnectButton->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    connection = new QStackedWidget;
    connection->setMaximumSize(70, 30);
    connection->addWidget(connectButton);
    connection->addWidget(disconnectButton);
    connectionLabel = plainLabel();
    connectionLabel->setWordWrap(true);
    // As high as the two lines that a detector's description takes, so that nothing below moves.
    connectionLabel->setMinimumHeight(48);
    connectionLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* row = new QHBoxLayout;
    row->addWidget(connection);
    row->addWidget(connectionLabel, 1);
    rows->addLayout(row);

    stateLabel = plainLabel();
    row = new QHBoxLayout;
    row->addWidget(plainLabel(QStringLiteral("Detector State")));
    row->addWidget(stateLabel);
    row->addStretch();
    rows->addLayout(row);
}

void HalvoCtrlLayout::_addFields(QVBoxLayout* rows)
{
    auto* grid = new QGridLayout;
    grid->setColumnStretch(1, 1);
    grid->setContentsMargins(0, 0, 0, 6);
    const Qt::Alignment corner = Qt::AlignLeft | Qt::AlignTop;
    const auto field = [&](int row, const char* name, const char* help) {
        auto* label = plainLabel(QString::fromLatin1(name));
        auto* edit = new TextEdit(QString::fromLatin1(help), info);
        label->setBuddy(edit);
        label->setFixedHeight(RowHeight);
        edit->setFixedHeight(RowHeight);
        grid->addWidget(label, row, 0, corner);
        grid->addWidget(edit, row, 1, corner);
        if (row >= 3 && row <= 5)
            advanced << label << edit;
        return edit;
    };
    const auto box = [&](int row, const char* name, const char* help) {
        auto* check = new QCheckBox(QString::fromLatin1(name));
        check->setToolTip(QString::fromLatin1(help));
        grid->addWidget(check, row, 0, 1, 2, corner);
        return check;
    };
    nImages = field(0, "Number of Images", "Number of images of the next series");
    frameTime = field(1, "Frame Time (s)", "Time between two adjacent image frames. In seconds");
    photonEnergy = field(2, "Photon Energy (eV)",
                         "Energy of the incomming photons in eV. Enter number or element symbol "
                         "e.g. Cu");
    countTime = field(3, "Count Time (s)",
                      "Time the image is exposed to radiation. In seconds. Count time can be set "
                      "in advanced mode only.");
    thresholdEnergy = field(4, "Threshold Energy (eV)", "Threshold energy of the detector in eV");
    triggerMode = field(5, "Trigger Mode",
                        "Trigger mode of the detector: \"ints\", \"inte\", \"exts\", \"exte\"");
    flatfield = box(6, "Apply flatfield correction", "Apply flatfield to data");
    pixelMask = box(7, "Apply pixel mask", "Apply pixel mask to data");
    filePattern = field(8, "File Pattern",
                        "Set file name pattern. In order to conform with MORVEND conventions and "
                        "to prevent overriding files, \"_master.h5\" or \"_<number>_master.h5\" "
                        "may be appended.");
    pathName = new TextField;
    pathName->setAlignment(corner);
    pathName->setMinimumHeight(66);  // of three lines: while one types a path, nothing below moves
    pathName->setContentsMargins(0, 0, 12, 0);  // for the last letter of a line
    grid->addWidget(plainLabel(QStringLiteral("Path Name")), 9, 0, corner);
    grid->addWidget(pathName, 9, 1, corner);
    for (QWidget* widget : std::as_const(advanced))
        widget->hide();
    rows->addLayout(grid);
}

void HalvoCtrlLayout::_addSeries(QVBoxLayout* rows)
{
    start = new QPushButton(QStringLiteral("Start"));
    start->setToolTip(QStringLiteral("Start/abort taking images"));
    start->setMinimumWidth(60);
    progress = new QProgressBar;
    progress->setMinimumWidth(200);
    progress->setFormat(QStringLiteral("%v/%m"));
    progress->setTextVisible(true);
    auto* row = new QHBoxLayout;
    row->addWidget(start);
    row->addWidget(progress, 1);
    rows->addLayout(row);
    counts = new SeriesLine;
    rows->addWidget(counts);
}

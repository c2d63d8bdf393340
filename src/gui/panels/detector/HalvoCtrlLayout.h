// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The widgets of the detector's panel.
#pragma once

#include <QList>

class InfoField;
class PopupButton;
class QCheckBox;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QVBoxLayout;
class QWidget;
class SeriesLine;
class TextEdit;
class TextField;

/// Makes the widgets, places them from top to bottom of the panel and gives it its style; the panel
/// owns them. What they do is the panel's affair.
struct HalvoCtrlLayout {
    /// @param administrator  may decide who sees the panel
    HalvoCtrlLayout(QWidget& panel, bool administrator);

    /// What may be changed and pressed only while the detector is ready or takes data.
    QList<QWidget*> steered() const;

    InfoField* info;
    QCheckBox* userMode = nullptr;  ///< for administrators alone
    QStackedWidget* connection;     ///< the button that connects, or the one that disconnects
    PopupButton* connectButton;
    TextEdit* host;
    QPushButton* ok;
    QPushButton* disconnectButton;
    QLabel* connectionLabel;
    QLabel* stateLabel;
    TextEdit* nImages;
    TextEdit* frameTime;
    TextEdit* photonEnergy;
    TextEdit* countTime;
    TextEdit* thresholdEnergy;
    TextEdit* triggerMode;
    QCheckBox* flatfield;
    QCheckBox* pixelMask;
    TextEdit* filePattern;
    TextField* pathName;
    QPushButton* start;
    QProgressBar* progress;
    SeriesLine* counts;
    QComboBox* mode;  ///< in no layout: automatic mode is the only one offered
    /// Fields and labels of manual mode.
    QList<QWidget*> advanced;

private:
    QWidget* _makeHostPopup();
    void _addConnection(QVBoxLayout* rows);
    void _addFields(QVBoxLayout* rows);
    void _addSeries(QVBoxLayout* rows);
};

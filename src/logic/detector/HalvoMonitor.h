// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pictures of a running detector for one view.
#pragma once

#include "imagelib/image/MImage.h"

#include <QObject>
#include <QString>

#include <string>

/// Hands a view a detector's latest picture, at a pace that the view can follow: the next
/// one comes when newImageSlot() has reported that the one before is shown.
///
/// It cannot reach a detector yet: start() reports this by errorSignal() and on standard error, and
/// no picture comes. Thread: GUI only.
class HalvoMonitor : public QObject {
    Q_OBJECT
public:
    explicit HalvoMonitor(QObject* parent = nullptr);

    /// @param minPause  least number of seconds between two pictures
    void start(const std::string& host, int port, double minPause);
    void stop();
    bool running() const { return _running; }

    /// The initial values of a view, from the user's settings: "0.0.0.0", 80 and no pause at first.
    static QString defaultHost();
    static int defaultPort();
    static double defaultMinPause();
    static void setDefaultHost(const QString& host);
    static void setDefaultPort(int port);
    static void setDefaultMinPause(double seconds);

public slots:
    /// The view has shown an image: the next picture may come.
    void newImageSlot();

signals:
    void newImage(morvend::imglib::MImage image);
    /// A text for the user.
    void errorSignal(QString message);

private:
    bool _running = false;
};

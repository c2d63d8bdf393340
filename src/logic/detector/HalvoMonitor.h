// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pictures of a running detector for one view.
#pragma once

#include "imagelib/image/MImage.h"

#include <QObject>
#include <QString>
#include <QThread>

#include <string>

/// Hands a view a detector's latest picture, at a pace that the view can follow: the next one comes
/// when newImageSlot() has reported that the one before is shown.
///
/// The first start() makes a thread for it, which sleeps while the monitor is stopped and ends with
/// this object; most views never have one. The unit is asked until it answers, however often it
/// fails. Thread: GUI only; no call waits for the unit.
class HalvoMonitor : public QObject {
    Q_OBJECT
public:
    explicit HalvoMonitor(QObject* parent = nullptr);
    ~HalvoMonitor() override;

    /// Starts, or starts again with another address.
    /// @param host      name or address, or a URL with one
    /// @param minPause  least number of seconds between two pictures
    void start(const std::string& host, int port, double minPause);
    /// No picture comes any more, not even one that is on its way.
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
    /// The view has shown an image, or failed to: the next picture may come.
    void newImageSlot();

signals:
    void newImage(morvend::imglib::MImage image);
    /// A text for the user.
    void errorSignal(QString message);

private:
    class Worker;

    void _makeWorker();
    void _take(const morvend::imglib::MImage& picture, unsigned int start);

    bool _running = false;
    unsigned int _starts = 0;
    QThread _thread;
    Worker* _worker = nullptr;  // null before the first start; goes with its thread
};

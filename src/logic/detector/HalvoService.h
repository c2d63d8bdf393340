// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The detector as the whole program shares it.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/support/GlobalSettings.h"

#include <QObject>
#include <QString>

class HalvoClient;

/// The one place of the process that stands for a detector: its address, and
/// the right to drive it. Each view talks to it through a HalvoClient.
///
/// It cannot reach a detector yet: setConnected(true) reports this by error(), and connected()
/// stays false. No caller yet: the detector controls of the window. Thread: GUI only.
class HalvoService : public QObject {
    Q_OBJECT
public:
    using MImage = morvend::imglib::MImage;

    /// @param machineSettings  the file of the machine's settings, another one in tests
    explicit HalvoService(QObject* parent = nullptr,
                          const QString& machineSettings = GlobalSettings::machinePath());

    /// The address that was used last, from the user's settings; "0.0.0.0" and 80 at first. The
    /// monitors of the views share it.
    static QString defaultHost();
    static int defaultPort();
    static void setDefaultHost(const QString& host);
    static void setDefaultPort(int port);

    /// Requests a connection, or ends it.
    void setConnected(bool connect);
    bool connected() const { return false; }

    /// True if this user may drive the detector. Administrators, who can write the machine's
    /// settings, always may and decide whether others do.
    bool permission() const;
    bool userPermission() const;
    /// Allows or forbids other users to drive the detector. Only an administrator's call has
    /// an effect; permissionSignal() follows.
    void setUserPermission(bool permitted);

signals:
    void permissionSignal(bool permitted);
    /// A picture for the view that started the series.
    void monitorSignal(HalvoClient* client, morvend::imglib::MImage image);
    /// A text for the user.
    void error(QString message);

private:
    const QString _machineSettings;
};

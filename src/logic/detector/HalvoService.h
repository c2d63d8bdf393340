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

/// The one place of the process that stands for a detector: the address that it is reached at, and
/// the right to drive it. Views talk to it through a HalvoClient each.
///
/// It cannot reach a detector yet: setConnected(true) says so by error(), and connected() stays
/// false. Thread: GUI only.
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

    /// Asks for a connection, or gives it up.
    void setConnected(bool connect);
    bool connected() const { return false; }

    /// May this user drive the detector? Administrators, who can write the settings of the machine,
    /// always may and decide whether others do.
    bool permission() const;
    bool userPermission() const;
    /// Lets others than administrators drive the detector, or not. Only an administrator's call has
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

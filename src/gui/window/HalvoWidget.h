// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The address of a detector, typed by the user.
#pragma once

#include <QLineEdit>
#include <QString>
#include <QWidget>

/// Fields for host, port and pause of the monitor. Host and port are red as long as they make no
/// address; only an address is announced. Thread: GUI only.
class HalvoWidget : public QWidget {
    Q_OBJECT
public:
    explicit HalvoWidget(QWidget* parent = nullptr);

    /// Shows values without announcing them; a field whose value is the same keeps its text.
    /// @param minPause  seconds between two pictures
    void setHost(const QString& host, int port, double minPause);

    /// True if host and port make a web address; the host may begin with "http://".
    static bool urlValid(const QString& host, int port);

signals:
    void newHost(QString host, int port, double minPause);

private slots:
    void _setHost(const QString& text);
    void _setPort(const QString& text);
    void _setMinPause(const QString& text);

private:
    void _update();
    void _colour(bool valid);

    QString _host;
    int _port = -1;
    double _minPause = -1.0;
    QLineEdit* _hostField;
    QLineEdit* _portField;
    QLineEdit* _minPauseField;
};

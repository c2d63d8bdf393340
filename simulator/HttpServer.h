// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A small HTTP/1.1 server that can also do everything wrong.
#pragma once

#include "simulator/FaultScript.h"

#include <QByteArray>
#include <QString>
#include <QTcpServer>
#include <QTcpSocket>

#include <functional>

namespace tarvik::simulator {

struct Request {
    QString method;
    QString path;   ///< without query
    QString query;  ///< what follows "?"
    QByteArray body;
};

struct Response {
    int status = 200;
    QByteArray body;
    QByteArray type = "application/json";
};

/// Takes a response once, now or later; too late does no harm.
using Respond = std::function<void(const Response&)>;
using Handler = std::function<void(const Request&, const Respond&)>;

/// Serves one handler on all addresses of the machine. Thread: its own, with an event loop.
class HttpServer : public QObject {
    Q_OBJECT
public:
    HttpServer(Handler handler, FaultScript& faults, QObject* parent = nullptr);

    /// @param port  0: any free one. @throws std::runtime_error
    void listen(quint16 port);
    quint16 port() const { return _port; }
    /// Closes everything, or comes back at the same port.
    void suspend();
    void resume();

signals:
    void vanish(int milliseconds);

private:
    void _newConnection();

    QTcpServer _server;
    const Handler _handler;
    FaultScript& _faults;
    quint16 _port = 0;
};

/// One connection: requests one after the other. Deletes itself when the other side has gone.
class HttpConnection : public QObject {
    Q_OBJECT
public:
    HttpConnection(QTcpSocket* socket, const Handler& handler, FaultScript& faults,
                   QObject* parent);
    void close() { _socket->abort(); }

signals:
    void vanish(int milliseconds);

private:
    void _read();
    bool _parse(Request& request);
    void _serve(const Request& request);
    void _carryOut(const Request& request);
    void _misbehave(const Fault& fault, const Request& request);
    bool _answerWrongly(const Fault& fault);
    void _respond(const Response& response);
    void _done();
    void _send(const QByteArray& bytes);
    void _sendForEver(const QByteArray& head, const QByteArray& piece);

    QTcpSocket* const _socket;
    const Handler& _handler;
    FaultScript& _faults;
    QByteArray _incoming;
    Fault _fault;  ///< of the request that is served
    bool _serving = false;
};

}  // namespace tarvik::simulator

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "simulator/HttpServer.h"

#include "simulator/Packet.h"

#include <QPointer>
#include <QTimer>

#include <memory>
#include <stdexcept>

#include <sys/socket.h>

namespace tarvik::simulator {
namespace {

constexpr qsizetype MostRequestBytes = 1 << 20;
constexpr qint64 MostWaitingBytes = 1 << 20;  // of an answer without end

QByteArray lines(int status, const QByteArray& type, qint64 length)
{
    return "HTTP/1.1 " + QByteArray::number(status) + (status < 400 ? " OK" : " Failed") +
           "\r\nContent-Type: " + type + "\r\nContent-Length: " + QByteArray::number(length) +
           "\r\n\r\n";
}

QByteArray whole(const Response& response)
{
    if (response.status == 204)
        return "HTTP/1.1 204 No Content\r\n\r\n";
    return lines(response.status, response.type, response.body.size()) + response.body;
}

}  // namespace

HttpServer::HttpServer(Handler handler, FaultScript& faults, QObject* parent)
    : QObject(parent)
    , _server(this)
    , _handler(std::move(handler))
    , _faults(faults)
{
    connect(&_server, &QTcpServer::newConnection, this, &HttpServer::_newConnection);
}

void HttpServer::listen(quint16 port)
{
    if (!_server.listen(QHostAddress::Any, port))
        throw std::runtime_error(
            QString("Port %1: %2").arg(port).arg(_server.errorString()).toStdString());
    _port = _server.serverPort();
}

void HttpServer::suspend()
{
    _server.close();
    for (HttpConnection* connection : findChildren<HttpConnection*>())
        connection->close();
}

void HttpServer::resume()
{
    // Somebody else may hold the port for a moment.
    if (!_server.isListening() && !_server.listen(QHostAddress::Any, _port))
        QTimer::singleShot(20, this, &HttpServer::resume);
}

void HttpServer::_newConnection()
{
    while (QTcpSocket* const socket = _server.nextPendingConnection()) {
        auto* const connection = new HttpConnection(socket, _handler, _faults, this);
        connect(connection, &HttpConnection::vanish, this, &HttpServer::vanish);
    }
}

HttpConnection::HttpConnection(QTcpSocket* socket, const Handler& handler, FaultScript& faults,
                               QObject* parent)
    : QObject(parent)
    , _socket(socket)
    , _handler(handler)
    , _faults(faults)
{
    _socket->setParent(this);
    _socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(_socket, &QTcpSocket::readyRead, this, &HttpConnection::_read);
    connect(_socket, &QTcpSocket::disconnected, this, &QObject::deleteLater);
}

void HttpConnection::_read()
{
    _incoming += _socket->readAll();
    if (_incoming.size() > MostRequestBytes) {
        _socket->abort();
        return;
    }
    Request request;
    if (!_serving && _parse(request))
        _serve(request);
}

/// Takes a request out of what has come. @returns false while it isn't complete
bool HttpConnection::_parse(Request& request)
{
    const qsizetype end = _incoming.indexOf("\r\n\r\n");
    if (end < 0)
        return false;
    const QList<QByteArray> head = _incoming.left(end).split('\n');
    qsizetype length = 0;
    for (const QByteArray& line : head)
        if (line.toLower().startsWith("content-length:"))
            length = line.mid(15).trimmed().toLongLong();
    const QList<QByteArray> words = head.front().trimmed().split(' ');
    if (words.size() != 3 || !words[2].startsWith("HTTP/1.") || length < 0 ||
        length > MostRequestBytes) {
        _send(whole({400, "{}"}));
        _socket->disconnectFromHost();
        return false;
    }
    if (_incoming.size() < end + 4 + length)
        return false;
    const QString target = QString::fromUtf8(words[1]);
    request = {QString::fromUtf8(words[0]), target.section('?', 0, 0), target.section('?', 1),
               _incoming.mid(end + 4, length)};
    _incoming.remove(0, end + 4 + length);
    return true;
}

void HttpConnection::_serve(const Request& request)
{
    _serving = true;
    const auto fault = _faults.ofRequest(request.method, request.path);
    _fault = fault.value_or(Fault{});
    if (fault)
        _misbehave(*fault, request);
    else
        _carryOut(request);
}

void HttpConnection::_carryOut(const Request& request)
{
    const QPointer<HttpConnection> self(this);
    const auto done = std::make_shared<bool>(false);
    _handler(request, [self, done](const Response& response) {
        if (self && !std::exchange(*done, true))
            self->_respond(response);
    });
}

/// What an answer looks like that has nothing to do with the request. @returns false for faults of
/// another kind
bool HttpConnection::_answerWrongly(const Fault& fault)
{
    if (fault.kind == "status")
        _respond({fault.argument, R"({"error":{"code":"failed","message":"a simulated fault"}})"});
    else if (fault.kind == "nonsense")
        _respond({200, "this is no JSON \x01\xff"});
    else if (fault.kind == "wrong")
        _respond({200, R"({"value":{"a":[]},"min":"low","allowed":7,"status":[],"error":"x"})"});
    else if (fault.kind == "bomb")
        _respond({200, makePacketOf(QByteArray(100'000, '['), {}).mid(8)});
    else if (fault.kind == "long")
        _respond({200, "{\"value\":\"" + QByteArray(4 << 20, 'a') + "\"}"});
    else if (fault.kind == "garbage")
        _send(QByteArray("\x16\x03\x01\xff\x00 garbage \r\n\r\n garbage", 27)),
            _socket->disconnectFromHost();
    else if (fault.kind == "huge")
        _sendForEver(lines(200, "application/json", qint64(1) << 40), QByteArray(65536, '['));
    else if (fault.kind == "endless")
        _sendForEver("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n", QByteArray(65536, ' '));
    else if (fault.kind == "endless-head")
        _sendForEver("HTTP/1.1 200 OK\r\n", "X-Again: " + QByteArray(1000, 'x') + "\r\n");
    else
        return false;
    return true;
}

void HttpConnection::_misbehave(const Fault& fault, const Request& request)
{
    // The bomb of a picture is in its packet.
    const bool inPacket = fault.kind == "bomb" && request.path.contains("/pictures/");
    if (fault.kind == "hang" || (!inPacket && _answerWrongly(fault)))
        return;
    if (fault.kind == "delay") {
        QTimer::singleShot(fault.argument, this, [this, request] { _carryOut(request); });
    } else if (fault.kind == "drop") {
        _socket->disconnectFromHost();
    } else if (fault.kind == "reset") {
        const linger now{1, 0};
        ::setsockopt(static_cast<int>(_socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &now,
                     sizeof now);
        _socket->abort();
    } else if (fault.kind == "vanish") {
        emit vanish(fault.argument);
    } else {
        _carryOut(request);  // the answer will be spoilt
    }
}

void HttpConnection::_respond(const Response& response)
{
    QByteArray answer = whole(response);
    if (response.type == "application/octet-stream")
        answer = whole({response.status, damaged(response.body, _fault.kind), response.type});
    if (_fault.kind == "truncate") {
        _send(answer.left(answer.size() - (response.body.size() + 1) / 2));
        _socket->disconnectFromHost();
        return;
    }
    if (_fault.kind == "trickle") {
        auto* const timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, [this, timer, answer, at = qsizetype(0)]() mutable {
            _send(answer.mid(at++, 1));
            if (at == answer.size()) {
                timer->deleteLater();
                _done();
            }
        });
        timer->start(_fault.argument);
        return;
    }
    _send(answer);
    _done();
}

/// The next request may be here already.
void HttpConnection::_done()
{
    _serving = false;
    if (!_incoming.isEmpty())
        QTimer::singleShot(0, this, &HttpConnection::_read);
}

void HttpConnection::_send(const QByteArray& bytes)
{
    if (_socket->state() == QAbstractSocket::ConnectedState)
        _socket->write(bytes);
}

void HttpConnection::_sendForEver(const QByteArray& head, const QByteArray& piece)
{
    const auto more = [this, piece] {
        while (_socket->state() == QAbstractSocket::ConnectedState &&
               _socket->bytesToWrite() < MostWaitingBytes)
            _send(piece);
    };
    _send(head);
    connect(_socket, &QTcpSocket::bytesWritten, this, more);
    more();
}

}  // namespace tarvik::simulator

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/control/MHalvoStream.h"

#include "imagelib/control/Deadline.h"
#include "imagelib/control/Packets.h"
#include "imagelib/control/UnitClient.h"
#include "imagelib/image/MException.h"
#include "imagelib/image/QuotedText.h"

#include <nlohmann/json.hpp>
#include <zmq.hpp>

#include <optional>
#include <thread>

namespace morvend::imglib {
namespace {

constexpr int PollMs = 25;
constexpr int PauseMs = 200;
constexpr int QueuedMessages = 4;
constexpr double VersionSeconds = 2;

std::string parameter(const char* name) { return "stream/parameters/" + std::string(name); }

/// Threads for the pixels of a frame: the viewer has other work too.
unsigned decodingThreads() { return std::clamp(std::thread::hardware_concurrency() / 2, 1U, 4U); }

zmq::socket_t makeSocket(zmq::context_t& context)
{
    zmq::socket_t socket(context, zmq::socket_type::pull);
    socket.set(zmq::sockopt::linger, 0);
    socket.set(zmq::sockopt::ipv6, 1);
    socket.set(zmq::sockopt::rcvhwm, QueuedMessages);
    socket.set(zmq::sockopt::maxmsgsize, std::int64_t(MostPacketBytes));
    socket.set(zmq::sockopt::reconnect_ivl, 100);
    socket.set(zmq::sockopt::reconnect_ivl_max, 1000);
    // A unit that lost its power must not look like one that has nothing to send.
    socket.set(zmq::sockopt::tcp_keepalive, 1);
    socket.set(zmq::sockopt::tcp_keepalive_idle, 5);
    socket.set(zmq::sockopt::tcp_keepalive_intvl, 2);
    socket.set(zmq::sockopt::tcp_keepalive_cnt, 3);
    return socket;
}

}  // namespace

class MHalvoStream::Private {
public:
    Private(const std::string& host, int port)
        : unit(host, port)
    {}

    /// Connects unless that is done. @returns why not, empty when connected
    std::string connect(const Cancel& cancel);
    /// Gives up the connection when the unit's stream is at another place now.
    void lookAgain(const Cancel& cancel);
    std::optional<zmq::message_t> receive(const Deadline& deadline, const Cancel& cancel);

    UnitClient unit;

private:
    std::string _address(const Cancel& cancel);
    bool _parts(zmq::message_t& message);

    zmq::context_t _context{1};
    std::optional<zmq::socket_t> _socket;
    std::string _connectedTo;
};

/// The numeric address that HTTP went to: ZeroMQ would look up a name on its own thread, and
/// closing would wait for it.
std::string MHalvoStream::Private::_address(const Cancel& cancel)
{
    const auto [port, least, most] = unit.intRange(parameter("port"), cancel);
    if (port < 1 || port > 65535)
        throw MHttpException("The control unit's stream has no usable port: " +
                             std::to_string(port));
    const std::string& host = unit.peer();
    const bool six = host.find(':') != std::string::npos;
    return "tcp://" + (six ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

std::string MHalvoStream::Private::connect(const Cancel& cancel)
{
    if (_socket)
        return {};
    try {
        const std::string address = _address(cancel);
        zmq::socket_t socket = makeSocket(_context);
        socket.connect(address);
        _socket.emplace(std::move(socket));
        _connectedTo = address;
        return {};
    } catch (const MException& error) {
        return error.what();
    } catch (const zmq::error_t& error) {
        return std::string("The stream can't be connected: ") + error.what();
    }
}

void MHalvoStream::Private::lookAgain(const Cancel& cancel)
{
    try {
        if (_socket && _address(cancel) != _connectedTo)
            _socket.reset();
    } catch (const MException&) {
        // It can't be reached just now, and may come back where it was.
    }
}

/// Takes the parts away that no message may have. @returns whether there were none
bool MHalvoStream::Private::_parts(zmq::message_t& message)
{
    bool single = true;
    while (message.more()) {
        single = false;
        if (!_socket->recv(message, zmq::recv_flags::dontwait))
            break;
    }
    return single;
}

std::optional<zmq::message_t> MHalvoStream::Private::receive(const Deadline& deadline,
                                                             const Cancel& cancel)
{
    zmq::message_t message;
    do {
        if (cancel)
            throw MTerminateException("Cancelled: the stream of the detector");
        zmq::pollitem_t item{_socket->handle(), 0, ZMQ_POLLIN, 0};
        zmq::poll(&item, 1, std::chrono::milliseconds(deadline.milliseconds(PollMs)));
        if (_socket->recv(message, zmq::recv_flags::dontwait)) {
            if (!_parts(message))
                throw MRuntimeException("Packet: a message of the stream has several parts");
            return message;
        }
    } while (!deadline.over());
    return std::nullopt;
}

MHalvoStream::MHalvoStream(const std::string& host, int port)
    : _d(std::make_unique<Private>(host, port))
{}

MHalvoStream::~MHalvoStream() = default;

std::string MHalvoStream::version()
{
    const Cancel never = false;
    std::string version = _d->unit.text(parameter("version"), never, VersionSeconds);
    if (version != "1")
        throw MHttpException("The control unit's stream has version " + morvend::quoted(version) +
                             ", which is not known");
    return version;
}

void MHalvoStream::setEnabled(bool enabled, const Cancel& cancel)
{
    _d->unit.set(parameter("enabled"), enabled, cancel);
}

void MHalvoStream::setHeaderDetail(const std::string& detail, const Cancel& cancel)
{
    _d->unit.set(parameter("header_detail"), detail, cancel);
}

std::int64_t MHalvoStream::dropped(const Cancel& cancel)
{
    return _d->unit.integer(parameter("dropped"), cancel);
}

MStreamObject MHalvoStream::pop(double timeoutSeconds, const Cancel& cancel)
{
    const Deadline deadline(timeoutSeconds);
    std::string reason;
    try {
        do {
            reason = _d->connect(cancel);
            if (cancel)
                throw MTerminateException("Cancelled: the stream of the detector");
            if (!reason.empty()) {
                deadline.wait(PauseMs, cancel);
                continue;
            }
            if (const auto message = _d->receive(deadline, cancel)) {
                const auto* bytes = static_cast<const std::byte*>(message->data());
                if (auto object = decodePacket({bytes, message->size()}, decodingThreads()))
                    return std::move(*object);
            }
        } while (!deadline.over());
        if (reason.empty())
            _d->lookAgain(cancel);
    } catch (const zmq::error_t& error) {
        throw MRuntimeException(std::string("The stream of the detector failed: ") + error.what());
    }
    throw MTimeoutException("No message of the detector's stream in time" +
                                (reason.empty() ? "" : "; " + reason),
                            deadline.elapsed());
}

}  // namespace morvend::imglib

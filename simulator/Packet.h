// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Packets of the protocol, as the unit writes them.
#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>

namespace tarvik::simulator {

inline QByteArray makePacketOf(const QByteArray& head, const QByteArray& pixels)
{
    QByteArray packet("TCU1");
    packet.reserve(8 + head.size() + pixels.size());
    packet.resize(8);
    qToLittleEndian<quint32>(static_cast<quint32>(head.size()), packet.data() + 4);
    return packet + head + pixels;
}

inline QByteArray makePacket(const QJsonObject& head, const QByteArray& pixels = {})
{
    return makePacketOf(QJsonDocument(head).toJson(QJsonDocument::Compact), pixels);
}

/// The head of a packet of makePacket().
inline QJsonObject headOf(const QByteArray& packet)
{
    return QJsonDocument::fromJson(packet.mid(8, qFromLittleEndian<qint32>(packet.constData() + 4)))
        .object();
}

}  // namespace tarvik::simulator

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "simulator/FaultScript.h"

#include "simulator/Packet.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStringList>
#include <QtEndian>

#include <algorithm>

namespace tarvik::simulator {
namespace {

struct Known {
    const char* kind;
    const char* where;  // H requests, P pictures and frames, S the stream alone
    bool argument;
    const char* meaning;
};
constexpr Known Faults[] = {
    {"delay", "H", true, "MS: answers that much later"},
    {"hang", "H", false, "never answers"},
    {"drop", "H", false, "closes the connection instead of an answer"},
    {"reset", "H", false, "resets the connection"},
    {"status", "H", true, "N: answers with that status, without doing anything"},
    {"garbage", "HS", false, "answers with bytes that are no HTTP, or no packet"},
    {"nonsense", "H", false, "a body that is no JSON"},
    {"wrong", "H", false, "JSON with members of other types than promised"},
    {"bomb", "HP", false, "JSON of 100,000 levels"},
    {"long", "H", false, "a true JSON object of 4 MiB"},
    {"huge", "H", false, "announces a body of a terabyte, and sends it"},
    {"endless", "H", false, "a body without length that never ends"},
    {"endless-head", "H", false, "header lines that never end"},
    {"truncate", "H", false, "does what is asked, sends half of the answer"},
    {"trickle", "H", true, "MS: one byte of the answer in that time"},
    {"vanish", "HS", true, "MS: the whole unit goes off the network for that time"},
    {"lose", "S", false, "leaves the message out"},
    {"wrong-size", "P", false, "a width that is not that of the pixels"},
    {"huge-size", "P", false, "a size of 65535 x 65535"},
    {"wrong-bytes", "P", false, "another length of the pixels than announced"},
    {"wrong-compression", "P", false, "claims that the pixels are not compressed"},
    {"bad-pixels", "P", false, "damages the compressed bytes"},
    {"bad-head", "P", false, "a head longer than the packet"},
    {"parts", "S", false, "a message of several parts"},
};

const Known* known(const QString& kind)
{
    const auto* const found = std::find_if(std::begin(Faults), std::end(Faults),
                                           [&](const Known& each) { return kind == each.kind; });
    return found == std::end(Faults) ? nullptr : found;
}

[[noreturn]] void refuse(const QString& reason)
{
    throw std::invalid_argument(reason.toStdString());
}

int natural(const QString& text)
{
    bool good = false;
    const int value = text.toInt(&good);
    if (!good || value < 0)
        refuse("\"" + text + "\" is no number");
    return value;
}

bool matches(const QString& pattern, const QString& text)
{
    // "*" stands for anything, slashes included.
    const QString expression = QRegularExpression::escape(pattern).replace("\\*", ".*");
    return QRegularExpression(QRegularExpression::anchoredPattern(expression))
        .match(text)
        .hasMatch();
}

QByteArray withHead(const QByteArray& packet, const QJsonObject& head)
{
    return makePacket(head, packet.mid(8 + qFromLittleEndian<qint32>(packet.constData() + 4)));
}

}  // namespace

QString FaultScript::help()
{
    QString text;
    for (const Known& each : Faults)
        text += QString("  %1 %2\n").arg(each.kind, -18).arg(each.meaning);
    return text;
}

FaultScript::Line FaultScript::_parsed(const QString& text)
{
    const QStringList words = text.simplified().split(' ');
    if (words.size() < 3)
        refuse("a line is METHOD PATTERN [skip=N] [times=N] FAULT [ARGUMENT]");
    Line line{words[0], words[1], 0, -1, {}};
    if (!QStringList{"GET", "PUT", "POST", "STREAM", "*"}.contains(line.method))
        refuse("the method is GET, PUT, POST, STREAM or *");
    qsizetype at = 2;
    for (; at < words.size() && words[at].contains('='); ++at) {
        const QString name = words[at].section('=', 0, 0);
        if (name != "skip" && name != "times")
            refuse("\"" + name + "\" is neither skip nor times");
        (name == "skip" ? line.skip : line.times) = natural(words[at].section('=', 1));
    }
    line.fault.kind = words.value(at);
    const Known* const fault = known(line.fault.kind);
    if (!fault)
        refuse("the fault \"" + line.fault.kind + "\" is not known");
    if (words.size() != at + (fault->argument ? 2 : 1))
        refuse(line.fault.kind + (fault->argument ? " takes a number" : " takes no argument"));
    if (fault->argument)
        line.fault.argument = natural(words[at + 1]);
    return line;
}

void FaultScript::add(const QString& text)
{
    std::vector<Line> lines;
    int number = 0;
    for (const QString& each : text.split('\n')) {
        ++number;
        const QString line = each.section('#', 0, 0).trimmed();
        try {
            if (!line.isEmpty())
                lines.push_back(_parsed(line));
        } catch (const std::invalid_argument& error) {
            refuse(QString("line %1: %2").arg(number).arg(error.what()));
        }
    }
    const std::lock_guard lock(_mutex);
    _lines.insert(_lines.end(), lines.begin(), lines.end());
}

void FaultScript::clear()
{
    const std::lock_guard lock(_mutex);
    _lines.clear();
}

std::optional<Fault> FaultScript::ofRequest(const QString& method, const QString& path)
{
    const std::lock_guard lock(_mutex);
    for (Line& line : _lines) {
        const bool same = line.method == method || (line.method == "*" && method != "STREAM");
        if (!same || line.times == 0 || !matches(line.pattern, path))
            continue;
        if (line.skip > 0) {
            --line.skip;
            continue;
        }
        if (line.times > 0)
            --line.times;
        ++_struck;
        return line.fault;
    }
    return {};
}

QByteArray damaged(const QByteArray& packet, const QString& kind)
{
    if (kind == "garbage")
        return QByteArray("\x00\xff not a packet at all", 24);
    if (kind == "bomb")
        return makePacketOf(QByteArray(100'000, '['), {});
    if (kind == "bad-head") {
        QByteArray changed = packet;
        qToLittleEndian<quint32>(0xfffffff0, changed.data() + 4);
        return changed;
    }
    QJsonObject head = headOf(packet);
    QJsonObject pixels = head["pixels"].toObject();
    if (pixels.isEmpty())
        return packet;
    if (kind == "bad-pixels") {
        QByteArray changed = packet;
        for (qsizetype i = changed.size() - pixels["bytes"].toInteger() / 2; i < changed.size();
             i += 3)
            changed[i] = static_cast<char>(~changed[i]);
        return changed;
    }
    if (kind == "wrong-size")
        pixels["width"] = pixels["width"].toInt() + 1;
    else if (kind == "huge-size")
        pixels["width"] = pixels["height"] = 65535;
    else if (kind == "wrong-bytes")
        pixels["bytes"] = pixels["bytes"].toInteger() + 1000;
    else if (kind == "wrong-compression")
        pixels["compression"] = "none";
    head["pixels"] = pixels;
    return withHead(packet, head);
}

}  // namespace tarvik::simulator

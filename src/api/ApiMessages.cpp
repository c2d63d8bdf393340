// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "api/ApiMessages.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <optional>

namespace {

/// The request that the reader has reached; reads to its end.
ApiRequest readRequest(QXmlStreamReader& xml)
{
    ApiRequest request;
    request.object = xml.attributes().value(QLatin1String("objID")).toULongLong();
    request.command = xml.attributes().value(QLatin1String("command")).toString();
    for (int depth = 1; depth > 0 && !xml.atEnd();) {
        xml.readNext();
        if (xml.isStartElement()) {
            ++depth;
            if (xml.name() == QLatin1String("arg"))
                request.arguments.append(xml.attributes().value(QLatin1String("value")).toString());
        } else if (xml.isEndElement()) {
            --depth;
        }
    }
    return request;
}

/// XML has no way to write other control characters.
QString writable(QString text)
{
    text.removeIf([](QChar each) {
        const char16_t code = each.unicode();
        return (code < 0x20 && code != '\t' && code != '\n' && code != '\r') || code >= 0xFFFE;
    });
    return text;
}

}  // namespace

ApiRequest ApiRequest::parse(const std::string& text)
{
    QXmlStreamReader xml(QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size())));
    std::optional<ApiRequest> first;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!first && xml.isStartElement() && xml.name() == QLatin1String("request"))
            first = readRequest(xml);
    }
    // A text that is no document to its end holds no request.
    ApiRequest none;
    if (xml.hasError())
        none.fault = QStringLiteral("the request is no XML document: line %1, column %2: %3")
                         .arg(xml.lineNumber())
                         .arg(xml.columnNumber())
                         .arg(xml.errorString());
    else if (!first)
        none.fault = QStringLiteral("the document holds no element \"request\"");
    return none.fault.isEmpty() ? *first : none;
}

std::string apiReply(const ApiResult& result)
{
    QString reply;
    QXmlStreamWriter xml(&reply);
    const QString value = writable(result.text);
    xml.writeStartElement(QStringLiteral("reply"));
    for (const char* element : {"return", "error"}) {
        if (result.success && element[0] == 'e')
            break;
        xml.writeEmptyElement(QString::fromLatin1(element));
        xml.writeAttribute(QStringLiteral("value"), value);
        if (element[0] == 'e' && !result.reason.isEmpty())
            xml.writeAttribute(QStringLiteral("reason"), writable(result.reason));
    }
    xml.writeEndElement();
    reply.remove(QLatin1Char('\n')).remove(QLatin1Char('\r'));
    return reply.toStdString() + '\n';
}

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "api/ApiMessages.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <optional>

namespace {

/// XML has no way to write other control characters.
QString writable(QString text)
{
    text.removeIf([](QChar each) {
        const char16_t code = each.unicode();
        return (code < 0x20 && code != '\t' && code != '\n' && code != '\r') || code >= 0xFFFE;
    });
    return text;
}

/// Deeper documents would cost a lot of memory for each byte.
constexpr int MostDepth = 100;

/// Takes the first request out of a document, and reads it to its end.
class RequestReader {
public:
    explicit RequestReader(const QByteArray& text)
        : _xml(text)
    {}

    ApiRequest read()
    {
        while (!_xml.atEnd())
            _take(_xml.readNext());
        // A text that is no document to its end holds no request.
        ApiRequest none;
        if (_xml.hasError())
            none.fault = QStringLiteral("the request is no XML document: line %1, column %2: %3")
                             .arg(_xml.lineNumber())
                             .arg(_xml.columnNumber())
                             .arg(writable(_xml.errorString()));
        else if (!_request)
            none.fault = QStringLiteral("the document holds no element \"request\"");
        return none.fault.isEmpty() ? *_request : none;
    }

private:
    void _take(QXmlStreamReader::TokenType token)
    {
        // A few bytes of them could stand for gigabytes.
        if (token == QXmlStreamReader::DTD && !_xml.entityDeclarations().isEmpty())
            _xml.raiseError(QStringLiteral("entities can't be declared"));
        else if (token == QXmlStreamReader::StartElement)
            _start();
        else if (token == QXmlStreamReader::EndElement && _depth-- == _requestDepth)
            _requestDepth = 0;
    }
    void _start()
    {
        const auto attribute = [&](const char* name) {
            return _xml.attributes().value(QLatin1String(name));
        };
        if (++_depth > MostDepth) {
            _xml.raiseError(QStringLiteral("elements are nested too deep"));
        } else if (!_request && _xml.name() == QLatin1String("request")) {
            _request.emplace();
            _request->object = attribute("objID").toULongLong();
            _request->command = attribute("command").toString();
            _requestDepth = _depth;
        } else if (_requestDepth > 0 && _xml.name() == QLatin1String("arg")) {
            _request->arguments.append(attribute("value").toString());
        }
    }

    QXmlStreamReader _xml;
    std::optional<ApiRequest> _request;
    int _depth = 0;
    int _requestDepth = 0;  // while its content is being read
};

}  // namespace

ApiRequest ApiRequest::parse(const std::string& text)
{
    return RequestReader(QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size())))
        .read();
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

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A request of a script. Its texts go back in a reply, which can be read.
#include "api/ApiMessages.h"
#include "tests/fuzz/Demand.h"

#include <QXmlStreamReader>

using namespace tarvik::fuzz;

namespace {

/// What a client makes of a reply: the value of its error and the reason.
std::pair<QString, QString> readReply(const std::string& reply)
{
    std::pair<QString, QString> texts;
    QXmlStreamReader xml(QByteArray::fromStdString(reply));
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::StartElement &&
            xml.name() == QLatin1String("error"))
            texts = {xml.attributes().value(QLatin1String("value")).toString(),
                     xml.attributes().value(QLatin1String("reason")).toString()};
    demand(!xml.hasError(), "a reply is a document");
    return texts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    ApiRequest request = ApiRequest::parse(text);
    qsizetype characters = request.command.size();
    for (const QString& argument : request.arguments)
        characters += argument.size();
    demand(characters <= static_cast<qsizetype>(size), "no text grows");
    if (!request.fault.isEmpty())
        demand(request.object == 0 && request.command.isEmpty() && request.arguments.isEmpty(),
               "what is no request asks for nothing");

    request.arguments.append(request.command);
    for (const QString& argument : request.arguments) {
        const std::string reply = apiReply(ApiResult::failure(argument, request.fault));
        demand(reply.find('\n') == reply.size() - 1 && reply.find('\r') == std::string::npos,
               "a reply is one line");
        demand(readReply(reply) == std::pair(argument, request.fault), "texts arrive as they were");
    }
    return 0;
}

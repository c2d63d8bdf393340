// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/control/UnitClient.h"

#include "imagelib/control/BoundedJson.h"
#include "imagelib/image/MException.h"
#include "imagelib/image/QuotedText.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace morvend::imglib {

using nlohmann::json;

namespace {

constexpr std::size_t MostChoices = 1000;

/// Reads from a document; what is wrong with it becomes a failure of the protocol.
template <class Reading>
auto reading(const std::string& place, Reading&& read)
{
    try {
        return read();
    } catch (const MRuntimeException& error) {
        throw MHttpException("The answer makes no sense (" + std::string(error.what()) +
                             "): " + place);
    }
}

/// The unit's own words for a failure; empty when it gives none.
std::string unitsWords(const HttpAnswer& answer)
{
    try {
        const json document = parseObject(answer.body);
        return toText(member(member(document, "error"), "message"), "message");
    } catch (const MRuntimeException&) {
        return {};
    }
}

/// Would the same request fail again?
bool refused(long status) { return status == 400 || status == 405 || status == 409; }

void checkStatus(const HttpAnswer& answer, const std::string& place)
{
    if (answer.status >= 200 && answer.status < 300)
        return;
    const std::string words = unitsWords(answer);
    const std::string code = std::to_string(answer.status);
    if (refused(answer.status) && !words.empty())
        throw MRuntimeException("The control unit refuses: " + morvend::quoted(words) + ": " +
                                place);
    throw MHttpException("The control unit reports a failure (status " + code +
                         (words.empty() ? "" : ", " + morvend::quoted(words)) + "): " + place);
}

HttpRequest getting(const std::string& path)
{
    HttpRequest request;
    request.path = "/v1/" + path;
    request.mostBytes = MostJsonBytes;
    return request;
}

template <class T, class Convert>
T limit(const json& parameter, const char* name, T otherwise, Convert&& convert)
{
    const json* const found = memberIfAny(parameter, name);
    return found ? convert(*found, name) : otherwise;
}

}  // namespace

json readAnswer(const HttpAnswer& answer, const std::string& place)
{
    checkStatus(answer, place);
    return reading(place, [&] { return parseObject(answer.body); });
}

std::tuple<int, int, int> readIntRange(const json& parameter, const std::string& place)
{
    using Limits = std::numeric_limits<int>;
    const auto convert = [](const json& value, const char* name) {
        return static_cast<int>(toInteger(value, name, Limits::min(), Limits::max()));
    };
    return reading(place, [&] {
        return std::tuple(convert(member(parameter, "value"), "value"),
                          limit(parameter, "min", Limits::min(), convert),
                          limit(parameter, "max", Limits::max(), convert));
    });
}

std::tuple<double, double, double> readDoubleRange(const json& parameter, const std::string& place)
{
    using Limits = std::numeric_limits<double>;
    return reading(place, [&] {
        return std::tuple(toDouble(member(parameter, "value"), "value"),
                          limit(parameter, "min", Limits::lowest(), toDouble),
                          limit(parameter, "max", Limits::max(), toDouble));
    });
}

std::tuple<std::string, std::set<std::string>> readChoice(const json& parameter,
                                                          const std::string& place)
{
    return reading(place, [&] {
        const std::string value = toText(member(parameter, "value"), "value");
        std::set<std::string> allowed;
        if (const json* const list = memberIfAny(parameter, "allowed")) {
            if (!list->is_array() || list->size() > MostChoices)
                throw MRuntimeException("\"allowed\" is no list of at most " +
                                        std::to_string(MostChoices) + " texts");
            for (const json& each : *list)
                allowed.insert(toText(each, "allowed"));
        } else {
            allowed.insert(value);
        }
        return std::tuple(value, allowed);
    });
}

json UnitClient::_ask(const HttpRequest& request, const Cancel& cancel)
{
    return readAnswer(_http.perform(request, cancel), _http.place(request));
}

json UnitClient::document(const std::string& path, const Cancel& cancel)
{
    return _ask(getting(path), cancel);
}

std::string UnitClient::text(const std::string& path, const Cancel& cancel, double seconds)
{
    HttpRequest request = getting(path);
    request.seconds = seconds;
    const json parameter = _ask(request, cancel);
    return reading(_http.place(request),
                   [&] { return toText(member(parameter, "value"), "value"); });
}

bool UnitClient::flag(const std::string& path, const Cancel& cancel)
{
    const json parameter = document(path, cancel);
    return reading(_http.place(getting(path)),
                   [&] { return toBool(member(parameter, "value"), "value"); });
}

std::int64_t UnitClient::integer(const std::string& path, const Cancel& cancel)
{
    const json parameter = document(path, cancel);
    return reading(_http.place(getting(path)),
                   [&] { return toInteger(member(parameter, "value"), "value", 0, INT64_MAX); });
}

std::tuple<int, int, int> UnitClient::intRange(const std::string& path, const Cancel& cancel)
{
    return readIntRange(document(path, cancel), _http.place(getting(path)));
}

std::tuple<double, double, double> UnitClient::doubleRange(const std::string& path,
                                                           const Cancel& cancel)
{
    return readDoubleRange(document(path, cancel), _http.place(getting(path)));
}

std::tuple<std::string, std::set<std::string>> UnitClient::choice(const std::string& path,
                                                                  const Cancel& cancel)
{
    return readChoice(document(path, cancel), _http.place(getting(path)));
}

void UnitClient::set(const std::string& path, const json& value, const Cancel& cancel)
{
    HttpRequest request = getting(path);
    request.method = "PUT";
    // A text that is no UTF-8 can be no value of the unit; it shall refuse it itself.
    request.body = json{{"value", value}}.dump(-1, ' ', true, json::error_handler_t::replace);
    _ask(request, cancel);
}

void UnitClient::command(const std::string& path, double seconds, const Cancel& cancel)
{
    HttpRequest request = getting(path);
    request.method = "POST";
    request.body = "{}";
    request.seconds = seconds;
    _ask(request, cancel);
}

std::string UnitClient::bytes(const std::string& path, double seconds, std::size_t mostBytes,
                              const Cancel& cancel)
{
    HttpRequest request = getting(path);
    request.seconds = seconds;
    request.mostBytes = mostBytes;
    HttpAnswer answer = _http.perform(request, cancel);
    checkStatus(answer, _http.place(request));
    // The library takes an answer that was cut off in its head for an empty one.
    if (answer.body.empty() && answer.status != 204)
        throw MHttpException("The answer is empty: " + _http.place(request));
    return std::move(answer.body);
}

}  // namespace morvend::imglib

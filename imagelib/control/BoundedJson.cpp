// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/control/BoundedJson.h"

#include "imagelib/image/MException.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace morvend::imglib {

using nlohmann::json;

namespace {

constexpr std::size_t MostTextBytes = 4096;

[[noreturn]] void refuse(const char* name, const std::string& wanted)
{
    throw MRuntimeException("\"" + std::string(name) + "\" is not " + wanted);
}

}  // namespace

json parseObject(std::string_view text)
{
    if (text.size() > MostJsonBytes)
        throw MRuntimeException("more than " + std::to_string(MostJsonBytes) + " bytes of JSON");
    std::size_t values = 0;
    const auto count = [&](int depth, json::parse_event_t event, json&) {
        using Event = json::parse_event_t;
        if (depth >= MostJsonDepth && (event == Event::object_start || event == Event::array_start))
            throw MRuntimeException("JSON of more than " + std::to_string(MostJsonDepth) +
                                    " levels");
        if (++values > MostJsonValues)
            throw MRuntimeException("JSON of more than " + std::to_string(MostJsonValues) +
                                    " values");
        return true;
    };
    json found;
    try {
        found = json::parse(text, count);
    } catch (const json::parse_error& error) {
        throw MRuntimeException("no JSON, at byte " + std::to_string(error.byte));
    } catch (const json::exception&) {
        throw MRuntimeException("no JSON");  // a number beyond all doubles, for instance
    }
    if (!found.is_object())
        throw MRuntimeException("no JSON object");
    return found;
}

const json* memberIfAny(const json& object, const char* name)
{
    if (!object.is_object())
        return nullptr;
    const auto found = object.find(name);
    return found == object.end() || found->is_null() ? nullptr : &*found;
}

const json& member(const json& object, const char* name)
{
    if (const json* const found = memberIfAny(object, name))
        return *found;
    throw MRuntimeException("\"" + std::string(name) + "\" is missing");
}

bool toBool(const json& value, const char* name)
{
    if (!value.is_boolean())
        refuse(name, "true or false");
    return value.get<bool>();
}

std::int64_t toInteger(const json& value, const char* name, std::int64_t least, std::int64_t most)
{
    const bool huge =
        value.is_number_unsigned() && value.get<std::uint64_t>() > std::uint64_t(INT64_MAX);
    if (!value.is_number_integer() || huge || value.get<std::int64_t>() < least ||
        value.get<std::int64_t>() > most)
        refuse(name, "an integer from " + std::to_string(least) + " to " + std::to_string(most));
    return value.get<std::int64_t>();
}

double toDouble(const json& value, const char* name)
{
    if (!value.is_number() || !std::isfinite(value.get<double>()))
        refuse(name, "a number");
    return value.get<double>();
}

std::string toText(const json& value, const char* name)
{
    if (!value.is_string() || value.get_ref<const std::string&>().size() > MostTextBytes)
        refuse(name, "a text of at most " + std::to_string(MostTextBytes) + " bytes");
    auto text = value.get<std::string>();
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7f')
            c = '?';
    return text;
}

}  // namespace morvend::imglib

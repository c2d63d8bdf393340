// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// An answer of a control unit to a request for JSON, read as every kind of parameter.
#include "imagelib/control/UnitClient.h"
#include "imagelib/image/MException.h"
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Input.h"

#include <nlohmann/json.hpp>

#include <cmath>

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::fuzz;

namespace {

constexpr char Place[] = "control unit detector:80, GET /v1/detector/parameters/count_time";

/// Runs one way to read; its failures must be of the two classes that callers expect.
template <class Read>
void attempt(Read&& read)
{
    try {
        read();
    } catch (const MException& error) {
        const std::string text = error.what(), kind = exceptionClass(error);
        demand(kind == "MRuntimeException" || kind == "MHttpException", "the class of a failure");
        demand(text.ends_with(Place) && text.size() < 400, "a failure says where and why");
        for (const char c : text)
            demand(static_cast<unsigned char>(c) >= ' ', "a failure can be shown");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    HttpAnswer answer;
    answer.status = input.byte() & 1 ? 200 : 400 + long(input.byte());
    for (const std::byte each : input.rest())
        answer.body += static_cast<char>(each);
    nlohmann::json document;
    attempt([&] { document = readAnswer(answer, Place); });
    if (!document.is_object())
        return 0;
    attempt([&] { readIntRange(document, Place); });
    attempt([&] {
        const auto [value, least, most] = readDoubleRange(document, Place);
        demand(std::isfinite(value) && std::isfinite(least) && std::isfinite(most),
               "numbers are finite");
    });
    attempt([&] {
        const auto [value, allowed] = readChoice(document, Place);
        for (const std::string& text : allowed)
            for (const char c : text)
                demand(static_cast<unsigned char>(c) >= ' ', "a choice can be shown");
    });
    return 0;
}

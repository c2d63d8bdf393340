// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Parameters and commands of a control unit: paths, JSON, and what a status of HTTP means.
#pragma once

#include "imagelib/control/HttpClient.h"

#include <nlohmann/json_fwd.hpp>

#include <set>
#include <string>
#include <tuple>

namespace morvend::imglib {

/// One control unit. Paths are those after "/v1/", as in "detector/parameters/count_time".
/// Failures as in the table of MHalvoDetector. Thread: one at a time.
class UnitClient {
public:
    using Cancel = std::atomic<bool>;

    UnitClient(const std::string& host, int port)
        : _http(host, port)
    {}

    std::string text(const std::string& path, const Cancel& cancel, double seconds = 10);
    bool flag(const std::string& path, const Cancel& cancel);
    std::int64_t integer(const std::string& path, const Cancel& cancel);
    /// Value, minimum, maximum; a limit that the unit doesn't give is that of the type.
    std::tuple<int, int, int> intRange(const std::string& path, const Cancel& cancel);
    std::tuple<double, double, double> doubleRange(const std::string& path, const Cancel& cancel);
    /// Value and allowed values; the value alone if the unit gives none.
    std::tuple<std::string, std::set<std::string>> choice(const std::string& path,
                                                          const Cancel& cancel);
    void set(const std::string& path, const nlohmann::json& value, const Cancel& cancel);

    /// Waits for `seconds`, 0: as long as it takes.
    void command(const std::string& path, double seconds, const Cancel& cancel);
    /// Any document of the unit.
    nlohmann::json document(const std::string& path, const Cancel& cancel);
    /// A body of bytes, up to `mostBytes`; empty when the unit has none to give.
    std::string bytes(const std::string& path, double seconds, std::size_t mostBytes,
                      const Cancel& cancel);

    const std::string& peer() const { return _http.peer(); }

private:
    nlohmann::json _ask(const HttpRequest& request, const Cancel& cancel);

    HttpClient _http;
};

/// What an answer of HTTP says, for a request that asked for JSON; apart from the network for its
/// fuzzer.
/// @throws MRuntimeException for a refusal, MHttpException for any other failure
nlohmann::json readAnswer(const HttpAnswer& answer, const std::string& place);
/// A parameter as the unit describes it. @throws MHttpException
std::tuple<int, int, int> readIntRange(const nlohmann::json& parameter, const std::string& place);
std::tuple<double, double, double> readDoubleRange(const nlohmann::json& parameter,
                                                   const std::string& place);
std::tuple<std::string, std::set<std::string>> readChoice(const nlohmann::json& parameter,
                                                          const std::string& place);

}  // namespace morvend::imglib

// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// HTTP requests to one host, bounded in time and size, and stopped by a flag.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>

namespace morvend::imglib {

struct HttpRequest {
    const char* method = "GET";  ///< "GET", "PUT" or "POST"
    std::string path;            ///< begins with "/"
    std::string body = {};       ///< JSON; none for GET
    double seconds = 10;         ///< for the whole request; 0: as long as it takes
    std::size_t mostBytes = std::size_t(1) << 20;  ///< of the answer's body
};

struct HttpAnswer {
    long status = 0;
    std::string body;
};

/// One request after the other, over a connection that is kept. Redirections, proxies of the
/// environment, cookies and compressed bodies are not used. A GET or PUT that finds the kept
/// connection dead is sent once more, a POST never.
/// Thread: one at a time.
class HttpClient {
public:
    /// Talks to nobody yet.
    HttpClient(std::string host, int port);
    ~HttpClient();
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    /// Returns any answer, whatever its status. Looks at `cancel` every 20 ms or more often.
    /// @throws MHttpException     no connection within 3 s, a lost one, no HTTP, too large a body
    /// @throws MTimeoutException  connected, but not answered in time
    /// @throws MRuntimeException  `cancel` is set
    HttpAnswer perform(const HttpRequest& request, const std::atomic<bool>& cancel);

    /// What a message says of where a request went: "control unit host:80, GET /v1/...".
    std::string place(const HttpRequest& request) const;
    /// The numeric address that the last request went to; empty before the first.
    const std::string& peer() const { return _peer; }

private:
    struct Transfer;

    void _prepare(const HttpRequest& request, Transfer& transfer);
    [[noreturn]] void _fail(const HttpRequest& request, const Transfer& transfer, int code);

    struct Handles;
    const std::unique_ptr<Handles> _handles;
    const std::string _host;
    const int _port;
    std::string _peer;
};

/// Seconds that a connection may take to be made.
inline constexpr double ConnectSeconds = 3;

}  // namespace morvend::imglib

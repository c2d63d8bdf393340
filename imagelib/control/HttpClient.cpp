// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/control/HttpClient.h"

#include "imagelib/image/MException.h"
#include "imagelib/image/QuotedText.h"

#include <curl/curl.h>

#include <chrono>
#include <new>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace morvend::imglib {
namespace {

constexpr int PollMilliseconds = 20;
constexpr std::size_t MostHeadBytes = std::size_t(64) << 10;

template <auto Function>
struct Closer {
    template <class T>
    void operator()(T* handle) const
    {
        Function(handle);
    }
};
using Easy = std::unique_ptr<CURL, Closer<curl_easy_cleanup>>;
using Multi = std::unique_ptr<CURLM, Closer<curl_multi_cleanup>>;
using Lines = std::unique_ptr<curl_slist, Closer<curl_slist_free_all>>;

void startLibrary()
{
    static const bool started = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    if (!started)
        throw MHttpException("The HTTP library can't be started");
}

/// A host that stands in an address as it is: no character may end it.
bool usableHost(const std::string& host)
{
    if (host.empty() || host.size() > 255)
        return false;
    for (const char c : host)
        if (static_cast<unsigned char>(c) <= ' ' ||
            std::string("/?#@\\%\"<>`{}|^\x7f").find(c) != std::string::npos)
            return false;
    return true;
}

std::string bracketed(const std::string& host)
{
    return host.find(':') != std::string::npos && host.front() != '[' ? "[" + host + "]" : host;
}

/// Finds out within some 12 s that the other machine has gone, also while it owes an answer that
/// may take hours.
int watchConnection(void*, curl_socket_t socket, curlsocktype)
{
    const int count = 3;
    ::setsockopt(socket, IPPROTO_TCP, TCP_KEEPCNT, &count, sizeof count);
    return CURL_SOCKOPT_OK;
}

}  // namespace

struct HttpClient::Handles {
    Multi multi{curl_multi_init()};
    Easy easy{curl_easy_init()};
};

/// What the library's callbacks fill.
struct HttpClient::Transfer {
    HttpAnswer answer;
    std::size_t mostBytes = 0;
    std::size_t headBytes = 0;
    bool tooLarge = false;
    bool noMemory = false;
    Lines lines;
    std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();

    double seconds() const
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    }

    static std::size_t takeBody(char* data, std::size_t, std::size_t bytes, void* self)
    {
        auto& transfer = *static_cast<Transfer*>(self);
        std::string& body = transfer.answer.body;
        if (bytes > transfer.mostBytes - body.size()) {
            transfer.tooLarge = true;
            return 0;
        }
        try {
            body.append(data, bytes);
        } catch (const std::bad_alloc&) {
            transfer.noMemory = true;
            return 0;
        }
        return bytes;
    }

    static std::size_t takeHead(char*, std::size_t, std::size_t bytes, void* self)
    {
        auto& transfer = *static_cast<Transfer*>(self);
        transfer.headBytes += bytes;
        transfer.tooLarge = transfer.headBytes > MostHeadBytes;
        return transfer.tooLarge ? 0 : bytes;
    }
};

HttpClient::HttpClient(std::string host, int port)
    : _handles((startLibrary(), std::make_unique<Handles>()))
    , _host(std::move(host))
    , _port(port)
{
    if (!_handles->multi || !_handles->easy)
        throw MHttpException("The HTTP library gives no connection");
}

HttpClient::~HttpClient() = default;

std::string HttpClient::place(const HttpRequest& request) const
{
    const std::string host = quoted(_host);
    return "control unit " + host.substr(1, host.size() - 2) + ":" + std::to_string(_port) + ", " +
           request.method + " " + request.path;
}

void HttpClient::_prepare(const HttpRequest& request, Transfer& transfer)
{
    CURL* const easy = _handles->easy.get();
    curl_easy_reset(easy);  // keeps the connection
    transfer.mostBytes = request.mostBytes;
    const std::string url =
        "http://" + bracketed(_host) + ":" + std::to_string(_port) + request.path;
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http");
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
    curl_easy_setopt(easy, CURLOPT_PROXY, "");
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    // A name that takes long to look up must not hold up who has cancelled.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, long(ConnectSeconds * 1000));
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, long(request.seconds * 1000));
    curl_easy_setopt(easy, CURLOPT_TCP_KEEPALIVE, 1L);
    curl_easy_setopt(easy, CURLOPT_TCP_KEEPIDLE, 5L);
    curl_easy_setopt(easy, CURLOPT_TCP_KEEPINTVL, 2L);
    curl_easy_setopt(easy, CURLOPT_SOCKOPTFUNCTION, watchConnection);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, Transfer::takeBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, Transfer::takeHead);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &transfer);
    const std::string method = request.method;
    if (method == "GET")
        return;
    curl_easy_setopt(easy, CURLOPT_POST, 1L);
    curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, request.method);
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(request.body.size()));
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, request.body.c_str());
    // On a kept connection that dies the library would send it a second time.
    if (method == "POST")
        curl_easy_setopt(easy, CURLOPT_FRESH_CONNECT, 1L);
    transfer.lines.reset(curl_slist_append(nullptr, "Content-Type: application/json"));
    curl_slist_append(transfer.lines.get(), "Expect:");
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, transfer.lines.get());
}

HttpAnswer HttpClient::perform(const HttpRequest& request, const std::atomic<bool>& cancel)
{
    if (!usableHost(_host) || _port < 1 || _port > 65535)
        throw MHttpException("No address of a control unit: " + quoted(_host) + ", port " +
                             std::to_string(_port));
    Transfer transfer;
    _prepare(request, transfer);
    CURLM* const multi = _handles->multi.get();
    CURL* const easy = _handles->easy.get();
    curl_multi_add_handle(multi, easy);
    // Taken out on every way, which also ends a transfer that still runs.
    const auto takeOut = [multi](CURL* handle) { curl_multi_remove_handle(multi, handle); };
    const std::unique_ptr<CURL, decltype(takeOut)> added(easy, takeOut);

    for (int running = 1;;) {
        if (cancel)
            throw MRuntimeException("Cancelled: " + place(request));
        curl_multi_perform(multi, &running);
        if (running == 0)
            break;
        curl_multi_poll(multi, nullptr, 0, PollMilliseconds, nullptr);
    }
    int left = 0;
    const CURLMsg* const message = curl_multi_info_read(multi, &left);
    const CURLcode code = message ? message->data.result : CURLE_RECV_ERROR;
    const char* address = nullptr;
    if (curl_easy_getinfo(easy, CURLINFO_PRIMARY_IP, &address) == CURLE_OK && address)
        _peer = address;
    if (code != CURLE_OK)
        _fail(request, transfer, code);
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &transfer.answer.status);
    return std::move(transfer.answer);
}

void HttpClient::_fail(const HttpRequest& request, const Transfer& transfer, int code)
{
    const std::string where = ": " + place(request);
    if (transfer.tooLarge)
        throw MHttpException("The answer is larger than " + std::to_string(request.mostBytes) +
                             " bytes" + where);
    if (transfer.noMemory)
        throw MHttpException("Not enough memory for the answer" + where);
    switch (code) {
    case CURLE_OPERATION_TIMEDOUT: {
        curl_off_t connected = 0;
        curl_easy_getinfo(_handles->easy.get(), CURLINFO_PRETRANSFER_TIME_T, &connected);
        if (connected == 0)
            throw MHttpException("No connection in time" + where);
        throw MTimeoutException("No complete answer within " +
                                    std::to_string(int(request.seconds)) + " s" + where,
                                transfer.seconds());
    }
    case CURLE_COULDNT_RESOLVE_HOST:
        throw MHttpException("The name of the host is not known" + where);
    case CURLE_COULDNT_CONNECT:
        throw MHttpException("Nobody answers there" + where);
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
        throw MHttpException("The connection was lost before the answer was complete" + where);
    default:
        // The library's words for the code hold nothing that the unit sent.
        throw MHttpException("The answer is no HTTP (" +
                             std::string(curl_easy_strerror(static_cast<CURLcode>(code))) + ")" +
                             where);
    }
}

}  // namespace morvend::imglib

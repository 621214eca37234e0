#include "tools/apple-helper/LoopbackHttp.h"

#include <memory>

#include <arpa/inet.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace mibrel::applehelper {
namespace {

struct CurlCleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct HeaderListCleanup {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using CurlHandle = std::unique_ptr<CURL, CurlCleanup>;
using HeaderList = std::unique_ptr<curl_slist, HeaderListCleanup>;

struct ReplyBuffer {
    std::string body;
    bool tooLarge = false;
};

std::size_t collect(char* data, std::size_t size, std::size_t count, void* context) {
    auto& reply = *static_cast<ReplyBuffer*>(context);
    const std::size_t bytes = size * count;
    if (reply.body.size() + bytes > LoopbackHttp::maxReplyBytes) {
        reply.tooLarge = true;
        return 0; // makes libcurl stop with a write error
    }
    reply.body.append(data, bytes);
    return bytes;
}

CurlHandle newHandle() {
    static const bool initialised = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    CurlHandle handle(initialised ? curl_easy_init() : nullptr);
    if (!handle) throw HttpFailure("the network library could not be started");
    return handle;
}

bool isLoopback(const sockaddr& address) {
    if (address.sa_family == AF_INET) {
        return ntohl(reinterpret_cast<const sockaddr_in&>(address).sin_addr.s_addr) == INADDR_LOOPBACK;
    }
    if (address.sa_family == AF_INET6) {
        return IN6_IS_ADDR_LOOPBACK(&reinterpret_cast<const sockaddr_in6&>(address).sin6_addr);
    }
    return false;
}

// The last word on where a connection goes, whatever the URL said.
curl_socket_t openLoopbackSocket(void*, curlsocktype purpose, curl_sockaddr* address) {
    if (purpose != CURLSOCKTYPE_IPCXN || !isLoopback(address->addr)) return CURL_SOCKET_BAD;
    return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

// Everything that keeps the request on this machine and bounded in time.
void restrict(CURL* handle, const std::string& url, std::chrono::milliseconds timeout) {
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http");
    curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, "http");
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(handle, CURLOPT_NOPROXY, "*");
    curl_easy_setopt(handle, CURLOPT_OPENSOCKETFUNCTION, openLoopbackSocket);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(LoopbackHttp::connectTimeout.count()));
    curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, static_cast<long>(timeout.count()));
    curl_easy_setopt(handle, CURLOPT_USERAGENT, "mibrel-apple-helper");
}

HttpReply perform(CURL* handle) {
    ReplyBuffer reply;
    char message[CURL_ERROR_SIZE] = {};
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, collect);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &reply);
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, message);
    const CURLcode result = curl_easy_perform(handle);
    if (reply.tooLarge) throw HttpFailure("the answer was larger than 8 MiB");
    if (result != CURLE_OK) throw HttpFailure(message[0] ? message : curl_easy_strerror(result));
    long status = 0;
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
    return HttpReply{.status = status, .body = std::move(reply.body)};
}

} // namespace

HttpReply LoopbackHttp::get(const std::string& url, std::chrono::milliseconds timeout) {
    CurlHandle handle = newHandle();
    restrict(handle.get(), url, timeout);
    curl_easy_setopt(handle.get(), CURLOPT_HTTPGET, 1L);
    return perform(handle.get());
}

HttpReply LoopbackHttp::postJson(const std::string& url, const std::string& body, std::chrono::milliseconds timeout) {
    CurlHandle handle = newHandle();
    restrict(handle.get(), url, timeout);
    // "Expect:" stops libcurl waiting for a 100 Continue that small servers never send.
    HeaderList headers(curl_slist_append(nullptr, "Content-Type: application/json"));
    if (headers) curl_slist_append(headers.get(), "Expect:");
    curl_easy_setopt(handle.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDS, body.data());
    curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    return perform(handle.get());
}

} // namespace mibrel::applehelper

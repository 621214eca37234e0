#pragma once

#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace mibrel::applehelper {

struct HttpReply {
    long status = 0;
    std::string body;
};

// The server could not be reached, or the exchange failed; what() is libcurl's reason.
class HttpFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Plain HTTP to an address on this machine (see LoopbackEndpoint): no proxies, no
// redirects, no other protocol, short connection timeout, bounded answers.
class LoopbackHttp {
public:
    static constexpr std::chrono::milliseconds connectTimeout{2000};
    static constexpr std::size_t maxReplyBytes = 8 * 1024 * 1024;

    static HttpReply get(const std::string& url, std::chrono::milliseconds timeout);
    static HttpReply postJson(const std::string& url, const std::string& body, std::chrono::milliseconds timeout);
};

} // namespace mibrel::applehelper

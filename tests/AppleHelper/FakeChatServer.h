#pragma once

#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace mibrel::testing {

// A language model server on 127.0.0.1 that answers each connection, in turn, with the
// next canned reply, and remembers what it was sent.
class FakeChatServer {
public:
    struct Reply {
        int status = 200;
        std::string body;
    };

    explicit FakeChatServer(std::vector<Reply> replies);
    ~FakeChatServer();
    FakeChatServer(const FakeChatServer&) = delete;
    FakeChatServer& operator=(const FakeChatServer&) = delete;

    int port() const { return m_port; }
    // The requests received so far, each its request line, headers and body.
    std::vector<std::string> requests() const;

private:
    void answer(int connection, const Reply& reply);

    int m_listener = -1;
    int m_port = 0;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_requests;
    std::thread m_thread;
};

} // namespace mibrel::testing

#include "tests/AppleHelper/FakeChatServer.h"

#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace mibrel::testing {
namespace {

std::string receiveRequest(int connection) {
    std::string request;
    char buffer[4096];
    for (;;) {
        const auto headerEnd = request.find("\r\n\r\n");
        if (headerEnd != std::string::npos) {
            std::size_t length = 0;
            if (const auto field = request.find("Content-Length: "); field != std::string::npos && field < headerEnd) {
                length = std::stoul(request.substr(field + 16));
            }
            if (request.size() >= headerEnd + 4 + length) return request;
        }
        const ssize_t count = ::recv(connection, buffer, sizeof buffer, 0);
        if (count <= 0) return request;
        request.append(buffer, static_cast<std::size_t>(count));
    }
}

} // namespace

FakeChatServer::FakeChatServer(std::vector<Reply> replies) {
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || ::listen(m_listener, 4) != 0 ||
        ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throw std::runtime_error("the fake server could not listen");
    }
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this, replies = std::move(replies)] {
        for (const Reply& reply : replies) {
            const int connection = ::accept(m_listener, nullptr, nullptr);
            if (connection < 0) return; // shut down by the destructor
            answer(connection, reply);
        }
    });
}

FakeChatServer::~FakeChatServer() {
    ::shutdown(m_listener, SHUT_RDWR); // wakes accept() when no more connections come
    m_thread.join();
    ::close(m_listener);
}

void FakeChatServer::answer(int connection, const Reply& reply) {
    const std::string request = receiveRequest(connection);
    {
        const std::lock_guard lock(m_mutex);
        m_requests.push_back(request);
    }
    const std::string response = "HTTP/1.1 " + std::to_string(reply.status) +
                                 " Canned\r\nContent-Type: application/json\r\nContent-Length: " +
                                 std::to_string(reply.body.size()) + "\r\nConnection: close\r\n\r\n" + reply.body;
    ::send(connection, response.data(), response.size(), MSG_NOSIGNAL);
    ::close(connection);
}

std::vector<std::string> FakeChatServer::requests() const {
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

} // namespace mibrel::testing

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mibrel::applehelper {

// A chat-completions server on this machine. The host is kept as an address, never a
// name ("localhost" becomes 127.0.0.1), so reaching it needs no name lookup.
struct LoopbackEndpoint {
    std::string address; // "127.0.0.1" or "[::1]"
    int port = 80;
    std::string path;    // from the first "/", query included

    std::string chatCompletionsUrl() const;
    // Where the server lists its models: beside the chat path, or at /v1/models.
    std::string modelsUrl() const;
};

// An endpoint, or why the URL was refused (a sentence for the user).
struct EndpointCheck {
    std::optional<LoopbackEndpoint> endpoint;
    std::string refusal;
};

// Accepts only http:// URLs on 127.0.0.1, [::1] or localhost; no path or "/" means
// the usual /v1/chat/completions.
EndpointCheck parseLoopbackEndpoint(std::string_view url);

} // namespace mibrel::applehelper

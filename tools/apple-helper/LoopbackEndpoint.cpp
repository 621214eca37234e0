#include "tools/apple-helper/LoopbackEndpoint.h"

#include <algorithm>
#include <cctype>

#include "tools/apple-helper/JsonText.h"

namespace mibrel::applehelper {
namespace {

constexpr std::string_view allowedHosts = "127.0.0.1, [::1] or localhost";

std::string lowercase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](unsigned char c) { return std::tolower(c); });
    return result;
}

EndpointCheck refuse(std::string reason) {
    return EndpointCheck{.endpoint = std::nullopt, .refusal = "The language model endpoint " + std::move(reason)};
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

bool hasSpaceOrControl(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](unsigned char c) { return c <= 0x20 || c == 0x7F; });
}

// "" for the default port; otherwise 1 to 65535.
std::optional<int> parsePort(std::string_view digits) {
    if (digits.empty()) return 80;
    const auto isDigit = [](unsigned char c) { return std::isdigit(c) != 0; };
    if (digits.size() > 5 || !std::all_of(digits.begin(), digits.end(), isDigit)) return std::nullopt;
    const int port = std::stoi(std::string(digits));
    if (port < 1 || port > 65535) return std::nullopt;
    return port;
}

std::optional<std::string> loopbackAddress(std::string_view host) {
    const std::string name = lowercase(host);
    if (name == "127.0.0.1" || name == "localhost") return "127.0.0.1";
    if (name == "[::1]") return "[::1]";
    return std::nullopt;
}

// Splits "host:port" or "[v6]:port"; false when the shape is wrong.
bool splitAuthority(std::string_view authority, std::string_view& host, std::string_view& port) {
    std::size_t hostEnd = 0;
    if (authority.starts_with('[')) {
        hostEnd = authority.find(']');
        if (hostEnd == std::string_view::npos) return false;
        ++hostEnd;
    } else {
        hostEnd = std::min(authority.find(':'), authority.size());
    }
    host = authority.substr(0, hostEnd);
    const std::string_view rest = authority.substr(hostEnd);
    if (!rest.empty() && !rest.starts_with(':')) return false;
    port = rest.empty() ? rest : rest.substr(1);
    return !host.empty();
}

EndpointCheck parseAfterScheme(std::string_view rest) {
    const std::size_t authorityEnd = std::min(rest.find_first_of("/?#"), rest.size());
    const std::string_view authority = rest.substr(0, authorityEnd);
    std::string_view target = rest.substr(authorityEnd);
    target = target.substr(0, std::min(target.find('#'), target.size()));
    if (authority.find('@') != std::string_view::npos) return refuse("must not contain a user name or password.");
    std::string_view host, portText;
    if (!splitAuthority(authority, host, portText)) return refuse("is not a valid URL.");
    const auto address = loopbackAddress(host);
    if (!address) {
        return refuse("must be on this machine (" + std::string(allowedHosts) + "), not \"" + shortened(host, 100) +
                      "\".");
    }
    const auto port = parsePort(portText);
    if (!port) return refuse("has an invalid port \"" + shortened(portText, 20) + "\".");
    std::string path(target);
    if (path.empty() || path == "/") path = "/v1/chat/completions";
    else if (path.starts_with('?')) path.insert(0, "/");
    return EndpointCheck{.endpoint = LoopbackEndpoint{.address = *address, .port = *port, .path = path}};
}

} // namespace

std::string LoopbackEndpoint::chatCompletionsUrl() const {
    return "http://" + address + ":" + std::to_string(port) + path;
}

std::string LoopbackEndpoint::modelsUrl() const {
    constexpr std::string_view chat = "/chat/completions";
    std::string base = path.substr(0, path.find('?'));
    if (base.ends_with(chat)) base.replace(base.size() - chat.size(), chat.size(), "/models");
    else base = "/v1/models";
    return "http://" + address + ":" + std::to_string(port) + base;
}

EndpointCheck parseLoopbackEndpoint(std::string_view url) {
    url = trimmed(url);
    if (url.empty()) return refuse("is empty.");
    if (hasSpaceOrControl(url)) return refuse("contains spaces or control characters.");
    const auto schemeEnd = url.find("://");
    if (schemeEnd == std::string_view::npos) return refuse("is not a URL such as http://127.0.0.1:8080.");
    const std::string scheme = lowercase(url.substr(0, schemeEnd));
    if (scheme == "https") {
        return refuse("must use plain http:// on this machine; https:// is not supported.");
    }
    if (scheme != "http") return refuse("must be an http:// URL, not " + shortened(scheme, 20) + "://.");
    return parseAfterScheme(url.substr(schemeEnd + 3));
}

} // namespace mibrel::applehelper

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/apple-helper/LoopbackEndpoint.h"

namespace mibrel::applehelper {

struct LanguageModelSettings {
    std::string endpoint; // empty when none is configured
    std::string model = "local";

    // MIBREL_LLM_ENDPOINT and MIBREL_LLM_MODEL.
    static LanguageModelSettings fromEnvironment();
};

struct LanguageModelStatus {
    bool available = false;
    std::string model;
    std::string reason; // why it is not available; empty when it is
};

struct GenerationRequest {
    std::string task;    // becomes the system message
    std::string prompt;
    std::string context; // put before the prompt in the user message
    std::int64_t maxTokens = 220;
};

// A chat-completions server on this machine, if one is configured and allowed.
class LanguageModelClient {
public:
    static constexpr std::string_view notConfigured =
        "No on-device language model is configured. Set MIBREL_LLM_ENDPOINT to a chat-completions server on "
        "this machine.";
    static constexpr std::chrono::milliseconds probeTimeout{2000};
    static constexpr std::chrono::milliseconds generateTimeout{120000};
    static constexpr std::int64_t maxTokensLimit = 32768;

    explicit LanguageModelClient(const LanguageModelSettings& settings);

    // Whether the server is allowed and answers (a short look at its model list).
    LanguageModelStatus status() const;
    // The model's answer; throws RequestError when there is none.
    std::string generate(const GenerationRequest& request) const;

private:
    const LoopbackEndpoint& allowedEndpoint() const;
    std::string requestBody(const GenerationRequest& request) const;

    std::string m_model;
    std::string m_displayUrl;
    std::optional<LoopbackEndpoint> m_endpoint;
    std::string m_refusal;
};

} // namespace mibrel::applehelper

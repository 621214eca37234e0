#include "tools/apple-helper/LanguageModelClient.h"

#include <cstdlib>

#include <rapidjson/document.h>

#include "tools/apple-helper/JsonText.h"
#include "tools/apple-helper/LoopbackHttp.h"
#include "tools/apple-helper/RequestError.h"

namespace mibrel::applehelper {
namespace {

using rapidjson::Document;
using rapidjson::Value;

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// The server's own explanation of an error, in the usual {"error": {"message": ...}} shape.
std::string serverMessage(const Document& reply) {
    if (!reply.IsObject()) return {};
    const auto error = reply.FindMember("error");
    if (error == reply.MemberEnd()) return {};
    if (error->value.IsString()) return error->value.GetString();
    if (!error->value.IsObject()) return {};
    const auto message = error->value.FindMember("message");
    return message != error->value.MemberEnd() && message->value.IsString() ? message->value.GetString() : "";
}

const Value* answerText(const Document& reply) {
    if (!reply.IsObject()) return nullptr;
    const auto choices = reply.FindMember("choices");
    if (choices == reply.MemberEnd() || !choices->value.IsArray() || choices->value.Empty()) return nullptr;
    const Value& first = choices->value[0];
    if (!first.IsObject()) return nullptr;
    const auto message = first.FindMember("message");
    if (message == first.MemberEnd() || !message->value.IsObject()) return nullptr;
    const auto content = message->value.FindMember("content");
    if (content == message->value.MemberEnd() || !content->value.IsString()) return nullptr;
    return &content->value;
}

Document parsed(const std::string& body) {
    Document document;
    document.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag>(body.data(), body.size());
    if (document.HasParseError()) document.SetNull();
    return document;
}

bool blank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

} // namespace

LanguageModelSettings LanguageModelSettings::fromEnvironment() {
    LanguageModelSettings settings;
    settings.endpoint = environment("MIBREL_LLM_ENDPOINT");
    if (const std::string model = environment("MIBREL_LLM_MODEL"); !model.empty()) settings.model = model;
    return settings;
}

LanguageModelClient::LanguageModelClient(const LanguageModelSettings& settings)
    : m_model(settings.model), m_displayUrl(shortened(settings.endpoint, 200)) {
    if (blank(settings.endpoint)) {
        m_refusal = notConfigured;
        return;
    }
    EndpointCheck check = parseLoopbackEndpoint(settings.endpoint);
    m_endpoint = std::move(check.endpoint);
    m_refusal = std::move(check.refusal);
}

const LoopbackEndpoint& LanguageModelClient::allowedEndpoint() const {
    if (!m_endpoint) throw RequestError(m_refusal);
    return *m_endpoint;
}

LanguageModelStatus LanguageModelClient::status() const {
    if (!m_endpoint) return LanguageModelStatus{.available = false, .model = "", .reason = m_refusal};
    const std::string server = "The language model server at " + m_displayUrl;
    try {
        const HttpReply reply = LoopbackHttp::get(m_endpoint->modelsUrl(), probeTimeout);
        // Any answer short of a server error means it is up; not every server lists models.
        if (reply.status >= 500) {
            return {.available = false, .model = m_model,
                    .reason = server + " answered with HTTP status " + std::to_string(reply.status) + "."};
        }
    } catch (const HttpFailure& failure) {
        return {.available = false, .model = m_model, .reason = server + " did not answer: " + failure.what() + "."};
    }
    return LanguageModelStatus{.available = true, .model = m_model, .reason = ""};
}

std::string LanguageModelClient::requestBody(const GenerationRequest& request) const {
    Document body(rapidjson::kObjectType);
    auto& allocator = body.GetAllocator();
    const auto message = [&](std::string_view role, std::string_view content) {
        Value entry(rapidjson::kObjectType);
        entry.AddMember("role", jsonString(role, allocator), allocator);
        entry.AddMember("content", jsonString(content, allocator), allocator);
        return entry;
    };
    Value messages(rapidjson::kArrayType);
    messages.PushBack(message("system", request.task), allocator);
    messages.PushBack(message("user", request.context + "\n\n" + request.prompt), allocator);
    body.AddMember("model", jsonString(m_model, allocator), allocator);
    body.AddMember("messages", messages, allocator);
    body.AddMember("max_tokens", Value(request.maxTokens), allocator);
    return compactJson(body).value_or("{}");
}

std::string LanguageModelClient::generate(const GenerationRequest& request) const {
    const LoopbackEndpoint& endpoint = allowedEndpoint();
    if (blank(request.prompt)) throw RequestError("The prompt is empty.");
    if (request.maxTokens < 1 || request.maxTokens > maxTokensLimit) {
        throw RequestError("The argument \"max_tokens\" must be between 1 and " + std::to_string(maxTokensLimit) + ".");
    }
    const std::string server = "The language model server at " + m_displayUrl;
    HttpReply reply;
    try {
        reply = LoopbackHttp::postJson(endpoint.chatCompletionsUrl(), requestBody(request), generateTimeout);
    } catch (const HttpFailure& failure) {
        throw RequestError(server + " did not answer: " + failure.what() + ".");
    }
    const Document answer = parsed(reply.body);
    if (reply.status < 200 || reply.status > 299) {
        std::string detail = shortened(serverMessage(answer), 300);
        if (!detail.empty() && detail.back() != '.') detail += '.';
        throw RequestError(server + " answered with HTTP status " + std::to_string(reply.status) +
                           (detail.empty() ? "." : ": " + detail));
    }
    const Value* text = answerText(answer);
    if (!text) throw RequestError(server + " sent an answer that could not be understood.");
    std::string result(text->GetString(), text->GetStringLength());
    if (blank(result)) throw RequestError("The language model returned no text.");
    return result;
}

} // namespace mibrel::applehelper

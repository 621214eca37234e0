#include "tools/apple-helper/HelperOperations.h"

#include "tools/apple-helper/JsonText.h"

namespace mibrel::applehelper {
namespace {

using rapidjson::Document;
using rapidjson::Value;

void transcription(const std::vector<RecognizedWord>& words, Document& result) {
    auto& allocator = result.GetAllocator();
    Value segments(rapidjson::kArrayType);
    std::string text;
    for (const RecognizedWord& word : words) {
        Value segment(rapidjson::kObjectType);
        segment.AddMember("text", jsonString(word.text, allocator), allocator);
        segment.AddMember("start", word.start, allocator);
        segment.AddMember("duration", word.duration, allocator);
        segments.PushBack(segment, allocator);
        if (!text.empty()) text += ' ';
        text += word.text;
    }
    result.SetObject();
    result.AddMember("segments", segments, allocator);
    result.AddMember("text", jsonString(text, allocator), allocator);
}

void status(const LanguageModelStatus& status, Document& result) {
    auto& allocator = result.GetAllocator();
    result.SetObject();
    result.AddMember("available", status.available, allocator);
    result.AddMember("model", jsonString(status.model, allocator), allocator);
    result.AddMember("reason", jsonString(status.reason, allocator), allocator);
}

GenerationRequest generationRequest(const RequestArgs& args) {
    return GenerationRequest{.task = args.string("task"),
                             .prompt = args.string("prompt"),
                             .context = args.string("context"),
                             .maxTokens = args.integer("max_tokens")};
}

} // namespace

void addHelperOperations(HelperServer& server, SpeechTranscriber& transcriber, const LanguageModelClient& assistant) {
    server.add("speech.transcribe", [&transcriber](const RequestArgs& args, Document& result) {
        const std::string path = args.string("path");
        const std::string locale = args.string("locale");
        transcription(transcriber.transcribe(path, locale), result);
    });
    server.add("ai.status", [&assistant](const RequestArgs&, Document& result) { status(assistant.status(), result); });
    server.add("ai.generate", [&assistant](const RequestArgs& args, Document& result) {
        const std::string text = assistant.generate(generationRequest(args));
        result.SetObject();
        result.AddMember("text", jsonString(text, result.GetAllocator()), result.GetAllocator());
    });
}

} // namespace mibrel::applehelper

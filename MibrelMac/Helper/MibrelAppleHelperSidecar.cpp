#include "MibrelMac/Helper/MibrelAppleHelperSidecar.h"

#include <stdexcept>
#include <vector>

#include <rapidjson/error/en.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "MibrelMac/Helper/MibrelResourcePaths.h"
#include "MibrelMac/Helper/MibrelSidecarError.h"
#include "MibrelMac/Helper/SpokenWord.h"
#include "MibrelMac/Helper/TranscriptSegmenter.h"
#include "Platform/Text/TextDecoding.h"

namespace mibrel {
namespace {

double numberOr(const rapidjson::Value& object, const char* key, double fallback) {
    const auto found = object.FindMember(key);
    return found != object.MemberEnd() && found->value.IsNumber() ? found->value.GetDouble() : fallback;
}

// Units without a string `text` are dropped; missing times are 0.
std::vector<SpokenWord> spokenWords(const rapidjson::Value& result) {
    std::vector<SpokenWord> words;
    const auto segments = result.FindMember("segments");
    if (segments == result.MemberEnd() || !segments->value.IsArray()) return words;
    for (const rapidjson::Value& unit : segments->value.GetArray()) {
        if (!unit.IsObject()) return {}; // an array that is not all objects counts as none
    }
    for (const rapidjson::Value& unit : segments->value.GetArray()) {
        const auto text = unit.FindMember("text");
        if (text == unit.MemberEnd() || !text->value.IsString()) continue;
        words.push_back({std::string(text->value.GetString(), text->value.GetStringLength()),
                         numberOr(unit, "start", 0), numberOr(unit, "duration", 0)});
    }
    return words;
}

} // namespace

MibrelAppleHelperSidecar::MibrelAppleHelperSidecar(Locator locate) : m_locate(std::move(locate)) {}

MibrelAppleHelperSidecar& MibrelAppleHelperSidecar::shared() {
    static MibrelAppleHelperSidecar client(&MibrelResourcePaths::appleHelperExecutable);
    return client;
}

void MibrelAppleHelperSidecar::ensureRunning() {
    if (m_process && m_process->isRunning()) return;
    const std::filesystem::path executable = m_locate();
    m_process = MibrelHelperProcess::launch(executable);
}

void MibrelAppleHelperSidecar::resetProcess() { m_process.reset(); }

// One byte at a time, so nothing behind the newline is consumed.
std::string MibrelAppleHelperSidecar::readLine() {
    std::string line;
    for (;;) {
        const std::optional<char> byte = m_process->readByte();
        if (!byte) throw MibrelSidecarError::sidecarFailed("Transcription helper stopped unexpectedly.");
        if (*byte == '\n') break;
        line += *byte;
    }
    if (!platform::text::isWellFormedUTF8(line)) {
        throw MibrelSidecarError::sidecarFailed("Invalid UTF-8 from transcription helper.");
    }
    return line;
}

std::string MibrelAppleHelperSidecar::encodeRequest(std::uint64_t id, const std::string& op,
                                                    const rapidjson::Value& args) const {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    writer.Key("id");
    writer.Uint64(id);
    writer.Key("op");
    writer.String(op.data(), static_cast<rapidjson::SizeType>(op.size()));
    writer.Key("args");
    if (!args.Accept(writer)) throw MibrelSidecarError::sidecarFailed("Could not encode helper request.");
    writer.EndObject();
    std::string request(buffer.GetString(), buffer.GetSize());
    if (!platform::text::isWellFormedUTF8(request)) {
        throw MibrelSidecarError::sidecarFailed("Could not encode helper request.");
    }
    return request + '\n';
}

// A line that is not JSON leaves the helper in place; JSON of the wrong shape resets it,
// since the conversation can no longer be trusted.
std::optional<rapidjson::Document> MibrelAppleHelperSidecar::decodeResponse(const std::string& line) {
    rapidjson::Document response;
    response.Parse(line.data(), line.size());
    if (response.HasParseError()) throw std::runtime_error(rapidjson::GetParseError_En(response.GetParseError()));
    if (!response.IsObject()) {
        resetProcess();
        throw MibrelSidecarError::sidecarFailed("Invalid helper response.");
    }
    const auto ok = response.FindMember("ok");
    if (ok == response.MemberEnd() || !ok->value.IsBool() || !ok->value.GetBool()) {
        const auto error = response.FindMember("error");
        if (error != response.MemberEnd() && error->value.IsString()) {
            throw MibrelSidecarError::sidecarFailed(error->value.GetString());
        }
        throw MibrelSidecarError::sidecarFailed("Transcription helper error.");
    }
    const auto result = response.FindMember("result");
    if (result == response.MemberEnd()) return std::nullopt;
    rapidjson::Document value;
    value.CopyFrom(result->value, value.GetAllocator());
    return value;
}

std::optional<rapidjson::Document> MibrelAppleHelperSidecar::call(const std::string& op, const rapidjson::Value& args) {
    const std::lock_guard guard(m_lock);
    ensureRunning();
    if (!m_process || !m_process->hasPipes()) {
        throw MibrelSidecarError::sidecarFailed("Transcription helper is not running.");
    }
    const std::uint64_t id = m_nextID++; // spent even if the call fails
    m_process->write(encodeRequest(id, op, args));
    std::string line;
    try {
        line = readLine();
    } catch (const MibrelSidecarError&) {
        resetProcess();
        throw;
    }
    return decodeResponse(line);
}

TeskTranscript MibrelAppleHelperSidecar::transcribe(const std::filesystem::path& audioURL, const std::string& locale) {
    rapidjson::Document args(rapidjson::kObjectType);
    auto& allocator = args.GetAllocator();
    args.AddMember("path", rapidjson::Value(audioURL.string().c_str(), allocator), allocator);
    args.AddMember("locale", rapidjson::Value(locale.c_str(), allocator), allocator);
    const std::optional<rapidjson::Document> result = call("speech.transcribe", args);
    if (!result || !result->IsObject()) {
        throw MibrelSidecarError::sidecarFailed("Transcription returned no result.");
    }
    if (const std::vector<SpokenWord> words = spokenWords(*result); !words.empty()) {
        return {TranscriptSegmenter::segments(words)};
    }
    const auto text = result->FindMember("text");
    if (text != result->MemberEnd() && text->value.IsString() && text->value.GetStringLength() > 0) {
        return TeskTranscript::fromPlainText(std::string_view(text->value.GetString(), text->value.GetStringLength()));
    }
    throw MibrelSidecarError::sidecarFailed("No speech was recognized in this recording.");
}

} // namespace mibrel

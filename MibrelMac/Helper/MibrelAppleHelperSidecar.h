#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <rapidjson/document.h>

#include "MibrelCore/Sources/TeskTranscript.h"
#include "MibrelMac/Helper/MibrelHelperProcess.h"

namespace mibrel {

// The client of the helper program: one JSON request per line on its standard input, one
// JSON response per line back. Calls block for the whole round trip, so they belong on a
// worker thread; concurrent callers queue on one lock. The helper is started on first use
// and kept alive, so what it loads stays loaded.
class MibrelAppleHelperSidecar {
public:
    using Locator = std::function<std::filesystem::path()>;

    static constexpr const char* kSpeechLocale = "en-US";

    // `locate` finds the executable at each start; tests pass their own.
    explicit MibrelAppleHelperSidecar(Locator locate);
    MibrelAppleHelperSidecar(const MibrelAppleHelperSidecar&) = delete;
    MibrelAppleHelperSidecar& operator=(const MibrelAppleHelperSidecar&) = delete;

    // The one client of the application, finding the helper where it is installed.
    static MibrelAppleHelperSidecar& shared();

    // `args` must be an object. Returns the response's `result`, absent when it has none.
    // Throws MibrelSidecarError, std::system_error (launch), or std::runtime_error (JSON).
    std::optional<rapidjson::Document> call(const std::string& op, const rapidjson::Value& args);

    TeskTranscript transcribe(const std::filesystem::path& audioURL, const std::string& locale);

private:
    void ensureRunning();
    void resetProcess();
    std::string readLine();
    std::string encodeRequest(std::uint64_t id, const std::string& op, const rapidjson::Value& args) const;
    std::optional<rapidjson::Document> decodeResponse(const std::string& line);

    Locator m_locate;
    std::mutex m_lock;
    std::unique_ptr<MibrelHelperProcess> m_process;
    std::uint64_t m_nextID = 1; // never restarted, even with a new helper process
};

} // namespace mibrel

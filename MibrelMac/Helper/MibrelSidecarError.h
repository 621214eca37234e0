#pragma once

#include <stdexcept>
#include <string>

namespace mibrel {

// A failed exchange with the helper program. what() is what the researcher reads.
class MibrelSidecarError : public std::runtime_error {
public:
    enum class Kind { sidecarFailed, missingAppleHelper };

    static MibrelSidecarError sidecarFailed(const std::string& message) { return {Kind::sidecarFailed, message}; }
    static MibrelSidecarError missingAppleHelper() {
        return {Kind::missingAppleHelper,
                "The on-device transcription helper was not found. Reinstall Merivante Mibrel."};
    }

    Kind kind() const { return m_kind; }

private:
    MibrelSidecarError(Kind kind, const std::string& message) : std::runtime_error(message), m_kind(kind) {}

    Kind m_kind;
};

} // namespace mibrel

#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace mibrel {

// Why a project could not be opened or saved, in words for the researcher.
class TeskProjectError : public std::runtime_error {
public:
    enum class Kind { unsupportedVersion, writeFailed, invalidPackage };

    static TeskProjectError unsupportedVersion(std::int64_t version);
    static TeskProjectError writeFailed(const std::string& reason);
    static TeskProjectError invalidPackage();

    Kind kind() const { return m_kind; }

private:
    TeskProjectError(Kind kind, const std::string& description) : std::runtime_error(description), m_kind(kind) {}
    Kind m_kind;
};

} // namespace mibrel

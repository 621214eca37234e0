#pragma once

#include <string>

#include "MibrelMac/Media/MibrelMediaError.h"

namespace mibrel::media::detail {

// Why a recording could not be read. what() is a sentence fit to show as it is; detail()
// holds FFmpeg's reason when there is one, for messages that have room for it.
class MediaInputError : public MibrelMediaLayerError {
public:
    enum class Kind { cannotOpen, noAudio, cannotDecode };

    explicit MediaInputError(Kind kind, std::string detail = {});

    Kind kind() const { return m_kind; }
    const std::string& detail() const { return m_detail; }

private:
    Kind m_kind;
    std::string m_detail;
};

} // namespace mibrel::media::detail

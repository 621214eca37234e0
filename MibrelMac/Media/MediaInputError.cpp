#include "MibrelMac/Media/MediaInputError.h"

#include <utility>

namespace mibrel::media::detail {

namespace {

const char* sentenceFor(MediaInputError::Kind kind) {
    switch (kind) {
    case MediaInputError::Kind::cannotOpen:
        return "The recording could not be opened.";
    case MediaInputError::Kind::noAudio:
        return "The recording has no audio track.";
    case MediaInputError::Kind::cannotDecode:
        break;
    }
    return "The recording could not be decoded.";
}

} // namespace

MediaInputError::MediaInputError(Kind kind, std::string detail)
    : MibrelMediaLayerError(sentenceFor(kind)), m_kind(kind), m_detail(std::move(detail)) {}

} // namespace mibrel::media::detail

#pragma once

#include <optional>
#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// One stretch of a transcript: a paragraph of a document or a run of speech.
// Ids are opaque strings, unique within their transcript.
struct TranscriptSegment {
    std::string id;
    std::optional<double> start; // seconds from the start of the recording
    std::optional<double> end;
    std::string text;

    bool operator==(const TranscriptSegment&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TranscriptSegment;
        return std::tuple{optional("end", &T::end), required("id", &T::id), optional("start", &T::start),
                          required("text", &T::text)};
    }
};

} // namespace mibrel

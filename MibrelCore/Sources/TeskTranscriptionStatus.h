#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

enum class TeskTranscriptionStatusKind { notStarted, complete, reviewed, needsReview, failed };

constexpr auto rawValueTable(std::type_identity<TeskTranscriptionStatusKind>) {
    using enum TeskTranscriptionStatusKind;
    return std::array{std::pair{notStarted, std::string_view("notStarted")},
                      std::pair{complete, std::string_view("complete")},
                      std::pair{reviewed, std::string_view("reviewed")},
                      std::pair{needsReview, std::string_view("needsReview")},
                      std::pair{failed, std::string_view("failed")}};
}

// The outcome of a recording's last transcription, as shown to the researcher.
struct TeskTranscriptionStatus {
    TeskTranscriptionStatusKind kind = TeskTranscriptionStatusKind::notStarted;
    std::string message;
    std::int64_t segmentCount = 0;
    std::optional<double> recognizedSeconds; // seconds of speech the transcript covers
    std::optional<double> mediaDuration;     // length of the recording
    Date updatedAt = platform::now();

    bool operator==(const TeskTranscriptionStatus&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskTranscriptionStatus;
        return std::tuple{required("kind", &T::kind), optional("mediaDuration", &T::mediaDuration),
                          required("message", &T::message), optional("recognizedSeconds", &T::recognizedSeconds),
                          required("segmentCount", &T::segmentCount), required("updatedAt", &T::updatedAt)};
    }
};

} // namespace mibrel

#pragma once

#include <optional>
#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// A structured reading of one code or theme through the contextual lens.
struct TeskContextualLensReview {
    Uuid id = Uuid::random();
    std::optional<Uuid> codeID;
    std::optional<Uuid> themeID;
    std::string context;
    std::string voice;
    std::string powerPosition;
    std::string representation;
    std::string counterPatterns;
    std::string consequences;
    std::string analyticAction;
    Date createdAt = platform::now();
    Date updatedAt = platform::now();

    bool operator==(const TeskContextualLensReview&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskContextualLensReview;
        return std::tuple{defaulted("analyticAction", &T::analyticAction),
                          optional("codeID", &T::codeID),
                          defaulted("consequences", &T::consequences),
                          defaulted("context", &T::context),
                          defaulted("counterPatterns", &T::counterPatterns),
                          defaulted("createdAt", &T::createdAt),
                          defaulted("id", &T::id),
                          defaulted("powerPosition", &T::powerPosition),
                          defaulted("representation", &T::representation),
                          optional("themeID", &T::themeID),
                          defaulted("updatedAt", &T::updatedAt),
                          defaulted("voice", &T::voice)};
    }

    // Reviews written before the rename kept this text under "assumptions"; it is
    // read only then, and never written back.
    static void finishDecoding(TeskContextualLensReview& review, const platform::json::JsonObjectReader& reader) {
        if (reader.find("counterPatterns")) return;
        review.counterPatterns = reader.value<std::string>("assumptions", "");
    }
};

} // namespace mibrel

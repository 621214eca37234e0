#pragma once

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "MibrelCore/Model/TeskQuoteRole.h"
#include "MibrelCore/Model/TeskResponseRef.h"
#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// A passage pinned as evidence for codes and themes.
//
// Older files and readers know only the flag `isExemplar`; it is always written, and
// always derived from the role, so the two can never disagree.
struct TeskQuote {
    Uuid id = Uuid::random();
    TeskResponseRef response;
    std::string text;
    std::vector<Uuid> codeIDs;
    std::vector<Uuid> themeIDs;
    std::string memo;
    std::string rationale;
    TeskQuoteRole role = TeskQuoteRole::exemplar;
    Date createdAt = platform::now();

    bool isExemplar() const { return role == TeskQuoteRole::exemplar; }

    // An absent role comes from the flag: exemplar when it is set, supporting when not.
    static TeskQuoteRole resolveRole(std::optional<TeskQuoteRole> role, bool isExemplar) {
        if (role) return *role;
        return isExemplar ? TeskQuoteRole::exemplar : TeskQuoteRole::supporting;
    }

    bool operator==(const TeskQuote&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskQuote;
        return std::tuple{defaulted("codeIDs", &T::codeIDs),
                          defaulted("createdAt", &T::createdAt),
                          defaulted("id", &T::id),
                          computed("isExemplar", +[](const T& quote) { return quote.isExemplar(); }),
                          defaulted("memo", &T::memo),
                          defaulted("rationale", &T::rationale),
                          required("response", &T::response),
                          computed("role", +[](const T& quote) { return quote.role; }),
                          defaulted("text", &T::text),
                          defaulted("themeIDs", &T::themeIDs)};
    }

    // The flag is read first, then the role; a quote with neither is an exemplar.
    static void finishDecoding(TeskQuote& quote, const platform::json::JsonObjectReader& reader) {
        const bool isExemplar = reader.value<bool>("isExemplar", true);
        quote.role = resolveRole(reader.optional<TeskQuoteRole>("role"), isExemplar);
    }
};

} // namespace mibrel

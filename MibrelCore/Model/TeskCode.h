#pragma once

#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskCodeStatus.h"
#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// A codebook entry. Every key may be missing: a code from an older file gets a fresh
// id and empty texts rather than failing the project.
struct TeskCode {
    Uuid id = Uuid::random();
    std::string name;
    std::string definition;
    std::string fullDescription;
    std::string includeWhen;
    std::string excludeWhen;
    std::string borderlineCases;
    std::string exampleQuote;
    std::string contextNotes;
    TeskCodeStatus status = TeskCodeStatus::draft;
    bool includeInContextualLens = false;
    Date createdAt = platform::now();

    bool operator==(const TeskCode&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskCode;
        return std::tuple{defaulted("borderlineCases", &T::borderlineCases),
                          defaulted("contextNotes", &T::contextNotes),
                          defaulted("createdAt", &T::createdAt),
                          defaulted("definition", &T::definition),
                          defaulted("exampleQuote", &T::exampleQuote),
                          defaulted("excludeWhen", &T::excludeWhen),
                          defaulted("fullDescription", &T::fullDescription),
                          defaulted("id", &T::id),
                          defaulted("includeInContextualLens", &T::includeInContextualLens),
                          defaulted("includeWhen", &T::includeWhen),
                          defaulted("name", &T::name),
                          defaulted("status", &T::status)};
    }
};

} // namespace mibrel

#pragma once

#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// The researcher's framing of the study, written during the first read.
struct TeskStudyFrame {
    std::string researchQuestion;
    std::string purpose;
    std::string methodology;
    std::string researcherStance;
    std::string firstReadMemo;

    bool operator==(const TeskStudyFrame&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskStudyFrame;
        return std::tuple{required("firstReadMemo", &T::firstReadMemo), required("methodology", &T::methodology),
                          required("purpose", &T::purpose), required("researchQuestion", &T::researchQuestion),
                          required("researcherStance", &T::researcherStance)};
    }
};

} // namespace mibrel

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskCategory.h"
#include "MibrelCore/Model/TeskCode.h"
#include "MibrelCore/Model/TeskCodeApplication.h"
#include "MibrelCore/Model/TeskContextLens.h"
#include "MibrelCore/Model/TeskContextualLensReview.h"
#include "MibrelCore/Model/TeskQuote.h"
#include "MibrelCore/Model/TeskReportFinding.h"
#include "MibrelCore/Model/TeskReportSection.h"
#include "MibrelCore/Model/TeskStudyFrame.h"
#include "MibrelCore/Model/TeskTheme.h"
#include "MibrelCore/Model/TeskTrustworthinessRecord.h"
#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// The root of a project's analysis state, saved whole as one document. Records refer
// to each other by id only. The arrays share storage between copies, so a snapshot
// of the whole workspace costs a few pointer copies.
struct TeskWorkspace {
    static constexpr std::int64_t currentVersion = 1;

    std::int64_t formatVersion = currentVersion; // carried through; a higher number is not refused here
    TeskStudyFrame studyFrame;
    TeskContextLens contextLens;
    CowArray<TeskContextualLensReview> contextualLensReviews; // newest first
    CowArray<TeskCode> codes;
    CowArray<TeskCategory> categories;
    CowArray<TeskTheme> themes;
    CowArray<TeskCodeApplication> applications;
    CowArray<TeskQuote> quotes;
    CowArray<TeskReportFinding> reportFindings; // in report order
    CowArray<TeskReportSection> reportSections; // in report order
    TeskTrustworthinessRecord trustworthiness;
    std::string reportMemo;
    std::optional<Bytes> reportDraftRTFData;
    Date updatedAt = platform::now();

    bool operator==(const TeskWorkspace&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskWorkspace;
        return std::tuple{defaulted("applications", &T::applications),
                          defaulted("categories", &T::categories),
                          defaulted("codes", &T::codes),
                          defaulted("contextLens", &T::contextLens),
                          defaulted("contextualLensReviews", &T::contextualLensReviews),
                          defaulted("formatVersion", &T::formatVersion),
                          defaulted("quotes", &T::quotes),
                          optional("reportDraftRTFData", &T::reportDraftRTFData),
                          defaulted("reportFindings", &T::reportFindings),
                          defaulted("reportMemo", &T::reportMemo),
                          defaulted("reportSections", &T::reportSections),
                          defaulted("studyFrame", &T::studyFrame),
                          defaulted("themes", &T::themes),
                          defaulted("trustworthiness", &T::trustworthiness),
                          defaulted("updatedAt", &T::updatedAt)};
    }
};

} // namespace mibrel

#pragma once

#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskReportSectionKind.h"
#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// A saved part of the report. All keys are required.
struct TeskReportSection {
    Uuid id = Uuid::random();
    TeskReportSectionKind kind = TeskReportSectionKind::studyFrame;
    std::string title;
    std::string body;
    std::string sourceSignature; // fingerprint of the data the body was built from
    bool includeInReport = true;
    Date createdAt = platform::now();
    Date updatedAt = platform::now();

    // A new section; an empty title becomes the kind's default title.
    static TeskReportSection make(TeskReportSectionKind kind, std::string title, std::string body,
                                  std::string sourceSignature, bool includeInReport = true) {
        TeskReportSection section;
        section.kind = kind;
        section.title = title.empty() ? std::string(defaultTitle(kind)) : std::move(title);
        section.body = std::move(body);
        section.sourceSignature = std::move(sourceSignature);
        section.includeInReport = includeInReport;
        return section;
    }

    bool operator==(const TeskReportSection&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskReportSection;
        return std::tuple{required("body", &T::body),
                          required("createdAt", &T::createdAt),
                          required("id", &T::id),
                          required("includeInReport", &T::includeInReport),
                          required("kind", &T::kind),
                          required("sourceSignature", &T::sourceSignature),
                          required("title", &T::title),
                          required("updatedAt", &T::updatedAt)};
    }
};

} // namespace mibrel

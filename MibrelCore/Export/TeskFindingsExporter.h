#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "MibrelCore/Model/TeskWorkspace.h"
#include "MibrelCore/Sources/TeskSource.h"

// The presentation packet: one JSON file that the tablet viewer Orvane Deck opens. Its
// schema belongs to the statistics product Zolvar and is dataset-shaped; a packet from
// Mibrel leaves the dataset fields neutral and puts its themes, quotes and
// trustworthiness summary into `mixedMethods`. The project is read from disk, so callers
// export what has been saved.
namespace mibrel::TeskFindingsExporter {

inline constexpr std::string_view fileExtension = "zvk";
inline constexpr std::string_view schemaVersion = "1.4";

struct VariableSummaryPayload {
    std::optional<std::string> construct;
    bool includeInReliability = false;
    bool isReverseCoded = false;
    std::string name;
    std::string role;

    bool operator==(const VariableSummaryPayload&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = VariableSummaryPayload;
        return std::tuple{optional("construct", &T::construct), required("includeInReliability", &T::includeInReliability),
                          required("isReverseCoded", &T::isReverseCoded), required("name", &T::name),
                          required("role", &T::role)};
    }
};

struct SurveyDesignPayload {
    std::string cluster;
    std::string estimand;
    bool isActive = false;
    std::string strata;
    std::string weight;

    bool operator==(const SurveyDesignPayload&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = SurveyDesignPayload;
        return std::tuple{required("cluster", &T::cluster), required("estimand", &T::estimand),
                          required("isActive", &T::isActive), required("strata", &T::strata),
                          required("weight", &T::weight)};
    }
};

// A statistical finding of the other product; Mibrel never has one, so it is an empty object.
struct FindingStub {
    bool operator==(const FindingStub&) const = default;
    static FindingStub fromJson(const platform::json::JsonObjectReader&) { return {}; }
    void toJson(platform::json::JsonObjectWriter&) const {}
};

struct ThemePayload {
    std::int64_t evidenceCount = 0;
    std::string id;
    std::string summary;
    std::string title;

    bool operator==(const ThemePayload&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ThemePayload;
        return std::tuple{required("evidenceCount", &T::evidenceCount), required("id", &T::id),
                          required("summary", &T::summary), required("title", &T::title)};
    }
};

struct QuotePayload {
    std::string id;
    std::string participantLabel;
    std::string text;
    std::string themeTitle;

    bool operator==(const QuotePayload&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = QuotePayload;
        return std::tuple{required("id", &T::id), required("participantLabel", &T::participantLabel),
                          required("text", &T::text), required("themeTitle", &T::themeTitle)};
    }
};

struct MixedMethodsPayload {
    std::string convergenceLabel;
    std::string convergenceSummary;
    std::string integrationNarrative;
    std::string jointDisplayNote;
    std::vector<QuotePayload> quotes;
    std::string studyDesign;
    std::vector<ThemePayload> themes;

    bool operator==(const MixedMethodsPayload&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = MixedMethodsPayload;
        return std::tuple{required("convergenceLabel", &T::convergenceLabel),
                          required("convergenceSummary", &T::convergenceSummary),
                          required("integrationNarrative", &T::integrationNarrative),
                          required("jointDisplayNote", &T::jointDisplayNote),
                          required("quotes", &T::quotes),
                          required("studyDesign", &T::studyDesign),
                          required("themes", &T::themes)};
    }
};

// The root of the file.
struct PresentationPayload {
    std::int64_t columnCount = 0;
    std::vector<std::string> constructs;
    std::string datasetName;
    Date exportedAt = platform::now();
    std::vector<FindingStub> findings;
    MixedMethodsPayload mixedMethods;
    std::int64_t rowCount = 0;
    std::string schemaVersion;
    SurveyDesignPayload surveyDesign;
    std::vector<std::string> transformationLog;
    std::vector<VariableSummaryPayload> variables;
    std::string zolvarVersion;

    bool operator==(const PresentationPayload&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = PresentationPayload;
        return std::tuple{required("columnCount", &T::columnCount),
                          required("constructs", &T::constructs),
                          required("datasetName", &T::datasetName),
                          required("exportedAt", &T::exportedAt),
                          required("findings", &T::findings),
                          required("mixedMethods", &T::mixedMethods),
                          required("rowCount", &T::rowCount),
                          required("schemaVersion", &T::schemaVersion),
                          required("surveyDesign", &T::surveyDesign),
                          required("transformationLog", &T::transformationLog),
                          required("variables", &T::variables),
                          required("zolvarVersion", &T::zolvarVersion)};
    }
};

// What an export wrote; not part of the file.
struct Result {
    std::filesystem::path fileURL;
    std::int64_t themeCount = 0;
    std::int64_t quoteCount = 0;
    std::int64_t sourceCount = 0;
    std::int64_t memberCheckCount = 0;
};

// Writes the packet for the project to `to`, atomically. A project without themes and
// quotes fails with TeskProjectError::writeFailed; read, decode and write errors pass
// through as they are.
Result exportPacket(const std::filesystem::path& projectURL, const std::string& projectTitle,
                    const std::string& appVersion, const std::filesystem::path& to);

PresentationPayload buildPayload(const TeskWorkspace& workspace, const std::vector<TeskSource>& sources,
                                 const std::string& projectTitle, const std::string& appVersion);

// The reflexivity, limitations and negative-case notes and the member-check count, a line
// each; a fixed sentence when there is nothing to say.
std::string trustworthinessSummary(const TeskTrustworthinessRecord& record);

} // namespace mibrel::TeskFindingsExporter

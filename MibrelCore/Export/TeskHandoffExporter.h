#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "MibrelCore/Model/TeskValueTypes.h"

// The handoff bundle, a folder with which the mixed-methods product Kessil Bench takes
// over the qualitative strand:
//
//   handoff/dataset.csv         one row per source: case_id, participant_label, interview_text
//   handoff/manifest.json       Manifest
//   handoff/variable-map.json   the role of each column
//   qual/workspace.json         the workspace, as the workspace store saves it
//   sources/                    a copy of the project's sources, media included
//
// The bundle is built in a hidden folder beside the destination and swapped in whole, so a
// failed export leaves an earlier bundle as it was. The project is read from disk, so
// callers export what has been saved.
namespace mibrel::TeskHandoffExporter {

inline constexpr std::int64_t currentHandoffVersion = 1;

struct SourceMapping {
    std::string label;
    std::string qualVariable = "interview_text";
    // Counts data rows from 0, while the CSV's case_id counts from 1.
    std::int64_t rowIndex = 0;
    Uuid sourceId;

    bool operator==(const SourceMapping&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = SourceMapping;
        return std::tuple{required("label", &T::label), required("qualVariable", &T::qualVariable),
                          required("rowIndex", &T::rowIndex), required("sourceId", &T::sourceId)};
    }
};

struct Manifest {
    std::int64_t codesExported = 0;
    Date exportedAt = platform::now();
    std::int64_t handoffVersion = currentHandoffVersion;
    std::string mibrelVersion;
    std::string qualProjectTitle;
    std::int64_t quotesExported = 0;
    std::vector<SourceMapping> sources;
    std::int64_t themesExported = 0;

    bool operator==(const Manifest&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = Manifest;
        return std::tuple{required("codesExported", &T::codesExported),
                          required("exportedAt", &T::exportedAt),
                          required("handoffVersion", &T::handoffVersion),
                          required("mibrelVersion", &T::mibrelVersion),
                          required("qualProjectTitle", &T::qualProjectTitle),
                          required("quotesExported", &T::quotesExported),
                          required("sources", &T::sources),
                          required("themesExported", &T::themesExported)};
    }
};

// "export/last-handoff.json" in the project: where the latest bundle went.
struct LastHandoff {
    std::string destination;
    Date exportedAt = platform::now();
    std::int64_t sourceCount = 0;

    bool operator==(const LastHandoff&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = LastHandoff;
        return std::tuple{required("destination", &T::destination), required("exportedAt", &T::exportedAt),
                          required("sourceCount", &T::sourceCount)};
    }
};

// What an export wrote; not part of the bundle.
struct Result {
    std::filesystem::path handoffURL;
    Manifest manifest;
};

// Writes the bundle for the project to `to`, replacing whatever is there only once the new
// bundle is complete. A project without sources fails with TeskProjectError::writeFailed;
// read, decode and file errors pass through as they are.
Result exportBundle(const std::filesystem::path& projectURL, const std::string& projectTitle,
                    const std::string& appVersion, const std::filesystem::path& to);

// The value as one CSV field: quoted, with quotes doubled, when it holds a comma, a
// quotation mark or a line break; otherwise unchanged.
std::string csvField(std::string_view value);

// Moves the finished folder `from` to `to`. Something already at `to` is set aside first
// and restored if the move fails, so `to` ends up holding the old item or the new one.
void installBundle(const std::filesystem::path& from, const std::filesystem::path& to);

} // namespace mibrel::TeskHandoffExporter

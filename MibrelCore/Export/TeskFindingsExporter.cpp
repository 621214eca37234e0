#include "MibrelCore/Export/TeskFindingsExporter.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "MibrelCore/Storage/TeskProjectError.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "Platform/Json/JsonFile.h"
#include "Platform/Text/Text.h"

namespace mibrel::TeskFindingsExporter {
namespace {

constexpr const char* kJointDisplayNote = "Exported from Merivante Mibrel. Themes and quotes reflect the qualitative "
                                          "strand only; no quantitative results are included.";
constexpr const char* kUnknownParticipant = "Participant";

std::int64_t count(const auto& items) { return static_cast<std::int64_t>(items.size()); }

// "1 theme", "0 themes", "2 themes".
std::string counted(std::int64_t number, const std::string& noun) {
    return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) text += separator;
        text += parts[i];
    }
    return text;
}

using NamesByID = std::unordered_map<Uuid, std::string>;

ThemePayload themePayload(const TeskTheme& theme, const TeskWorkspace& workspace, const NamesByID& codeNames) {
    std::vector<std::string> lines;
    std::string memo = platform::text::trimmed(theme.memo);
    if (!memo.empty()) lines.push_back(std::move(memo));
    std::vector<std::string> names;
    for (const auto& codeID : theme.codeIDs) {
        if (auto found = codeNames.find(codeID); found != codeNames.end()) names.push_back(found->second);
    }
    if (!names.empty()) lines.push_back("Codes: " + joined(names, ", "));

    // Only the theme's own codes count; its categories' codes are not followed.
    const std::unordered_set<Uuid> ownCodes(theme.codeIDs.begin(), theme.codeIDs.end());
    const auto applications = std::count_if(workspace.applications.begin(), workspace.applications.end(),
                                            [&](const TeskCodeApplication& a) { return ownCodes.contains(a.codeID); });
    const auto quotes = std::count_if(workspace.quotes.begin(), workspace.quotes.end(), [&](const TeskQuote& quote) {
        return std::find(quote.themeIDs.begin(), quote.themeIDs.end(), theme.id) != quote.themeIDs.end();
    });
    return ThemePayload{static_cast<std::int64_t>(applications + quotes), theme.id.uuidString(), joined(lines, "\n"),
                        theme.name};
}

QuotePayload quotePayload(const TeskQuote& quote, const NamesByID& themeNames, const NamesByID& sourceLabels) {
    std::vector<std::string> titles;
    for (const auto& themeID : quote.themeIDs) {
        if (auto found = themeNames.find(themeID); found != themeNames.end()) titles.push_back(found->second);
    }
    const auto source = sourceLabels.find(quote.response.sourceID);
    return QuotePayload{quote.id.uuidString(), source != sourceLabels.end() ? source->second : kUnknownParticipant,
                        quote.text, joined(titles, ", ")};
}

// Later entries win for a repeated id.
template <class Items, class Name>
NamesByID namesByID(const Items& items, Name name) {
    NamesByID names;
    for (const auto& item : items) names.insert_or_assign(item.id, name(item));
    return names;
}

} // namespace

std::string trustworthinessSummary(const TeskTrustworthinessRecord& record) {
    std::vector<std::string> lines;
    const auto addNote = [&lines](const char* heading, const std::string& note) {
        const std::string text = platform::text::trimmed(note);
        if (!text.empty()) lines.push_back(std::string(heading) + text);
    };
    addNote("Reflexivity: ", record.reflexivityNotes);
    addNote("Limitations: ", record.limitationsNotes);
    addNote("Negative cases: ", record.negativeCaseNotes);
    if (!record.memberChecks.empty()) {
        lines.push_back(counted(count(record.memberChecks), "member check") + " recorded.");
    }
    if (lines.empty()) return "No trustworthiness notes recorded yet.";
    return joined(lines, "\n");
}

PresentationPayload buildPayload(const TeskWorkspace& workspace, const std::vector<TeskSource>& sources,
                                 const std::string& projectTitle, const std::string& appVersion) {
    const NamesByID codeNames = namesByID(workspace.codes, [](const TeskCode& code) { return code.name; });
    const NamesByID sourceLabels = namesByID(sources, [](const TeskSource& source) { return source.label; });
    const NamesByID themeNames = namesByID(workspace.themes, [](const TeskTheme& theme) { return theme.name; });

    MixedMethodsPayload mixed;
    mixed.studyDesign = "Qualitative";
    mixed.convergenceLabel = "Qualitative evidence";
    mixed.convergenceSummary = trustworthinessSummary(workspace.trustworthiness);
    mixed.jointDisplayNote = kJointDisplayNote;
    for (const auto& theme : workspace.themes) mixed.themes.push_back(themePayload(theme, workspace, codeNames));
    // Every quote goes in, whatever its role: the packet makes no selection.
    for (const auto& quote : workspace.quotes) mixed.quotes.push_back(quotePayload(quote, themeNames, sourceLabels));
    mixed.integrationNarrative = "This packet presents " + counted(count(mixed.themes), "theme") + " and " +
                                 counted(count(mixed.quotes), "quote") + " from qualitative analysis of " +
                                 counted(count(sources), "source") + " in Merivante Mibrel.";

    PresentationPayload payload;
    payload.schemaVersion = std::string(schemaVersion);
    payload.zolvarVersion = appVersion;
    payload.exportedAt = platform::now();
    payload.datasetName = projectTitle;
    payload.rowCount = count(sources);
    payload.columnCount = 0;
    payload.mixedMethods = std::move(mixed);
    return payload;
}

Result exportPacket(const std::filesystem::path& projectURL, const std::string& projectTitle,
                    const std::string& appVersion, const std::filesystem::path& to) {
    const TeskWorkspace workspace = TeskWorkspaceStore::load(projectURL).value_or(TeskWorkspace{});
    if (workspace.themes.isEmpty() && workspace.quotes.isEmpty()) {
        throw TeskProjectError::writeFailed("This project has no themes or quotes to present yet.");
    }
    // A missing index is rebuilt from the sources' folders and may well be empty; a damaged
    // one with nothing to rebuild from fails with its read error.
    const std::vector<TeskSource> sources = TeskSourceStore::loadIndex(projectURL);
    const PresentationPayload payload = buildPayload(workspace, sources, projectTitle, appVersion);
    platform::json::writeJsonFile(to, payload);
    return Result{to, count(payload.mixedMethods.themes), count(payload.mixedMethods.quotes), count(sources),
                  count(workspace.trustworthiness.memberChecks)};
}

} // namespace mibrel::TeskFindingsExporter

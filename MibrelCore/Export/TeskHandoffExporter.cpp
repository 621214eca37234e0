#include "MibrelCore/Export/TeskHandoffExporter.h"

#include <algorithm>
#include <system_error>

#include "MibrelCore/Storage/TeskProjectError.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Json/JsonFile.h"

namespace mibrel::TeskHandoffExporter {
namespace fs = std::filesystem;
namespace files = platform::files;
using files::FileError;

namespace {

constexpr const char* kQualVariable = "interview_text";

struct VariableRole {
    std::string role;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        return std::tuple{required("role", &VariableRole::role)};
    }
};

// How the receiving side should treat each column of the dataset.
struct VariableMap {
    VariableRole case_id{"identifier"};
    VariableRole interview_text{"qual"};
    VariableRole participant_label{"identifier"};

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = VariableMap;
        return std::tuple{required("case_id", &T::case_id), required("interview_text", &T::interview_text),
                          required("participant_label", &T::participant_label)};
    }
};

// The hidden folder the bundle is built in; removed however the export ends, since a
// successful one has already moved it away.
class BuildFolder {
public:
    explicit BuildFolder(fs::path path) : m_path(std::move(path)) {}
    ~BuildFolder() {
        try {
            files::removeItem(m_path);
        } catch (const std::exception&) {
            // Leftovers are hidden and harmless; the export's own outcome matters more.
        }
    }
    BuildFolder(const BuildFolder&) = delete;
    BuildFolder& operator=(const BuildFolder&) = delete;

    const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
};

// Absolute, normalised, and without a trailing separator, so that the last component
// is the bundle's own name.
fs::path cleaned(const fs::path& path) {
    fs::path result = fs::absolute(path).lexically_normal();
    if (!result.has_filename() && result.has_relative_path()) result = result.parent_path();
    return result;
}

// A hidden sibling of `destination`: ".{name}.{uuid}{ending}".
fs::path hiddenSibling(const fs::path& destination, const std::string& ending) {
    return destination.parent_path() /
           ("." + destination.filename().string() + "." + Uuid::random().uuidString() + ending);
}

void moveItem(const fs::path& from, const fs::path& to) {
    std::error_code error;
    fs::rename(from, to, error);
    if (error) throw FileError(FileError::Operation::write, to, error);
}

bool isWithin(const fs::path& inner, const fs::path& outer) {
    return std::mismatch(inner.begin(), inner.end(), outer.begin(), outer.end()).second == outer.end();
}

fs::path resolved(const fs::path& path) {
    std::error_code error;
    fs::path result = fs::weakly_canonical(path, error);
    return error ? path : result;
}

// Installing the bundle replaces what stands at the destination, so it must not be the
// project or a folder holding it; and the bundle copies "sources", so it must not go there.
void checkDestination(const fs::path& projectURL, const fs::path& destination) {
    const fs::path project = resolved(cleaned(projectURL));
    const fs::path target = resolved(destination);
    if (isWithin(project, target) || isWithin(target, project / "sources")) {
        throw TeskProjectError::writeFailed("Choose a place for the handoff bundle that is not the project, a folder holding it, or its sources folder.");
    }
}

std::string csvRow(std::int64_t caseID, const std::string& label, const std::string& text) {
    return csvField(std::to_string(caseID)) + "," + csvField(label) + "," + csvField(text) + "\n";
}

} // namespace

std::string csvField(std::string_view value) {
    if (value.find_first_of(",\"\n\r") == std::string_view::npos) return std::string(value);
    std::string quoted = "\"";
    for (const char c : value) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    quoted += '"';
    return quoted;
}

void installBundle(const fs::path& from, const fs::path& bundle) {
    const fs::path to = cleaned(bundle);
    files::createDirectories(to.parent_path());
    if (!files::itemExists(to)) {
        moveItem(from, to);
        return;
    }
    const fs::path backup = hiddenSibling(to, ".backup");
    moveItem(to, backup);
    try {
        moveItem(from, to);
    } catch (const std::exception&) {
        try {
            if (files::itemExists(to)) files::removeItem(to);
            moveItem(backup, to);
        } catch (const std::exception&) {
            // The failed move is what the caller needs to hear about.
        }
        throw;
    }
    files::removeItem(backup);
}

Result exportBundle(const fs::path& projectURL, const std::string& projectTitle, const std::string& appVersion,
                    const fs::path& to) {
    // Missing or damaged, the index is rebuilt from the sources' own folders; a damaged
    // one with nothing to rebuild from fails with its read error.
    const std::vector<TeskSource> sources = TeskSourceStore::loadIndex(projectURL);
    if (sources.empty()) throw TeskProjectError::writeFailed("This project has no sources to hand off.");
    const TeskWorkspace workspace = TeskWorkspaceStore::load(projectURL).value_or(TeskWorkspace{});

    const fs::path destination = cleaned(to);
    checkDestination(projectURL, destination);
    const BuildFolder build(hiddenSibling(destination, ".tmp"));
    const fs::path handoff = build.path() / "handoff";
    files::createDirectories(handoff);

    Manifest manifest;
    manifest.exportedAt = platform::now();
    manifest.mibrelVersion = appVersion;
    manifest.qualProjectTitle = projectTitle;
    manifest.codesExported = static_cast<std::int64_t>(workspace.codes.size());
    manifest.themesExported = static_cast<std::int64_t>(workspace.themes.size());
    manifest.quotesExported = static_cast<std::int64_t>(workspace.quotes.size());

    std::string csv = "case_id,participant_label,interview_text\n";
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const TeskSource& source = sources[i];
        const auto rowIndex = static_cast<std::int64_t>(i);
        // A source without a transcript file (an untranscribed recording) has empty text.
        const TeskTranscript transcript = TeskSourceStore::loadTranscript(source.id, projectURL);
        csv += csvRow(rowIndex + 1, source.label, transcript.fullText());
        manifest.sources.push_back(SourceMapping{source.label, kQualVariable, rowIndex, source.id});
    }
    files::writeFileAtomically(handoff / "dataset.csv", csv);
    platform::json::writeJsonFile(handoff / "manifest.json", manifest);
    platform::json::writeJsonFile(handoff / "variable-map.json", VariableMap{});
    TeskWorkspaceStore::save(workspace, build.path());

    const fs::path projectSources = TeskSourceStore::sourcesDirectory(projectURL);
    if (files::itemExists(projectSources)) {
        const fs::path copied = build.path() / "sources";
        std::error_code error;
        fs::copy(projectSources, copied, fs::copy_options::recursive, error);
        if (error) throw FileError(FileError::Operation::write, copied, error);
    }

    installBundle(build.path(), destination);

    const fs::path exportFolder = projectURL / "export";
    files::createDirectories(exportFolder);
    platform::json::writeJsonFile(exportFolder / "last-handoff.json",
                                  LastHandoff{destination.string(), platform::now(),
                                              static_cast<std::int64_t>(sources.size())});
    return Result{destination, std::move(manifest)};
}

} // namespace mibrel::TeskHandoffExporter

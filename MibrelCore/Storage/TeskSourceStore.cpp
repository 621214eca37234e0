#include "MibrelCore/Storage/TeskSourceStore.h"

#include <algorithm>
#include <exception>

#include "Platform/Files/FileSystem.h"
#include "Platform/Json/JsonFile.h"
#include "Platform/Text/Text.h"

namespace mibrel::TeskSourceStore {
namespace fs = std::filesystem;
namespace files = platform::files;
using platform::json::readJsonFile;
using platform::json::writeJsonFile;

namespace {

constexpr const char* kIndexFileName = "index.json";
constexpr const char* kMetaFileName = "meta.json";
constexpr const char* kTranscriptFileName = "transcript.json";

bool byDateThenLabel(const TeskSource& lhs, const TeskSource& rhs) {
    if (lhs.date != rhs.date) return lhs.date < rhs.date;
    return platform::text::localizedStandardCompare(lhs.label, rhs.label) < 0;
}

} // namespace

fs::path sourcesDirectory(const fs::path& projectURL) { return projectURL / "sources"; }

fs::path sourceDirectory(const fs::path& projectURL, const Uuid& sourceID) {
    return sourcesDirectory(projectURL) / sourceID.uuidString();
}

std::vector<TeskSource> recoverSources(const fs::path& projectURL) {
    const fs::path folder = sourcesDirectory(projectURL);
    std::vector<files::DirectoryEntry> entries;
    try {
        entries = files::listDirectory(folder);
    } catch (const files::FileError&) {
        return {};
    }
    std::vector<TeskSource> sources;
    for (const auto& entry : entries) {
        const fs::path meta = folder / entry.name / kMetaFileName;
        if (!entry.isDirectory || !files::itemExists(meta)) continue;
        try {
            sources.push_back(readJsonFile<TeskSource>(meta));
        } catch (const std::exception&) {
            // A damaged copy cannot help the rebuild; the others still can.
        }
    }
    std::stable_sort(sources.begin(), sources.end(), byDateThenLabel);
    return sources;
}

std::vector<TeskSource> loadIndex(const fs::path& projectURL) {
    const fs::path index = sourcesDirectory(projectURL) / kIndexFileName;
    if (!files::itemExists(index)) return recoverSources(projectURL);
    try {
        return readJsonFile<std::vector<TeskSource>>(index);
    } catch (const std::exception&) {
        auto recovered = recoverSources(projectURL);
        if (recovered.empty()) throw;
        return recovered;
    }
}

void saveIndex(const std::vector<TeskSource>& sources, const fs::path& projectURL) {
    files::createDirectories(sourcesDirectory(projectURL));
    writeJsonFile(sourcesDirectory(projectURL) / kIndexFileName, sources);
}

void saveSource(const TeskSource& source, const fs::path& projectURL) {
    const fs::path folder = sourceDirectory(projectURL, source.id);
    files::createDirectories(folder);
    writeJsonFile(folder / kMetaFileName, source);
}

TeskTranscript loadTranscript(const Uuid& sourceID, const fs::path& projectURL) {
    const fs::path file = sourceDirectory(projectURL, sourceID) / kTranscriptFileName;
    if (!files::itemExists(file)) return TeskTranscript{};
    return readJsonFile<TeskTranscript>(file);
}

void saveTranscript(const TeskTranscript& transcript, const Uuid& sourceID, const fs::path& projectURL) {
    const fs::path folder = sourceDirectory(projectURL, sourceID);
    files::createDirectories(folder);
    writeJsonFile(folder / kTranscriptFileName, transcript);
}

void deleteSource(const Uuid& sourceID, const fs::path& projectURL) {
    files::removeItem(sourceDirectory(projectURL, sourceID));
}

} // namespace mibrel::TeskSourceStore

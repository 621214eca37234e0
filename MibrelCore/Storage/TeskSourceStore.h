#pragma once

#include <filesystem>
#include <vector>

#include "MibrelCore/Sources/TeskSource.h"
#include "MibrelCore/Sources/TeskTranscript.h"

// Owns a package's "sources/" folder: "index.json" lists every source in order; each
// source has a folder named by its id with "meta.json" (a copy of its record, from which
// a lost index is rebuilt), "transcript.json" and its media files. Stateless.
namespace mibrel::TeskSourceStore {

std::filesystem::path sourcesDirectory(const std::filesystem::path& projectURL);
std::filesystem::path sourceDirectory(const std::filesystem::path& projectURL, const Uuid& sourceID);

// The index; when it is missing or damaged, the sources found in the folders' "meta.json"
// copies, sorted by date then label. A damaged index with nothing to recover throws its error.
std::vector<TeskSource> loadIndex(const std::filesystem::path& projectURL);

// The sources that the folders' "meta.json" copies describe, by date, then label.
std::vector<TeskSource> recoverSources(const std::filesystem::path& projectURL);

void saveIndex(const std::vector<TeskSource>& sources, const std::filesystem::path& projectURL);
void saveSource(const TeskSource& source, const std::filesystem::path& projectURL);

// A source without "transcript.json" (a recording not yet transcribed) has an empty transcript.
TeskTranscript loadTranscript(const Uuid& sourceID, const std::filesystem::path& projectURL);
void saveTranscript(const TeskTranscript& transcript, const Uuid& sourceID, const std::filesystem::path& projectURL);

// Removes the source's folder; a missing one is fine. The index is the caller's to rewrite.
void deleteSource(const Uuid& sourceID, const std::filesystem::path& projectURL);

} // namespace mibrel::TeskSourceStore

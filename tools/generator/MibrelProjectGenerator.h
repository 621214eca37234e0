#pragma once

#include <cstdint>
#include <filesystem>
#include <random>
#include <vector>

#include "MibrelCore/Analysis/TeskAnalysisCorpus.h"
#include "MibrelCore/Audit/TeskAuditEvent.h"

// Large, realistic-looking projects for benchmarks and manual trials. The same size and
// seed always give the same project, ids and dates included.
namespace mibrel::dev {

struct GeneratedProjectSize {
    std::int64_t sources = 40;
    std::int64_t segments = 50; // per source
    std::int64_t codes = 60;
    std::int64_t applications = 1'000;
    std::int64_t quotes = 100;
    std::int64_t themes = 8;
    std::int64_t auditEvents = 200;
    std::uint64_t seed = 1;
};

struct GeneratedProject {
    std::vector<TeskSource> sources;
    TeskTranscriptMap transcripts;
    TeskWorkspace workspace;
    std::vector<TeskAuditEvent> auditEvents;

    TeskAnalysisCorpus corpus() const { return {sources, transcripts, workspace}; }
};

// A version-4 id drawn from `random`, so generated ids repeat with the seed.
Uuid randomUuid(std::mt19937_64& random);

GeneratedProject generateProject(const GeneratedProjectSize& size);

// Writes the project as a package at `location` (which must not exist yet), titled "Generated study".
void writeProject(const GeneratedProject& project, const std::filesystem::path& location);

} // namespace mibrel::dev

#include <filesystem>

#include <benchmark/benchmark.h>

#include "MibrelCore/Analysis/TeskAnalysisEngine.h"
#include "MibrelCore/Analysis/TeskCodeReadiness.h"
#include "MibrelCore/Report/TeskReportComposer.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "tools/generator/MibrelProjectGenerator.h"

// The analysis of a project of 2,000 interviews: every redraw recomputes these, so each
// must stay well under a frame budget a person notices.
namespace mibrel::bench {
namespace {
namespace fs = std::filesystem;
namespace engine = TeskAnalysisEngine;

const dev::GeneratedProject& project() {
    static const dev::GeneratedProject generated = dev::generateProject(
        {.sources = 2'000, .segments = 200, .codes = 500, .applications = 100'000, .quotes = 5'000, .themes = 50,
         .auditEvents = 20'000, .seed = 3});
    return generated;
}

template <class Run>
void measure(benchmark::State& state, Run run) {
    const TeskAnalysisCorpus corpus = project().corpus();
    for (auto _ : state) benchmark::DoNotOptimize(run(corpus));
}

void BM_CorpusOverview(benchmark::State& s) { measure(s, [](const auto& c) { return engine::corpusOverview(c); }); }
void BM_CodeFrequency(benchmark::State& s) { measure(s, [](const auto& c) { return engine::codeFrequency(c); }); }
void BM_CodeSourceMatrix(benchmark::State& s) { measure(s, [](const auto& c) { return engine::codeSourceMatrix(c); }); }
void BM_CodeCooccurrence(benchmark::State& s) { measure(s, [](const auto& c) { return engine::codeCooccurrence(c); }); }
void BM_WordFrequencyCorpus(benchmark::State& s) {
    measure(s, [](const auto& c) { return engine::wordFrequency(c, engine::CorpusScope{}, 1, 40); });
}
void BM_WordFrequencyTheme(benchmark::State& s) {
    const Uuid theme = project().workspace.themes[0].id;
    measure(s, [&](const auto& c) { return engine::wordFrequency(c, engine::ThemeScope{theme}, 1, 40); });
}
void BM_ThemeCoverage(benchmark::State& s) { measure(s, [](const auto& c) { return engine::themeCoverage(c); }); }
void BM_CodingStripes(benchmark::State& s) {
    const Uuid source = project().sources[0].id;
    measure(s, [&](const auto& c) { return engine::codingStripes(c, source); });
}
void BM_RepresentativeQuotes(benchmark::State& s) { measure(s, [](const auto& c) { return engine::representativeQuotes(c, 5); }); }
void BM_RigorChecks(benchmark::State& s) { measure(s, [](const auto& c) { return engine::rigorChecks(c); }); }
void BM_CodeReadiness(benchmark::State& s) {
    measure(s, [](const auto& c) { return TeskCodeReadinessEngine::readiness(c.workspace); });
}
void BM_FindingReadiness(benchmark::State& s) { measure(s, [](const auto& c) { return TeskReportComposer::readiness(c); }); }
void BM_ComposeReport(benchmark::State& s) { measure(s, [](const auto& c) { return TeskReportComposer::compose(c, "Study", 4); }); }

// Opening: both state objects bind to the package on disk, as the window does.
void BM_OpenLargeProject(benchmark::State& state) {
    const fs::path location = fs::temp_directory_path() / "mibrel-analysis-bench.mvibrl";
    fs::remove_all(location);
    dev::writeProject(project(), location);
    for (auto _ : state) {
        MibrelScriptedPanels panels;
        MibrelSourcesState sources(panels);
        MibrelWorkspaceState workspace;
        sources.bind(location);
        workspace.bind(location);
        benchmark::DoNotOptimize(sources.sources().size() + workspace.workspace().codes.size());
    }
    fs::remove_all(location);
}

} // namespace

BENCHMARK(BM_CorpusOverview)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CodeFrequency)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CodeSourceMatrix)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CodeCooccurrence)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WordFrequencyCorpus)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WordFrequencyTheme)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ThemeCoverage)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CodingStripes)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RepresentativeQuotes)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RigorChecks)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CodeReadiness)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindingReadiness)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ComposeReport)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenLargeProject)->Unit(benchmark::kMillisecond);

} // namespace mibrel::bench

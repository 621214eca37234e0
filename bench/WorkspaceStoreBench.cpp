#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "MibrelCore/Audit/TeskAuditTrail.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Json/JsonCoding.h"
#include "Platform/Json/JsonFile.h"
#include "bench/LargeProjectGenerator.h"

// Saving and loading a large workspace, split into its parts: encoding to text, the
// atomic write, parsing the text, and decoding it into records.
namespace mibrel::bench {
namespace {
namespace fs = std::filesystem;

struct Scratch {
    fs::path folder = fs::temp_directory_path() / "mibrel-bench";
    Scratch() { fs::create_directories(folder); }
    ~Scratch() { fs::remove_all(folder); }
};

const TeskWorkspace& largeWorkspace() {
    static const TeskWorkspace workspace = makeLargeWorkspace();
    return workspace;
}

const std::string& largeWorkspaceText() {
    static const std::string text = platform::json::encode(largeWorkspace());
    return text;
}

// Encoding alone: the text is handed over in chunks, as a save does, and dropped.
void BM_WorkspaceEncode(benchmark::State& state) {
    for (auto _ : state) {
        std::size_t bytes = 0;
        platform::json::JsonWriter writer([&bytes](std::string_view chunk) { bytes += chunk.size(); });
        platform::json::JsonCoder<TeskWorkspace>::encode(writer, largeWorkspace());
        writer.finish();
        benchmark::DoNotOptimize(bytes);
    }
    state.counters["MB"] = static_cast<double>(largeWorkspaceText().size()) / 1e6;
}

void BM_WorkspaceAtomicWrite(benchmark::State& state) {
    Scratch scratch;
    const std::string& text = largeWorkspaceText();
    for (auto _ : state) platform::files::writeFileAtomically(scratch.folder / "workspace.json", text);
}

void BM_WorkspaceSave(benchmark::State& state) {
    Scratch scratch;
    for (auto _ : state) TeskWorkspaceStore::save(largeWorkspace(), scratch.folder);
}

void BM_WorkspaceParse(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(platform::json::JsonDocument::parse(largeWorkspaceText()));
}

void BM_WorkspaceDecode(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(platform::json::decode<TeskWorkspace>(largeWorkspaceText()));
}

void BM_WorkspaceLoad(benchmark::State& state) {
    Scratch scratch;
    TeskWorkspaceStore::save(largeWorkspace(), scratch.folder);
    for (auto _ : state) benchmark::DoNotOptimize(TeskWorkspaceStore::load(scratch.folder));
}

void BM_AuditAppendTo20000(benchmark::State& state) {
    Scratch scratch;
    std::vector<TeskAuditEvent> events(20'000);
    for (std::size_t i = 0; i < events.size(); ++i) {
        events[i].event = "application_added";
        events[i].detail = "Workload intensity " + std::to_string(i % 40);
    }
    const fs::path log = TeskAuditTrail::auditURL(scratch.folder);
    fs::create_directories(log.parent_path());
    platform::json::writeJsonFile(log, events);
    for (auto _ : state) TeskAuditTrail::append("code_created", "Mentoring", scratch.folder);
}

BENCHMARK(BM_WorkspaceEncode)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WorkspaceAtomicWrite)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WorkspaceSave)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WorkspaceParse)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WorkspaceDecode)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WorkspaceLoad)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_AuditAppendTo20000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace mibrel::bench

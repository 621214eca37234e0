#include <filesystem>
#include <string>
#include <malloc.h>

#include <benchmark/benchmark.h>

#include "MibrelCore/Audit/TeskAuditTrail.h"
#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "MibrelMac/App/MibrelAuditHook.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "Platform/Json/JsonFile.h"
#include "bench/LargeProjectGenerator.h"

// One edit end to end on a large project (change, save, undo step, audit append), and
// what a long undo history costs in memory.
namespace mibrel::bench {
namespace {
namespace fs = std::filesystem;

struct LargeProject {
    fs::path url = fs::temp_directory_path() / "mibrel-bench-edit.mvibrl";

    LargeProject() {
        TeskProjectArchive::createEmpty(url, "Bench", true);
        TeskWorkspaceStore::save(makeLargeWorkspace(), url);
        std::vector<TeskAuditEvent> events(20'000);
        for (auto& event : events) event.event = "application_added";
        fs::create_directories(TeskAuditTrail::auditURL(url).parent_path());
        platform::json::writeJsonFile(TeskAuditTrail::auditURL(url), events);
    }
    ~LargeProject() { fs::remove_all(url); }
};

// Heap in use, in megabytes (resident size would hide memory the allocator reuses).
double heapInUseMB() {
    const struct mallinfo2 info = ::mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / 1e6;
}

void BM_AddApplicationTransaction(benchmark::State& state) {
    LargeProject project;
    MibrelWorkspaceState workspace;
    workspace.bind(project.url);
    workspace.onAuditEvent = auditTrailHook(workspace, project.url);
    const Uuid code = workspace.workspace().codes[0].id;
    const Uuid source = Uuid::random();
    int segment = 0;
    for (auto _ : state) {
        workspace.addApplication({source, "bench-" + std::to_string(segment++)}, code, std::nullopt, "");
    }
}

void BM_UndoHistoryMemory(benchmark::State& state) {
    for (auto _ : state) {
        const double before = heapInUseMB();
        MibrelWorkspaceState workspace;
        workspace.editDirectly([](TeskWorkspace& w) { w = makeLargeWorkspace(); });
        const double withWorkspace = heapInUseMB();
        const Uuid code = workspace.workspace().codes[0].id;
        const Uuid source = Uuid::random();
        for (int step = 0; step < 200; ++step) {
            workspace.addApplication({source, "history-" + std::to_string(step)}, code, std::nullopt, "");
        }
        const double withHistory = heapInUseMB();
        state.counters["workspaceMB"] = withWorkspace - before;
        state.counters["history200MB"] = withHistory - withWorkspace;
        state.counters["ratio"] = (withHistory - withWorkspace) / (withWorkspace - before);
    }
}

BENCHMARK(BM_AddApplicationTransaction)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_UndoHistoryMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace
} // namespace mibrel::bench

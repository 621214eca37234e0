#pragma once

#include <sys/resource.h>

#include <filesystem>

#include <benchmark/benchmark.h>

namespace mibrel::bench {

// This process's peak resident memory so far, in MB.
inline double peakMemoryMB() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

// Times `import(file)`; freeing the million rows it made afterwards is not part of it.
template <typename Import>
void timeImport(benchmark::State& state, const std::filesystem::path& file, const char* unit, double count,
                Import import) {
    for (auto _ : state) {
        auto dataset = import(file);
        benchmark::DoNotOptimize(dataset.rows.data());
        state.PauseTiming();
        dataset = {};
        state.ResumeTiming();
    }
    state.counters[unit] = count;
    state.counters["MB"] = static_cast<double>(std::filesystem::file_size(file)) / 1e6;
    state.counters["peakMemoryMB"] = peakMemoryMB();
}

} // namespace mibrel::bench

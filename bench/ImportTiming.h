#pragma once

#include <sys/resource.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>

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

// Runs a yardstick program that prints "<seconds> <peak MB>" and reports both; `before` runs
// ahead of each repetition, outside the timing.
inline void timeYardstick(benchmark::State& state, const std::string& command, const char* unavailable,
                          const std::function<void()>& before = [] {}) {
    double peak = 0;
    for (auto _ : state) {
        before();
        FILE* pipe = popen(command.c_str(), "r");
        double seconds = -1;
        if (pipe == nullptr || std::fscanf(pipe, "%lf %lf", &seconds, &peak) != 2 || pclose(pipe) != 0) {
            state.SkipWithError(unavailable);
            return;
        }
        state.SetIterationTime(seconds);
    }
    state.counters["peakMemoryMB"] = peak;
}

} // namespace mibrel::bench

#include <algorithm>
#include <cmath>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "MerivanteCore/Statistics/GroupComparisonEngine.h"
#include "MerivanteCore/Statistics/OmegaReliabilityAnalyzer.h"
#include "MerivanteCore/Statistics/ReliabilityAnalyzer.h"

// The analyses on survey-sized data: a group comparison of 1,000,000 responses in 8 groups
// of unequal spread (so Welch and Games-Howell run, with a studentized range quantile per
// pair), and alpha and omega on 100,000 cases × 20 items with scattered gaps.
namespace mibrel::bench {
namespace {

constexpr int kResponses = 1'000'000;
constexpr int kGroups = 8;
constexpr int kCases = 100'000;
constexpr int kItems = 20;

struct Comparison {
    std::vector<std::string> groups;
    std::vector<std::optional<double>> outcomes;
};

const Comparison& comparisonData() {
    static const Comparison data = [] {
        Comparison made;
        std::mt19937 random(20261122);
        std::normal_distribution<double> normal;
        for (int row = 0; row < kResponses; ++row) {
            const int group = row % kGroups;
            made.groups.push_back("Site " + std::to_string(group + 1));
            if (row % 50 == 7) made.outcomes.emplace_back();
            else made.outcomes.emplace_back(50 + group * 0.3 + normal(random) * (5 + group));
        }
        return made;
    }();
    return data;
}

const merivante::ItemMatrix& itemData() {
    static const merivante::ItemMatrix data = [] {
        merivante::ItemMatrix rows;
        std::mt19937 random(20261123);
        std::normal_distribution<double> normal;
        for (int row = 0; row < kCases; ++row) {
            const double trait = normal(random);
            std::vector<std::optional<double>> answers;
            for (int item = 0; item < kItems; ++item) {
                if (random() % 60 == 0) answers.emplace_back();
                else answers.emplace_back(std::clamp(std::round(3 + trait * (0.5 + item * 0.03) + normal(random)), 1.0, 5.0));
            }
            rows.push_back(std::move(answers));
        }
        return rows;
    }();
    return data;
}

void BM_GroupComparison(benchmark::State& state) {
    const Comparison& data = comparisonData();
    for (auto _ : state) {
        const auto result = merivante::GroupComparisonEngine::analyze("score", "site", data.groups, data.outcomes,
                                                                      "complete cases");
        benchmark::DoNotOptimize(result);
    }
    state.counters["rows"] = kResponses;
}
BENCHMARK(BM_GroupComparison)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ReliabilityAlpha(benchmark::State& state) {
    const merivante::ItemMatrix& rows = itemData();
    std::vector<std::string> names;
    for (int item = 0; item < kItems; ++item) names.push_back("Q" + std::to_string(item + 1));
    for (auto _ : state) {
        const auto result = merivante::ReliabilityAnalyzer::analyze(
            "Scale", names, rows, merivante::ReliabilityMissingDataRule::availableItemMean,
            merivante::ScaleScoreMethod::mean, 0.8);
        benchmark::DoNotOptimize(result);
    }
    state.counters["cases"] = kCases;
}
BENCHMARK(BM_ReliabilityAlpha)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ReliabilityOmega(benchmark::State& state) {
    const merivante::ItemMatrix& rows = itemData();
    std::vector<std::vector<std::optional<double>>> columns(kItems);
    for (const auto& row : rows)
        for (int item = 0; item < kItems; ++item) columns[static_cast<std::size_t>(item)].push_back(row[static_cast<std::size_t>(item)]);
    for (auto _ : state) benchmark::DoNotOptimize(merivante::OmegaReliabilityAnalyzer::analyze(columns));
    state.counters["cases"] = kCases;
}
BENCHMARK(BM_ReliabilityOmega)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
} // namespace mibrel::bench

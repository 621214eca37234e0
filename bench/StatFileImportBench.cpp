#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "MerivanteCore/Import/StatPackageImporter.h"
#include "bench/ImportTiming.h"
#include "tests/support/DtaBuilder.h"
#include "tests/support/SavBuilder.h"

// A survey of 1,000,000 cases and 20 variables as an SPSS and a Stata file, imported by
// Mibrel and, for scale, converted to CSV by the readstat command.
namespace mibrel::bench {
namespace {

namespace fs = std::filesystem;
using mibrel::testing::DtaBuilder;
using mibrel::testing::SavBuilder;

constexpr int kCases = 1'000'000;
constexpr int kItems = 8;
const char* const kGroups[] = {"North", "South", "East", "West"};
const char* const kGenders[] = {"Female", "Male", "Non-binary", ""};
const char* const kComments[] = {"", "Fine", "Too long, honestly", "More support from the district office",
                                 "Great mentors, poor pay", "I would like more planning time", "", "No"};
const char* const kCities[] = {"Zürich", "Lyon", "Porto", "Kraków", "Tromsø", "Gent"};

// Writes the file in a child process, so that building it leaves no mark on this
// process's peak memory.
void writeInChild(const fs::path& path, const std::function<std::string()>& make) {
    if (fs::exists(path)) return;
    const pid_t child = fork();
    if (child == 0) {
        const fs::path partial = path.string() + ".partial";
        std::ofstream(partial, std::ios::binary) << make();
        fs::rename(partial, path);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
}

std::string makeSav() {
    SavBuilder file(true);
    file.numeric("id", "Respondent", 5, 0);
    for (int item = 1; item <= kItems; ++item) file.numeric("q" + std::to_string(item), "Item " + std::to_string(item));
    for (int score = 1; score <= 4; ++score) file.numeric("score" + std::to_string(score), std::nullopt, 5, 2);
    file.numeric("started", std::nullopt, 20).numeric("finished", std::nullopt, 22);
    file.string("group", 8).string("gender", 12).string("comment", 40).string("city", 16).string("code", 8);
    file.valueLabels({{SavBuilder::float64(1), "Strongly disagree"}, {SavBuilder::float64(5), "Strongly agree"}},
                     {2, 3, 4, 5, 6, 7, 8, 9});
    file.extension(20, "UTF-8").endDictionary();
    std::mt19937 random(20261122);
    const auto pick = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    std::vector<SavBuilder::Cell> cells;
    for (int n = 0; n < kCases; ++n) {
        cells.clear();
        cells.emplace_back(std::optional<double>(1'000'000 + n));
        for (int item = 0; item < kItems; ++item) {
            cells.emplace_back(pick(40) == 0 ? std::nullopt : std::optional<double>(1 + pick(5)));
        }
        for (int score = 0; score < 4; ++score) cells.emplace_back(std::optional<double>(pick(10000) / 100.0));
        const double started = 13928630400.0 + 86400.0 * pick(300);
        cells.emplace_back(std::optional<double>(started));
        cells.emplace_back(std::optional<double>(started + pick(86400)));
        cells.emplace_back(std::string(kGroups[pick(4)]));
        cells.emplace_back(std::string(kGenders[pick(4)]));
        cells.emplace_back(std::string(kComments[pick(8)]));
        cells.emplace_back(std::string(kCities[pick(6)]));
        cells.emplace_back("C" + std::to_string(pick(1'000'000)));
        file.row(cells);
    }
    return file.bytes();
}

std::string makeDta() {
    DtaBuilder file(118, false);
    file.variable("id", 65528, "Respondent");
    for (int item = 1; item <= kItems; ++item) {
        file.variable("q" + std::to_string(item), 65530, "Item " + std::to_string(item), "agree");
    }
    for (int score = 1; score <= 4; ++score) file.variable("score" + std::to_string(score), 65526);
    file.variable("started", 65528).variable("finished", 65526);
    file.variable("group", 8).variable("gender", 12).variable("comment", 40).variable("city", 16).variable("code", 8);
    file.valueLabelTable("agree", {{1, "Strongly disagree"}, {5, "Strongly agree"}});
    std::mt19937 random(20261122);
    const auto pick = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    std::vector<std::string> cells;
    for (int n = 0; n < kCases; ++n) {
        cells.clear();
        cells.push_back(file.int32(1'000'000 + n));
        for (int item = 0; item < kItems; ++item) {
            cells.push_back(file.int8(static_cast<std::int8_t>(pick(40) == 0 ? 101 : 1 + pick(5))));
        }
        for (int score = 0; score < 4; ++score) cells.push_back(file.float64(pick(10000) / 100.0));
        const int started = 23000 + pick(300);
        cells.push_back(file.int32(started));
        cells.push_back(file.float64(started * 86400000.0 + pick(86400) * 1000.0));
        cells.push_back(DtaBuilder::text(kGroups[pick(4)], 8));
        cells.push_back(DtaBuilder::text(kGenders[pick(4)], 12));
        cells.push_back(DtaBuilder::text(kComments[pick(8)], 40));
        cells.push_back(DtaBuilder::text(kCities[pick(6)], 16));
        cells.push_back(DtaBuilder::text("C" + std::to_string(pick(1'000'000)), 8));
        file.row(cells);
    }
    return file.bytes();
}

const fs::path& savFile() {
    static const fs::path path = [] {
        const fs::path file = fs::temp_directory_path() / "mibrel-bench-survey-1m-v1.sav";
        writeInChild(file, makeSav);
        return file;
    }();
    return path;
}

const fs::path& dtaFile() {
    static const fs::path path = [] {
        const fs::path file = fs::temp_directory_path() / "mibrel-bench-survey-1m-v1.dta";
        writeInChild(file, makeDta);
        return file;
    }();
    return path;
}

void BM_DatasetImportSPSS(benchmark::State& state) {
    timeImport(state, savFile(), "cases", kCases,
               [](const fs::path& file) { return merivante::StatPackageImporter().importSPSS(file); });
}
BENCHMARK(BM_DatasetImportSPSS)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_DatasetImportStata(benchmark::State& state) {
    timeImport(state, dtaFile(), "cases", kCases,
               [](const fs::path& file) { return merivante::StatPackageImporter().importStata(file); });
}
BENCHMARK(BM_DatasetImportStata)->Unit(benchmark::kMillisecond)->Iterations(1);

// `readstat input output.csv`, started and timed by a small Python process so that its peak
// memory is its own, not inherited from this one.
void convertWithReadstat(benchmark::State& state, const fs::path& input) {
    const fs::path output = fs::temp_directory_path() / "mibrel-bench-readstat.csv";
    const std::string command =
        "/usr/bin/python3 -c \"import os, resource, subprocess, sys, time; start = time.perf_counter(); "
        "subprocess.run(['readstat', sys.argv[1], sys.argv[2]], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL); "
        "assert os.path.getsize(sys.argv[2]) > 0; "
        "print(time.perf_counter() - start, resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024)\" '" +
        input.string() + "' '" + output.string() + "' 2>&1";
    timeYardstick(state, command, "readstat could not convert the file (install readstat)",
                  [&output] { fs::remove(output); });
    fs::remove(output);
}

void BM_DatasetImportReadstatSPSSToCSV(benchmark::State& state) { convertWithReadstat(state, savFile()); }
BENCHMARK(BM_DatasetImportReadstatSPSSToCSV)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

void BM_DatasetImportReadstatStataToCSV(benchmark::State& state) { convertWithReadstat(state, dtaFile()); }
BENCHMARK(BM_DatasetImportReadstatStataToCSV)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

} // namespace
} // namespace mibrel::bench

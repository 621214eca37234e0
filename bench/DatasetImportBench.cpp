#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "MerivanteCore/Import/CSVImporter.h"
#include "bench/ImportTiming.h"

// A survey export of 1,000,000 respondents and 12 columns (about 100 MB), imported by
// Mibrel and, for scale, read by pandas.
namespace mibrel::bench {
namespace {

namespace fs = std::filesystem;

constexpr int kRows = 1'000'000;

const fs::path& surveyExport() {
    static const fs::path file = [] {
        const fs::path path = fs::temp_directory_path() / "mibrel-bench-survey-1m-v2.csv";
        if (fs::exists(path)) return path;
        std::mt19937 random(20261122);
        const auto pick = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
        const char* groups[] = {"North", "South", "East", "West"};
        const char* genders[] = {"Female", "Male", "Non-binary", "NA"};
        const char* comments[] = {"", "Fine", "\"Too long, honestly\"", "More support from the district office",
                                  "N/A", "\"Great mentors, poor pay\"", "I would like more planning time",
                                  "\"She said \"\"enough\"\" and left\""};
        std::ofstream out(path, std::ios::binary);
        out << "respondent_id,Q1,Q2,Q3,Q4,Q5,age,gender,school_group,satisfaction_score,submitted,comment\r\n";
        for (int row = 1; row <= kRows; ++row) {
            out << "resp-" << 1000000 + row;
            for (int item = 0; item < 5; ++item) {
                out << ',';
                if (pick(40) == 0) out << "NA";
                else out << 1 + pick(5);
            }
            out << ',' << 22 + pick(45) << ',' << genders[pick(4)] << ',' << groups[pick(4)] << ','
                << pick(100) << '.' << pick(10) << pick(10) << ",2026-0" << 1 + pick(9) << '-' << 10 + pick(18) << 'T'
                << 10 + pick(12) << ':' << 10 + pick(50) << ':' << 10 + pick(50) << "Z," << comments[pick(8)] << "\r\n";
        }
        return path;
    }();
    return file;
}

void BM_DatasetImportCSV(benchmark::State& state) {
    timeImport(state, surveyExport(), "rows", kRows,
               [](const fs::path& file) { return merivante::CSVImporter().importCSV(file); });
}
BENCHMARK(BM_DatasetImportCSV)->Unit(benchmark::kMillisecond)->Iterations(1);

// pandas.read_csv on the same file, timed inside Python so that starting it does not count.
void BM_DatasetImportPandasReadCSV(benchmark::State& state) {
    const std::string command =
        "/usr/bin/python3 -c \"import resource, sys, time, pandas; start = time.perf_counter(); "
        "frame = pandas.read_csv(sys.argv[1]); "
        "print(time.perf_counter() - start, resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024)\" '" +
        surveyExport().string() + "' 2>&1";
    timeYardstick(state, command, "pandas is not available (install python3-pandas)");
}
BENCHMARK(BM_DatasetImportPandasReadCSV)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

} // namespace
} // namespace mibrel::bench

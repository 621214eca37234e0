#include <filesystem>
#include <functional>
#include <random>
#include <string>

#include <benchmark/benchmark.h>
#include <zip.h>

#include "MibrelCore/Import/TeskResponsesImport.h"
#include "MibrelCore/Import/TeskTranscriptImport.h"
#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "Platform/Files/FileSystem.h"

// Bringing large material in: a 5 MB Word document, and a survey of 50,000 answers,
// each read and then imported into a fresh project as the window does.
namespace mibrel::bench {
namespace {
namespace fs = std::filesystem;

constexpr std::size_t kWordFileBytes = 5'000'000;
constexpr std::size_t kResponseRows = 50'000;

// One folder for the whole run: the generated files are made once and shared.
struct Scratch {
    fs::path folder = fs::temp_directory_path() / "mibrel-import-bench";
    Scratch() {
        fs::remove_all(folder);
        fs::create_directories(folder);
    }
    ~Scratch() { fs::remove_all(folder); }
};

const Scratch& scratch() {
    static const Scratch shared;
    return shared;
}

// Interview-like prose from a small vocabulary, so it compresses as real text does.
std::string sentence(std::mt19937& random) {
    static const char* words[] = {"we",   "stayed", "because", "the",   "school",  "kids",  "colleagues", "pay",
                                  "was",  "low",    "but",     "time",  "support", "felt",  "principal",  "year",
                                  "town", "new",    "class",   "hours", "tired",   "mentor", "after",     "left"};
    std::uniform_int_distribution<std::size_t> pick(0, std::size(words) - 1);
    std::string text = "I";
    for (int i = 0; i < 14; ++i) text += std::string(" ") + words[pick(random)];
    return text + ".";
}

void writeZip(const fs::path& location, const std::string& entry, const std::string& bytes) {
    int error = 0;
    zip_t* archive = zip_open(location.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    zip_source_t* source = zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
    zip_file_add(archive, entry.c_str(), source, ZIP_FL_OVERWRITE);
    zip_close(archive);
}

// A Word document of about five megabytes on disk, paragraphs of a few sentences each.
const fs::path& wordFile() {
    static const fs::path location = [] {
        std::mt19937 random(11);
        std::string xml = R"(<?xml version="1.0"?><w:document><w:body>)";
        const fs::path file = scratch().folder / "Long interview.docx";
        for (std::size_t round = 0;; ++round) {
            for (int p = 0; p < 20'000; ++p) {
                xml += "<w:p><w:r><w:t>" + sentence(random) + " " + sentence(random) + "</w:t></w:r></w:p>";
            }
            writeZip(file, "word/document.xml", xml + "</w:body></w:document>");
            if (fs::file_size(file) >= kWordFileBytes) break;
        }
        return file;
    }();
    return location;
}

const fs::path& responsesFile() {
    static const fs::path location = [] {
        std::mt19937 random(5);
        std::string csv = "id,answer,school\n";
        for (std::size_t row = 1; row <= kResponseRows; ++row) {
            csv += std::to_string(row) + ",\"" + sentence(random) + "\n\n" + sentence(random) + "\",North\n";
        }
        const fs::path file = scratch().folder / "survey.csv";
        platform::files::writeFileAtomically(file, csv);
        return file;
    }();
    return location;
}

void importInto(benchmark::State& state, const fs::path& project, const std::function<void(MibrelSourcesState&)>& run) {
    state.PauseTiming();
    fs::remove_all(project);
    TeskProjectArchive::createEmpty(project, "Bench", false);
    MibrelScriptedPanels panels;
    MibrelSourcesState sources(panels);
    sources.bind(project);
    state.ResumeTiming();
    run(sources);
    if (sources.lastError()) state.SkipWithError(sources.lastError()->c_str());
}

void BM_ReadWordDocument5MB(benchmark::State& state) {
    const fs::path& file = wordFile();
    for (auto _ : state) benchmark::DoNotOptimize(TeskTranscriptImport::text(file));
    state.counters["fileMB"] = static_cast<double>(fs::file_size(file)) / 1e6;
}

void BM_ImportWordDocument5MB(benchmark::State& state) {
    const fs::path& file = wordFile();
    for (auto _ : state) importInto(state, scratch().folder / "P.mvibrl", [&](auto& s) { s.importTranscript(file); });
}

void BM_ReadResponseTable50k(benchmark::State& state) {
    const fs::path& file = responsesFile();
    for (auto _ : state) benchmark::DoNotOptimize(TeskResponsesImport::table(file));
}

void BM_ImportResponseTable50k(benchmark::State& state) {
    const auto table = TeskResponsesImport::table(responsesFile());
    for (auto _ : state) {
        importInto(state, scratch().folder / "P.mvibrl", [&](auto& s) { s.importResponses(table, 1, std::nullopt); });
    }
    state.counters["sources"] = static_cast<double>(table.rows.size());
}

} // namespace

BENCHMARK(BM_ReadWordDocument5MB)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImportWordDocument5MB)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadResponseTable50k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImportResponseTable50k)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace mibrel::bench

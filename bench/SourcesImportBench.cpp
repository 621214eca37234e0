#include <filesystem>
#include <algorithm>
#include <functional>
#include <random>
#include <string>

#include <benchmark/benchmark.h>
#include <zip.h>

#include "MibrelCore/Import/TeskResponsesImport.h"
#include "MibrelCore/Import/TeskTranscriptImport.h"
#include "MibrelCore/Sources/TeskTranscript.h"
#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "Platform/Files/FileSystem.h"

// Bringing large material in: a 20 MB Word document, and a survey of 50,000 answers,
// each read and then imported into a fresh project as the window does.
namespace mibrel::bench {
namespace {
namespace fs = std::filesystem;

constexpr std::size_t kWordParagraphs = 20'000;
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

// A made-up word of two to four syllables: a vocabulary of thousands, so the text
// compresses as real prose does rather than as a short word list repeated.
std::string pseudoWord(std::mt19937& random) {
    static const char* syllables[] = {"ka", "ren", "to", "mi", "sol", "ve", "dar", "lin", "que", "po", "sta", "ber",
                                      "nu", "gal", "fi", "tor", "e", "an", "os", "tri", "wel", "ho", "ma", "cus"};
    std::uniform_int_distribution<std::size_t> pick(0, std::size(syllables) - 1);
    std::uniform_int_distribution<int> length(2, 4);
    std::string word;
    for (int i = length(random); i > 0; --i) word += syllables[pick(random)];
    return word;
}

std::string revisionID(std::mt19937& random) {
    static const char digits[] = "0123456789ABCDEF";
    std::string id;
    for (int i = 0; i < 8; ++i) id += digits[random() % 16];
    return id;
}

// One paragraph as Word writes it: revision ids, and the text split into runs with their
// own properties wherever an edit or a proofing mark fell.
std::string wordParagraph(std::mt19937& random, std::size_t words) {
    std::string xml = "<w:p w:rsidR=\"" + revisionID(random) + "\" w:rsidRDefault=\"" + revisionID(random) +
                      "\"><w:pPr><w:spacing w:after=\"120\"/></w:pPr>";
    std::uniform_int_distribution<std::size_t> runLength(8, 30);
    for (std::size_t written = 0; written < words;) {
        const std::size_t count = std::min(runLength(random), words - written);
        std::string text;
        for (std::size_t i = 0; i < count; ++i) text += (i ? " " : "") + pseudoWord(random);
        xml += "<w:r w:rsidRPr=\"" + revisionID(random) +
               "\"><w:rPr><w:rFonts w:ascii=\"Calibri\" w:hAnsi=\"Calibri\" w:cs=\"Calibri\"/><w:sz w:val=\"24\"/>"
               "<w:szCs w:val=\"24\"/><w:lang w:val=\"en-GB\"/></w:rPr><w:t xml:space=\"preserve\">" +
               text + " </w:t></w:r><w:proofErr w:type=\"spellStart\"/>";
        written += count;
    }
    return xml + "</w:p>";
}

// A long interview saved by Word: 20,000 paragraphs of 180 to 350 words, about 20 MB on disk.
const fs::path& wordFile() {
    static const fs::path location = [] {
        std::mt19937 random(11);
        std::uniform_int_distribution<std::size_t> words(180, 350);
        std::string xml = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)"
                          R"(<w:document xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main"><w:body>)";
        for (std::size_t p = 0; p < kWordParagraphs; ++p) xml += wordParagraph(random, words(random));
        const fs::path file = scratch().folder / "Long interview.docx";
        writeZip(file, "word/document.xml", xml + "</w:body></w:document>");
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

void BM_ReadWordDocument20MB(benchmark::State& state) {
    const fs::path& file = wordFile();
    std::size_t paragraphs = 0;
    for (auto _ : state) {
        const std::string text = TeskTranscriptImport::text(file);
        state.PauseTiming();
        paragraphs = TeskTranscript::fromPlainText(text).segments.size();
        state.ResumeTiming();
    }
    state.counters["fileMB"] = static_cast<double>(fs::file_size(file)) / 1e6;
    state.counters["paragraphs"] = static_cast<double>(paragraphs);
}

void BM_ImportWordDocument20MB(benchmark::State& state) {
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

BENCHMARK(BM_ReadWordDocument20MB)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImportWordDocument20MB)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadResponseTable50k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImportResponseTable50k)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace mibrel::bench

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/resource.h>

#include <gtest/gtest.h>
#include <zip.h>

#include "MerivanteCore/Import/MvkbFieldReader.h"
#include "MerivanteCore/Import/MvkbReader.h"
#include "MerivanteCore/Import/ZipStore.h"
#include "tests/support/TestSupport.h"
#include "tests/support/ZipBuilder.h"

namespace merivante {
namespace {

using Rows = std::vector<std::vector<std::string>>;
using Strings = std::vector<std::string>;
using StringMap = std::map<std::string, std::string>;

struct Entry {
    std::string name;
    std::string data;
    bool deflated = true;
};

// A real archive as libzip writes it, local headers carrying the sizes.
std::string zipOf(const std::vector<Entry>& entries) {
    mibrel::testing::TemporaryDirectory folder;
    const auto path = folder / "package.zip";
    int error = 0;
    zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    EXPECT_NE(archive, nullptr);
    if (archive == nullptr) return {};
    for (const Entry& entry : entries) {
        zip_source_t* source = zip_source_buffer(archive, entry.data.data(), entry.data.size(), 0);
        const zip_int64_t index = zip_file_add(archive, entry.name.c_str(), source, ZIP_FL_ENC_UTF_8);
        zip_set_file_compression(archive, static_cast<zip_uint64_t>(index),
                                 entry.deflated ? ZIP_CM_DEFLATE : ZIP_CM_STORE, 0);
    }
    EXPECT_EQ(zip_close(archive), 0);
    return mibrel::testing::readText(path);
}

void patch32(std::string& bytes, std::size_t at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>((value >> (8 * i)) & 0xFF);
}

std::optional<MvkbFieldPackage> readManifest(const std::string& manifest, bool deflated = true) {
    return MvkbFieldReader::read(zipOf({{"manifest.json", manifest, deflated}}));
}

// ZipStore

TEST(ZipStoreTest, FindsStoredAndDeflatedEntriesByExactName) {
    const std::string text(5000, 'x');
    const std::string archive =
        zipOf({{"a.txt", "first", false}, {"dir/b.txt", text, true}, {"b.txt", "plain", false}});
    ASSERT_EQ(archive[8], 0);                // the first entry is stored
    ASSERT_LT(archive.size(), text.size()); // the second deflated
    EXPECT_EQ(ZipStore::extract(archive, "a.txt"), "first");
    EXPECT_EQ(ZipStore::extract(archive, "dir/b.txt"), text);
    EXPECT_EQ(ZipStore::extract(archive, "b.txt"), "plain"); // walked past a deflated entry
    EXPECT_EQ(ZipStore::extract(archive, "B.txt"), std::nullopt);
}

TEST(ZipStoreTest, RefusesWhatIsNotAReadableEntry) {
    EXPECT_EQ(ZipStore::extract("", "a"), std::nullopt);
    EXPECT_EQ(ZipStore::extract("PK\x03\x04 too short", "a"), std::nullopt);
    EXPECT_EQ(ZipStore::extract(std::string(64, 'z'), "a"), std::nullopt);

    const std::string archive = zipOf({{"a.txt", std::string(300, 'q'), true}});
    std::string otherMethod = archive;
    otherMethod[8] = 12; // bzip2
    EXPECT_EQ(ZipStore::extract(otherMethod, "a.txt"), std::nullopt);

    std::string damaged = archive;
    const std::size_t dataStart = 30 + 5 + static_cast<unsigned char>(archive[28]);
    for (std::size_t i = 0; i < static_cast<unsigned char>(archive[18]); ++i) damaged[dataStart + i] = '\xFF';
    EXPECT_EQ(ZipStore::extract(damaged, "a.txt"), std::nullopt);

    std::string pastTheEnd = archive;
    patch32(pastTheEnd, 18, 0x7FFFFFFF);
    EXPECT_EQ(ZipStore::extract(pastTheEnd, "a.txt"), std::nullopt);
}

TEST(ZipStoreTest, ATruncatedArchiveGivesTheEntryWholeOrNothing) {
    const std::string manifest = R"({"format":"mvkbfield","cases":[{"metadata":{"site":"north"}}]})";
    for (const bool deflated : {true, false}) {
        const std::string archive =
            zipOf({{"notes.txt", "earlier entry", deflated}, {"manifest.json", manifest, deflated}});
        for (std::size_t length = 0; length < archive.size(); ++length) {
            const std::string cut = archive.substr(0, length);
            const auto extracted = ZipStore::extract(cut, "manifest.json");
            if (extracted) {
                EXPECT_EQ(*extracted, manifest) << "cut at " << length;
            }
        }
    }
}

TEST(ZipStoreTest, ADeclaredSizeIsNotTrustedBeyondWhatDeflateCanHold) {
    const std::string text(200000, 'a');
    const std::string archive = zipOf({{"big.txt", text, true}});
    ASSERT_EQ(archive[8], 8);

    std::string tooLarge = archive;
    patch32(tooLarge, 22, 0xFFFFFFFF);
    EXPECT_EQ(ZipStore::extract(tooLarge, "big.txt"), text);

    // An entry holding more than its header admits is refused rather than returned cut.
    std::string tooSmall = archive;
    patch32(tooSmall, 22, 10);
    EXPECT_EQ(ZipStore::extract(tooSmall, "big.txt"), std::nullopt);
    // Below the smallest buffer a small size is harmless.
    std::string understated = zipOf({{"small.txt", std::string(1000, 'b'), true}});
    patch32(understated, 22, 1);
    EXPECT_EQ(ZipStore::extract(understated, "small.txt"), std::string(1000, 'b'));
}

// A manifest that would unpack far beyond its archive is refused, not unpacked.
TEST(ZipStoreTest, AZipBombIsRefused) {
    const std::string filler(1 << 20, ' ');
    for (const std::uint64_t declared : {std::uint64_t{0xFFFFFFFFu}, std::uint64_t{filler.size() * 100}}) {
        const std::string archive = mibrel::testing::zipArchive(
            {{"manifest.json", "", 8, mibrel::testing::rawDeflateRepeated(filler, 100), declared}});
        EXPECT_EQ(ZipStore::extract(archive, "manifest.json"), std::nullopt) << declared;
    }
}

std::size_t virtualMemorySize() {
    std::ifstream status("/proc/self/status");
    std::string key;
    std::size_t kilobytes = 0;
    while (status >> key) {
        if (key == "VmSize:") {
            status >> kilobytes;
            break;
        }
    }
    return kilobytes * 1024;
}

// Caps the address space well below 4 GiB, where believing the header would fail, then
// exits with 0 when the entry still reads right.
[[noreturn]] void extractWithLittleMemory(const std::string& archive) {
    const rlimit limit{virtualMemorySize() + (512u << 20), RLIM_INFINITY};
    if (setrlimit(RLIMIT_AS, &limit) != 0) std::exit(2);
    std::exit(ZipStore::extract(archive, "small.txt") == "tiny content" ? 0 : 1);
}

TEST(ZipStoreDeathTest, ALyingSizeCannotForceAHugeAllocation) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    std::string archive = zipOf({{"small.txt", "tiny content", true}});
    patch32(archive, 22, 0xFFFFFFFF);
    EXPECT_EXIT(extractWithLittleMemory(archive), ::testing::ExitedWithCode(0), "");
}

// MvkbReader

TEST(MvkbReaderTest, ColumnsCarryTheirCellsInValuesOrData) {
    const auto package = MvkbReader::read(R"({"project":{"title":"Wellbeing 2024"},"data":{"columns":[
        {"name":"id","header":"ignored","values":[1,2,3]},
        {"header":"score","data":[4.5,null]},
        {"values":["a"]},
        {"label":"flag","values":[true,false,"x"],"data":[0,0,0,0]}]}})");
    ASSERT_TRUE(package);
    EXPECT_EQ(package->title, "Wellbeing 2024");
    EXPECT_EQ(package->headers, (Strings{"id", "score", "Variable 3", "flag"}));
    EXPECT_EQ(package->rows, (Rows{{"1", "4.5", "a", "true"}, {"2", "", "", "false"}, {"3", "", "", "x"}}));
    EXPECT_TRUE(package->notes.empty());
}

TEST(MvkbReaderTest, RowsComeBesideColumnsOrHeaders) {
    const auto besideColumns = MvkbReader::read(R"({"project":{},"data":{
        "columns":[{"name":"a"},{"label":"b"},{}],
        "rows":[[1,"x"],"not a row",[3.0,null,false]]}})");
    ASSERT_TRUE(besideColumns);
    EXPECT_EQ(besideColumns->title, "");
    EXPECT_EQ(besideColumns->headers, (Strings{"a", "b", "Variable 3"}));
    EXPECT_EQ(besideColumns->rows, (Rows{{"1", "x"}, {"3", "", "false"}}));

    const auto withHeaders = MvkbReader::read(R"({"project":{"title":7},"data":{
        "columns":[],"headers":["q1","q2"],"rows":[[1,2],{"q1":3}]}})");
    ASSERT_TRUE(withHeaders);
    EXPECT_EQ(withHeaders->title, "");
    EXPECT_EQ(withHeaders->headers, (Strings{"q1", "q2"}));
    EXPECT_EQ(withHeaders->rows, (Rows{{"1", "2"}}));
}

TEST(MvkbReaderTest, CellsBecomeText) {
    const auto package = MvkbReader::read(R"({"project":{},"data":{"headers":["v"],"rows":[
        [3.0, -0.0, 2.5, 0.1, 123456789012345, 1e15, -7, "3.0", "", null, true, [1], {"a":1}]]}})");
    ASSERT_TRUE(package);
    EXPECT_EQ(package->rows,
              (Rows{{"3", "0", "2.5", "0.1", "123456789012345", "1e+15", "-7", "3.0", "", "", "true", "", ""}}));
}

TEST(MvkbReaderTest, WithoutEmbeddedRowsTheNoteNamesTheDataFile) {
    const auto external = MvkbReader::read(
        R"({"project":{"title":"T"},"data":{"source_path":"exports/wave2.csv","columns":[{"name":"a"}]}})");
    ASSERT_TRUE(external);
    EXPECT_EQ(external->headers, (Strings{"a"}));
    EXPECT_TRUE(external->rows.empty());
    EXPECT_EQ(external->notes, (Strings{"This survey package references an external data file (exports/wave2.csv). "
                                        "Import that file to continue."}));

    EXPECT_TRUE(MvkbReader::read(R"({"project":{},"data":{"source_path":""}})")->notes.empty());
    // Embedded data needs no other file.
    const auto embedded =
        MvkbReader::read(R"({"project":{},"data":{"source_path":"x.csv","headers":["a"],"rows":[[1]]}})");
    EXPECT_TRUE(embedded->notes.empty());
}

TEST(MvkbReaderTest, OnlyTheFamilysDocumentsAreAccepted) {
    const auto byApp = MvkbReader::read(R"({"app":"mERIVANTE Survey 3.1","data":{"headers":["a"],"rows":[["1"]]}})");
    ASSERT_TRUE(byApp);
    EXPECT_EQ(byApp->rows, (Rows{{"1"}}));
    EXPECT_TRUE(MvkbReader::read(R"({"app":"Merivante"})"));
    EXPECT_TRUE(MvkbReader::read(R"({"project":null,"data":null})"));

    EXPECT_FALSE(MvkbReader::read(R"({"app":"OtherTool","data":{}})"));
    EXPECT_FALSE(MvkbReader::read(R"({"app":["Merivante"],"project":{}})"));
    EXPECT_FALSE(MvkbReader::read(R"([{"app":"Merivante"}])"));
    EXPECT_FALSE(MvkbReader::read(R"("Merivante")"));
    EXPECT_FALSE(MvkbReader::read(R"({"app":"Merivante")"));
}

TEST(MvkbReaderTest, RolesKeepTheVariableAndTheRole) {
    const auto package = MvkbReader::read(R"({"app":"Merivante","data":{"roles":[
        {"variable":"age","name":"ignored","role":"demographic"},
        {"name":"q1","role":"item"},
        {"column":"group","role":"grouping"},
        {"variable":"","column":"site","role":"grouping"},
        {"variable":"nameless"},
        {"role":"orphan"},
        "q9:item",
        {"variable":"q1","role":"outcome"}]}})");
    ASSERT_TRUE(package);
    EXPECT_EQ(package->roles,
              (StringMap{{"age", "demographic"}, {"q1", "outcome"}, {"group", "grouping"}, {"site", "grouping"}}));
}

// MvkbFieldReader

constexpr const char* kFieldManifest = R"({
  "format": "MVKBField/1",
  "study": {"title": "Clinic visits"},
  "quantInstrument": [
    {"id": "sat", "itemText": "How satisfied were you?"},
    {"id": 7, "itemText": "Visits this year"},
    {"itemText": "no id, no column"},
    {"id": "mood"}
  ],
  "cases": [
    {"metadata": {"site": "north", "groupRole": "nurse", "age": 41},
     "quantResponses": [
       {"id": "sat", "likertValue": 4, "numericValue": 9},
       {"id": "7", "likertValue": null, "numericValue": 3.0},
       {"id": "mood", "choiceValue": "calm"},
       {"id": "sat", "likertValue": 1}]},
    {"metadata": {"site": "south", "extra": true},
     "quantResponses": [{"id": "sat"}, {"id": "unknown", "likertValue": 5}]},
    "not a case"
  ]
})";

TEST(MvkbFieldReaderTest, CasesBecomeRowsOfMetadataThenItems) {
    for (const bool deflated : {true, false}) {
        const auto package = readManifest(kFieldManifest, deflated);
        ASSERT_TRUE(package);
        EXPECT_EQ(package->title, "Clinic visits");
        EXPECT_EQ(package->headers, (Strings{"age", "extra", "groupRole", "site", "sat", "7", "mood"}));
        EXPECT_EQ(package->rows, (Rows{{"41", "", "nurse", "north", "4", "3", "calm"},
                                       {"", "true", "", "south", "", "", ""}}));
        EXPECT_EQ(package->labels, (StringMap{{"sat", "How satisfied were you?"}, {"7", "Visits this year"}}));
        EXPECT_EQ(package->roles, (StringMap{{"groupRole", "grouping"}}));
        EXPECT_TRUE(package->notes.empty());
    }
}

TEST(MvkbFieldReaderTest, CasesWithoutResponsesStillHaveTheirColumns) {
    const auto package = readManifest(R"({"cases":[{"metadata":{"b":"1","a":2}},{"metadata":{"c":null}}],
        "quantInstrument":[{"id":"q1","itemText":"First"}]})");
    ASSERT_TRUE(package);
    EXPECT_EQ(package->title, "");
    EXPECT_EQ(package->headers, (Strings{"a", "b", "c", "q1"}));
    EXPECT_EQ(package->rows, (Rows{{"2", "1", "", ""}, {"", "", "", ""}}));
    EXPECT_TRUE(package->roles.empty());

    const auto noCases = readManifest(R"({"format":"mvkbfield","quantInstrument":[{"id":"q1"}],"cases":[1,2]})");
    ASSERT_TRUE(noCases);
    EXPECT_EQ(noCases->headers, (Strings{"q1"}));
    EXPECT_TRUE(noCases->rows.empty());
    EXPECT_EQ(noCases->notes, (Strings{"This field package has no cases to import."}));
}

TEST(MvkbFieldReaderTest, OnlyAFieldManifestIsReadable) {
    EXPECT_TRUE(readManifest(R"({"format":"x-MVKBFIELD"})"));
    EXPECT_FALSE(readManifest(R"({"format":"mvkb","study":{}})"));
    EXPECT_FALSE(readManifest(R"([{"cases":[]}])"));
    EXPECT_FALSE(readManifest(R"({"cases":[)"));

    EXPECT_FALSE(MvkbFieldReader::read(zipOf({{"data/manifest.json", R"({"cases":[]})"}, {"other.json", "{}"}})));
    EXPECT_FALSE(MvkbFieldReader::read(R"({"cases":[]})")); // the manifest alone, not in an archive
}

} // namespace
} // namespace merivante

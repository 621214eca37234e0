#include "MibrelCore/Storage/TeskSourceStore.h"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Files/FileSystem.h"
#include "tests/support/TestSupport.h"

using namespace mibrel;
namespace store = mibrel::TeskSourceStore;
namespace support = mibrel::testing;
namespace json = platform::json;
using Sources = std::vector<TeskSource>;

namespace {

TeskSource makeSource(std::string label, std::string_view date) {
    TeskSource source{.label = std::move(label), .date = *platform::parseISO8601(date)};
    source.createdAt = source.date;
    return source;
}

std::vector<std::string> labels(const Sources& sources) {
    std::vector<std::string> result;
    for (const auto& source : sources) result.push_back(source.label);
    return result;
}

} // namespace

TEST(TeskSourceStore, SavesLoadsAndDeletesInFoldersNamedByUpperCaseId) {
    const support::TemporaryDirectory project;
    EXPECT_TRUE(store::loadIndex(project.path()).empty());
    EXPECT_FALSE(platform::files::itemExists(project / "sources"));

    auto first = makeSource("B", "2024-02-01T00:00:00Z");
    first.id = *Uuid::parse("0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d");
    const auto second = makeSource("A", "2024-01-01T00:00:00Z");
    store::saveIndex({first, second}, project.path());
    EXPECT_EQ(store::loadIndex(project.path()), (Sources{first, second}));
    store::saveSource(first, project.path());
    EXPECT_EQ(support::folderListing(project / "sources"), "0A1B2C3D-4E5F-4A6B-8C7D-9E0F1A2B3C4D index.json");
    EXPECT_TRUE(store::loadTranscript(first.id, project.path()).segments.empty());
    store::saveTranscript(TeskTranscript::fromPlainText("a\n\nb"), first.id, project.path());
    EXPECT_EQ(store::loadTranscript(first.id, project.path()).fullText(), "a\n\nb");

    const auto transcript = store::sourceDirectory(project.path(), first.id) / "transcript.json";
    support::writeText(transcript, R"({"segments":[{"text":"no id"}]})");
    EXPECT_THROW(store::loadTranscript(first.id, project.path()), json::DecodingError);
    EXPECT_EQ(support::readText(transcript), R"({"segments":[{"text":"no id"}]})");

    store::deleteSource(first.id, project.path());
    EXPECT_EQ(support::folderListing(project / "sources"), "index.json");
}

TEST(TeskSourceStore, CorruptIndexIsRebuiltFromMetaCopiesWithoutRewritingIt) {
    const support::TemporaryDirectory project;
    const auto index = project / "sources/index.json";
    support::writeText(index, "[{\"label\": ");
    EXPECT_THROW(store::loadIndex(project.path()), json::DecodingError);

    const auto later = makeSource("Later", "2024-03-01T00:00:00Z");
    const auto earlier = makeSource("Earlier", "2024-01-01T00:00:00Z");
    store::saveSource(later, project.path());
    store::saveSource(earlier, project.path());
    EXPECT_EQ(store::loadIndex(project.path()), (Sources{earlier, later}));
    EXPECT_EQ(support::readText(index), "[{\"label\": ");
}

TEST(TeskSourceStore, RecoveryIgnoresStrayEntriesAndSortsLabelsNaturally) {
    const support::TemporaryDirectory project;
    store::saveSource(makeSource("Interview 10", "2024-01-01T00:00:00Z"), project.path());
    store::saveSource(makeSource("Interview 2", "2024-01-01T00:00:00Z"), project.path());
    support::writeText(project / "sources/notes.txt", "{}");
    support::writeText(project / "sources/EMPTY-FOLDER/readme.txt", "x");
    support::writeText(project / "sources/6F9619FF-8B86-D011-B42D-00CF4FC964FF/meta.json", "{\"date\": 1");
    EXPECT_EQ(labels(store::loadIndex(project.path())), (std::vector<std::string>{"Interview 2", "Interview 10"}));
    EXPECT_FALSE(platform::files::itemExists(project / "sources/index.json"));
}

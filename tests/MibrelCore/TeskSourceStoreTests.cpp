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

namespace {

Date at(std::string_view iso) { return *platform::parseISO8601(iso); }

TeskSource makeSource(std::string label, std::string_view date) {
    TeskSource source;
    source.label = std::move(label);
    source.date = at(date);
    source.createdAt = source.date;
    return source;
}

std::vector<std::string> labels(const std::vector<TeskSource>& sources) {
    std::vector<std::string> result;
    for (const auto& source : sources) result.push_back(source.label);
    return result;
}

} // namespace

TEST(TeskSourceStore, PackageWithoutSourcesHasAnEmptyIndex) {
    const support::TemporaryDirectory project;
    EXPECT_TRUE(store::loadIndex(project.path()).empty());
    EXPECT_FALSE(platform::files::itemExists(project / "sources"));
}

TEST(TeskSourceStore, SavesLoadsAndDeletesInFoldersNamedByUpperCaseId) {
    const support::TemporaryDirectory project;
    auto first = makeSource("B", "2024-02-01T00:00:00Z");
    first.id = *Uuid::parse("0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d");
    auto second = makeSource("A", "2024-01-01T00:00:00Z");
    second.id = *Uuid::parse("f0e1d2c3-b4a5-4968-8776-655443322110");
    store::saveIndex({first, second}, project.path());
    EXPECT_EQ(store::loadIndex(project.path()), (std::vector<TeskSource>{first, second}));

    store::saveSource(first, project.path());
    store::saveTranscript(TeskTranscript::fromPlainText("a\n\nb"), second.id, project.path());
    EXPECT_EQ(support::folderListing(project / "sources"),
              "0A1B2C3D-4E5F-4A6B-8C7D-9E0F1A2B3C4D F0E1D2C3-B4A5-4968-8776-655443322110 index.json");
    EXPECT_EQ(support::folderListing(store::sourceDirectory(project.path(), first.id)), "meta.json");
    EXPECT_EQ(store::loadTranscript(second.id, project.path()).fullText(), "a\n\nb");
    EXPECT_TRUE(store::loadTranscript(first.id, project.path()).segments.empty());

    store::deleteSource(first.id, project.path());
    EXPECT_FALSE(platform::files::itemExists(store::sourceDirectory(project.path(), first.id)));
    EXPECT_NO_THROW(store::deleteSource(first.id, project.path()));

    const auto transcript = store::sourceDirectory(project.path(), second.id) / "transcript.json";
    support::writeText(transcript, R"({"segments":[{"text":"no id"}]})");
    EXPECT_THROW(store::loadTranscript(second.id, project.path()), json::DecodingError);
    EXPECT_EQ(support::readText(transcript), R"({"segments":[{"text":"no id"}]})");
}

TEST(TeskSourceStore, CorruptIndexIsRebuiltFromMetaCopiesWithoutRewritingIt) {
    const support::TemporaryDirectory project;
    const auto later = makeSource("Later", "2024-03-01T00:00:00Z");
    const auto earlier = makeSource("Earlier", "2024-01-01T00:00:00Z");
    store::saveSource(later, project.path());
    store::saveSource(earlier, project.path());
    const auto index = project / "sources/index.json";
    support::writeText(index, "[{\"label\": ");

    EXPECT_EQ(store::loadIndex(project.path()), (std::vector<TeskSource>{earlier, later}));
    EXPECT_EQ(support::readText(index), "[{\"label\": ");
}

TEST(TeskSourceStore, CorruptIndexWithNothingToRecoverThrows) {
    const support::TemporaryDirectory project;
    support::writeText(project / "sources/index.json", "not json");
    EXPECT_THROW(store::loadIndex(project.path()), json::DecodingError);
    // A folder whose copy is damaged recovers nothing either.
    support::writeText(project / "sources/6F9619FF-8B86-D011-B42D-00CF4FC964FF/meta.json", "{\"id\": 7}");
    EXPECT_THROW(store::loadIndex(project.path()), json::DecodingError);
    EXPECT_EQ(support::readText(project / "sources/index.json"), "not json");
}

TEST(TeskSourceStore, RecoveryIgnoresStrayEntriesAndSortsLabelsNaturally) {
    const support::TemporaryDirectory project;
    const auto ten = makeSource("Interview 10", "2024-01-01T00:00:00Z");
    const auto two = makeSource("Interview 2", "2024-01-01T00:00:00Z");
    store::saveSource(ten, project.path());
    store::saveSource(two, project.path());
    support::writeText(project / "sources/notes.txt", "{}");
    support::writeText(project / "sources/EMPTY-FOLDER/readme.txt", "x");
    support::writeText(project / "sources/6F9619FF-8B86-D011-B42D-00CF4FC964FF/meta.json", "{\"date\": 1");

    EXPECT_EQ(labels(store::recoverSources(project.path())), (std::vector<std::string>{"Interview 2", "Interview 10"}));
    EXPECT_EQ(labels(store::loadIndex(project.path())), (std::vector<std::string>{"Interview 2", "Interview 10"}));
    EXPECT_FALSE(platform::files::itemExists(project / "sources/index.json"));
}

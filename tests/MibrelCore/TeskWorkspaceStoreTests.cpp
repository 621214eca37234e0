#include "MibrelCore/Storage/TeskWorkspaceStore.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "Platform/Files/FileSystem.h"
#include "tests/support/TestSupport.h"

using namespace mibrel;
namespace store = mibrel::TeskWorkspaceStore;
namespace support = mibrel::testing;

namespace {

Date at(std::string_view iso) { return *platform::parseISO8601(iso); }

TeskWorkspace sampleWorkspace() {
    TeskWorkspace workspace{.codes = {TeskCode{.name = "Belonging", .createdAt = at("2024-01-01T00:00:00Z")}},
                            .reportMemo = "memo"};
    workspace.updatedAt = at("2024-01-01T00:00:00Z");
    return workspace;
}

} // namespace

TEST(TeskWorkspaceStore, SaveCreatesQualAndStampsTheFileNotTheCaller) {
    const support::TemporaryDirectory project;
    EXPECT_FALSE(store::load(project.path()));
    EXPECT_FALSE(platform::files::itemExists(project / "qual"));

    const Date moment = at("2024-06-01T10:00:00Z");
    const platform::ScopedClockOverride clock([&] { return moment; });
    const TeskWorkspace workspace = sampleWorkspace();
    store::save(workspace, project.path());
    EXPECT_EQ(support::folderListing(project / "qual"), "workspace.json");

    TeskWorkspace expected = workspace;
    expected.updatedAt = moment;
    EXPECT_EQ(store::load(project.path()), expected);
    EXPECT_EQ(workspace.updatedAt, at("2024-01-01T00:00:00Z"));
}

TEST(TeskWorkspaceStore, DamagedFileThrowsAndIsLeftAsItIs) {
    const support::TemporaryDirectory project;
    const std::string damaged = R"({"categories":[{"name":"no memo"}],"reportMemo":"keep me"})";
    support::writeText(project / "qual/workspace.json", damaged);
    EXPECT_THROW(store::load(project.path()), platform::json::DecodingError);
    EXPECT_EQ(support::readText(project / "qual/workspace.json"), damaged);
}

TEST(TeskWorkspaceStore, FailedSaveKeepsWhatWasThere) {
    const support::TemporaryDirectory project;
    store::save(sampleWorkspace(), project.path());
    const auto target = store::workspaceURL(project.path());
    const std::string previous = support::readText(target);
    // A non-empty folder where the file belongs makes the final rename fail, even for root.
    std::filesystem::remove(target);
    support::writeText(target / "previous.json", previous);

    EXPECT_THROW(store::save(sampleWorkspace(), project.path()), platform::files::FileError);
    EXPECT_EQ(support::folderListing(project / "qual"), "workspace.json");
    EXPECT_EQ(support::readText(target / "previous.json"), previous);
}

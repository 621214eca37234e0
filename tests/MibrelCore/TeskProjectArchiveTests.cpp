#include "MibrelCore/Storage/TeskProjectArchive.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectError.h"
#include "tests/support/TestSupport.h"

using namespace mibrel;
namespace archive = mibrel::TeskProjectArchive;
namespace support = mibrel::testing;
namespace fs = std::filesystem;

namespace {

Date at(std::string_view iso) { return *platform::parseISO8601(iso); }

// What the action throws, as the researcher would read it; empty when it succeeds.
std::string projectFailure(const auto& action) {
    try {
        action();
    } catch (const TeskProjectError& error) {
        return error.what();
    }
    return {};
}

} // namespace

TEST(TeskProjectArchive, CreateEmptyWritesOnlyTheManifest) {
    const support::TemporaryDirectory folder;
    const Date moment = at("2024-06-01T10:00:00Z");
    const platform::ScopedClockOverride clock([&] { return moment; });
    const auto package = folder / "Study.mvibrl";
    archive::createEmpty(package, "Belonging study", false);

    EXPECT_EQ(support::folderListing(package), "manifest.json");
    EXPECT_EQ(archive::loadManifest(package),
              (TeskProjectManifest{.title = "Belonging study", .createdAt = moment, .updatedAt = moment}));
}

TEST(TeskProjectArchive, CreateEmptyRefusesToOverwriteUnlessReplacing) {
    const support::TemporaryDirectory folder;
    const auto package = folder / "x.mvibrl";
    support::writeText(package / "qual/workspace.json", "{\"keep\": true}");
    EXPECT_EQ(projectFailure([&] { archive::createEmpty(package, "New", false); }),
              "Could not save project: A project named x.mvibrl already exists here. Keep the .mvibrl ending in the "
              "save dialog and choose Replace, or pick another name.");
    EXPECT_EQ(support::readText(package / "qual/workspace.json"), "{\"keep\": true}");

    archive::createEmpty(package, "New", true);
    EXPECT_EQ(support::folderListing(package), "manifest.json");
    EXPECT_EQ(archive::loadManifest(package).title, "New");
}

TEST(TeskProjectArchive, LoadManifestChecksAppAndVersion) {
    const support::TemporaryDirectory folder;
    const auto load = [&] { (void)archive::loadManifest(folder.path()); };
    const std::string invalidPackage = "This file is not a valid Merivante Mibrel project.";
    EXPECT_EQ(projectFailure(load), invalidPackage);
    const std::pair<std::string, std::string> cases[] = {
        {R"("Merivante Mibrel","formatVersion":2)", "Project format version 2 is not supported by this version of Mibrel."},
        {R"("Other Mibrel build","formatVersion":1)", ""},
        {R"("Something Else","formatVersion":1)", invalidPackage}};
    for (const auto& [appAndVersion, failure] : cases) {
        support::writeText(folder / "manifest.json", R"({"app":)" + appAndVersion +
                                                         R"(,"appVersion":"1.0.0","createdAt":"2024-01-01T00:00:00Z",)"
                                                         R"("title":"Study","updatedAt":"2024-01-02T00:00:00Z"})");
        EXPECT_EQ(projectFailure(load), failure) << appAndVersion;
    }
}

TEST(TeskProjectArchive, SaveManifestStampsACopy) {
    const support::TemporaryDirectory folder;
    const Date created = at("2024-01-01T00:00:00Z");
    Date moment = at("2024-06-01T10:00:00Z");
    const platform::ScopedClockOverride clock([&] { return moment; });
    const TeskProjectManifest manifest{.title = "Study", .summary = "Pilot", .createdAt = created, .updatedAt = created};

    archive::saveManifest(manifest, folder.path());
    EXPECT_EQ(archive::loadManifest(folder.path()).updatedAt, moment);
    moment = at("2024-06-02T11:30:00Z");
    archive::saveManifest(manifest, folder.path());
    EXPECT_EQ(archive::loadManifest(folder.path()),
              (TeskProjectManifest{.title = "Study", .summary = "Pilot", .createdAt = created, .updatedAt = moment}));
    EXPECT_EQ(manifest.updatedAt, created);

    // A failed write reaches the researcher as a save error.
    const support::TemporaryDirectory blocked;
    support::writeText(blocked / "manifest.json/keep.txt", "x");
    EXPECT_THROW(archive::saveManifest(manifest, blocked.path()), TeskProjectError);
    EXPECT_EQ(support::readText(blocked / "manifest.json/keep.txt"), "x");
}

#include "MibrelCore/Storage/TeskProjectArchive.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectError.h"
#include "tests/support/TestSupport.h"

using namespace mibrel;
namespace archive = mibrel::TeskProjectArchive;
namespace support = mibrel::testing;
namespace json = platform::json;
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kInvalidPackage = "This file is not a valid Merivante Mibrel project.";

Date at(std::string_view iso) { return *platform::parseISO8601(iso); }

std::string manifestText(std::string_view app, std::string_view formatVersion) {
    return R"({"app":")" + std::string(app) + R"(","appVersion":"1.0.0","createdAt":"2024-01-01T00:00:00Z",)" +
           R"("formatVersion":)" + std::string(formatVersion) +
           R"(,"title":"Study","updatedAt":"2024-01-02T00:00:00Z"})";
}

// What loadManifest throws, as the researcher would read it; empty when the manifest loads.
std::string loadFailure(const fs::path& package) {
    try {
        (void)archive::loadManifest(package);
    } catch (const TeskProjectError& error) {
        return error.what();
    } catch (const json::DecodingError& error) {
        return std::string("decoding: ") + error.what();
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
    const std::string text = support::readText(package / "manifest.json");
    EXPECT_EQ(support::unsortedKeysIn(text), "");
    EXPECT_EQ(text.find("summary"), std::string::npos);
    const auto manifest = archive::loadManifest(package);
    EXPECT_EQ(manifest.app, "Merivante Mibrel");
    EXPECT_EQ(manifest.appVersion, "1.0.0");
    EXPECT_EQ(manifest.formatVersion, 1);
    EXPECT_EQ(manifest.title, "Belonging study");
    EXPECT_EQ(manifest.createdAt, moment);
    EXPECT_EQ(manifest.updatedAt, moment);
}

TEST(TeskProjectArchive, CreateEmptyRefusesToOverwriteUnlessReplacing) {
    const support::TemporaryDirectory folder;
    const auto package = folder / "x.mvibrl";
    support::writeText(package / "qual/workspace.json", "{\"keep\": true}");
    try {
        archive::createEmpty(package, "New", false);
        ADD_FAILURE() << "an existing project was overwritten";
    } catch (const TeskProjectError& error) {
        EXPECT_EQ(error.kind(), TeskProjectError::Kind::writeFailed);
        EXPECT_STREQ(error.what(), "Could not save project: A project named x.mvibrl already exists here. Keep the "
                                   ".mvibrl ending in the save dialog and choose Replace, or pick another name.");
    }
    EXPECT_EQ(support::folderListing(package), "qual");
    EXPECT_EQ(support::readText(package / "qual/workspace.json"), "{\"keep\": true}");

    archive::createEmpty(package, "New", true);
    EXPECT_EQ(support::folderListing(package), "manifest.json");
    EXPECT_EQ(archive::loadManifest(package).title, "New");
}

TEST(TeskProjectArchive, LoadManifestChecksAppAndVersion) {
    const support::TemporaryDirectory folder;
    EXPECT_EQ(loadFailure(folder.path()), kInvalidPackage);
    const auto manifestFile = folder / "manifest.json";
    support::writeText(manifestFile, manifestText("Merivante Mibrel", "2"));
    EXPECT_EQ(loadFailure(folder.path()), "Project format version 2 is not supported by this version of Mibrel.");
    support::writeText(manifestFile, manifestText("Other Mibrel build", "1"));
    EXPECT_EQ(loadFailure(folder.path()), "");
    support::writeText(manifestFile, manifestText("Something Else", "1"));
    EXPECT_EQ(loadFailure(folder.path()), kInvalidPackage);
    for (const std::string_view version : {"0", "-1"}) {
        support::writeText(manifestFile, manifestText("Merivante Mibrel", version));
        EXPECT_EQ(loadFailure(folder.path()), "") << version;
    }

    support::writeText(manifestFile, R"({"app":"Merivante Mibrel","appVersion":"1.0.0",)"
                                     R"("createdAt":"2024-01-01T00:00:00Z","formatVersion":1,)"
                                     R"("updatedAt":"2024-01-02T00:00:00Z"})");
    const std::string malformed = loadFailure(folder.path());
    EXPECT_EQ(malformed.rfind("decoding: ", 0), 0u) << malformed;
    EXPECT_NE(malformed.find("“title”"), std::string::npos) << malformed;

    const auto plainFile = folder / "plain.mvibrl";
    support::writeText(plainFile, manifestText("Merivante Mibrel", "1"));
    EXPECT_EQ(loadFailure(plainFile), kInvalidPackage);
}

TEST(TeskProjectArchive, SaveManifestStampsACopy) {
    const support::TemporaryDirectory folder;
    const Date created = at("2024-01-01T00:00:00Z");
    Date moment = at("2024-06-01T10:00:00Z");
    const platform::ScopedClockOverride clock([&] { return moment; });
    TeskProjectManifest manifest{.title = "Study", .summary = "Pilot", .createdAt = created, .updatedAt = created};

    archive::saveManifest(manifest, folder.path());
    EXPECT_EQ(archive::loadManifest(folder.path()).updatedAt, moment);
    moment = at("2024-06-02T11:30:00Z");
    archive::saveManifest(manifest, folder.path());
    EXPECT_EQ(archive::loadManifest(folder.path()),
              (TeskProjectManifest{.title = "Study", .summary = "Pilot", .createdAt = created, .updatedAt = moment}));
    EXPECT_EQ(manifest.updatedAt, created);
    EXPECT_EQ(support::folderListing(folder.path()), "manifest.json");

    // A failed write reaches the researcher as a save error.
    const support::TemporaryDirectory blocked;
    support::writeText(blocked / "manifest.json/keep.txt", "x");
    EXPECT_THROW(archive::saveManifest(manifest, blocked.path()), TeskProjectError);
    EXPECT_EQ(support::readText(blocked / "manifest.json/keep.txt"), "x");
}

#include "MibrelCore/Audit/TeskAuditTrail.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "Platform/Files/FileSystem.h"
#include "tests/support/TestSupport.h"

using namespace mibrel;
namespace trail = mibrel::TeskAuditTrail;
namespace support = mibrel::testing;
namespace json = platform::json;

namespace {

Date at(std::string_view iso) { return *platform::parseISO8601(iso); }

} // namespace

TEST(TeskAuditTrail, AppendCreatesTheLogAndKeepsOldestFirst) {
    const support::TemporaryDirectory project;
    Date moment = at("2024-06-01T10:00:00Z");
    const platform::ScopedClockOverride clock([&] { return moment; });
    EXPECT_TRUE(trail::load(project.path()).empty());
    EXPECT_FALSE(platform::files::itemExists(project / "trustworthiness"));

    const TeskAuditEvent first = trail::append("code_created", "Belonging", project.path());
    EXPECT_EQ(first.event, "code_created");
    EXPECT_EQ(first.detail, "Belonging");
    EXPECT_NE(first.id, Uuid());
    EXPECT_EQ(first.when, moment);
    EXPECT_EQ(support::folderListing(project / "trustworthiness"), "audit.json");
    EXPECT_EQ(trail::load(project.path()), std::vector<TeskAuditEvent>{first});

    moment = at("2024-06-01T09:00:00Z"); // a clock set back does not reorder the log
    const auto second = trail::append("quote_added", "", project.path());
    EXPECT_NE(second.id, first.id);
    EXPECT_EQ(trail::load(project.path()), (std::vector<TeskAuditEvent>{first, second}));
    EXPECT_EQ(support::unsortedKeysIn(support::readText(trail::auditURL(project.path()))), "");
}

TEST(TeskAuditTrail, UnreadableLogIsNeverOverwritten) {
    const support::TemporaryDirectory project;
    const auto log = project / "trustworthiness/audit.json";
    support::writeText(log, "[{\"event\": \"code_created\",");
    EXPECT_THROW(trail::append("quote_added", "x", project.path()), json::DecodingError);
    EXPECT_EQ(support::readText(log), "[{\"event\": \"code_created\",");
    EXPECT_EQ(support::folderListing(project / "trustworthiness"), "audit.json");
    EXPECT_THROW(trail::load(project.path()), json::DecodingError);
}

TEST(TeskAuditTrail, EntryMissingAKeyFailsTheWholeLog) {
    const support::TemporaryDirectory project;
    const std::string intact = R"({"detail":"","event":"code_created","id":"6F9619FF-8B86-D011-B42D-00CF4FC964FF",)"
                               R"("when":"2024-06-01T10:00:00Z"})";
    support::writeText(trail::auditURL(project.path()), "[" + intact + "]");
    EXPECT_EQ(trail::load(project.path()).size(), 1u);

    const std::string withoutDetail = R"({"event":"quote_added","id":"6F9619FF-8B86-D011-B42D-00CF4FC964FE",)"
                                      R"("when":"2024-06-01T10:00:00Z"})";
    support::writeText(trail::auditURL(project.path()), "[" + intact + "," + withoutDetail + "]");
    EXPECT_THROW(trail::load(project.path()), json::DecodingError);
    EXPECT_THROW(trail::append("quote_added", "", project.path()), json::DecodingError);
}

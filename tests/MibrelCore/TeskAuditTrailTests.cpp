#include "MibrelCore/Audit/TeskAuditTrail.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Files/FileSystem.h"
#include "tests/support/TestSupport.h"

using namespace mibrel;
namespace trail = mibrel::TeskAuditTrail;
namespace support = mibrel::testing;
namespace json = platform::json;

TEST(TeskAuditTrail, AppendCreatesTheLogAndKeepsOldestFirst) {
    const support::TemporaryDirectory project;
    Date moment = *platform::parseISO8601("2024-06-01T10:00:00Z");
    const platform::ScopedClockOverride clock([&] { return moment; });
    EXPECT_TRUE(trail::load(project.path()).empty());
    EXPECT_FALSE(platform::files::itemExists(project / "trustworthiness"));

    const TeskAuditEvent first = trail::append("code_created", "Belonging", project.path());
    EXPECT_EQ(first, (TeskAuditEvent{first.id, moment, "code_created", "Belonging"}));
    EXPECT_EQ(support::folderListing(project / "trustworthiness"), "audit.json");
    EXPECT_EQ(trail::load(project.path()), std::vector<TeskAuditEvent>{first});

    moment = *platform::parseISO8601("2024-06-01T09:00:00Z"); // a clock set back does not reorder the log
    const auto second = trail::append("quote_added", "", project.path());
    EXPECT_NE(second.id, first.id);
    EXPECT_EQ(trail::load(project.path()), (std::vector<TeskAuditEvent>{first, second}));
}

TEST(TeskAuditTrail, UnreadableLogIsNeverOverwritten) {
    const support::TemporaryDirectory project;
    const auto log = project / "trustworthiness/audit.json";
    support::writeText(log, "[{\"event\": \"code_created\",");
    EXPECT_THROW(trail::append("quote_added", "x", project.path()), json::DecodingError);
    EXPECT_EQ(support::readText(log), "[{\"event\": \"code_created\",");
    EXPECT_EQ(support::folderListing(project / "trustworthiness"), "audit.json");
}

TEST(TeskAuditTrail, EntryMissingAKeyFailsTheWholeLog) {
    const support::TemporaryDirectory project;
    support::writeText(trail::auditURL(project.path()),
                       R"([{"detail":"","event":"code_created","id":"6F9619FF-8B86-D011-B42D-00CF4FC964FF",)"
                       R"("when":"2024-06-01T10:00:00Z"},)"
                       R"({"event":"quote_added","id":"6F9619FF-8B86-D011-B42D-00CF4FC964FE","when":"2024-06-01T10:00:00Z"}])");
    EXPECT_THROW(trail::load(project.path()), json::DecodingError);
}

#include "MibrelMac/Views/MibrelSettingsView.h"

#include <gtest/gtest.h>

namespace mibrel {
namespace {

TEST(MibrelSettingsViewTest, VersionTextJoinsShortVersionAndBuildOnlyWhenTheyDiffer) {
    EXPECT_EQ(versionText("1.2.0", "431"), "1.2.0 (431)");
    EXPECT_EQ(versionText("1.2.0", "1.2.0"), "1.2.0");
    EXPECT_EQ(versionText("1.2.0", std::nullopt), "1.2.0");
    EXPECT_EQ(versionText(std::nullopt, "431"), "431");
    EXPECT_EQ(versionText(std::nullopt, std::nullopt), "Development build");
}

} // namespace
} // namespace mibrel

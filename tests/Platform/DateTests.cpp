#include "Platform/Foundation/Date.h"

#include <chrono>

#include <gtest/gtest.h>

using namespace std::chrono;
using platform::Date;
using platform::formatISO8601;
using platform::parseISO8601;

namespace {

Date at(year_month_day day, hours h, minutes m, seconds s) { return Date(sys_days(day) + h + m + s); }

} // namespace

TEST(DateFormat, WritesWholeSecondsInUtc) {
    const Date moment = at(2026y / March / 4, 5h, 6min, 7s);
    EXPECT_EQ(formatISO8601(moment), "2026-03-04T05:06:07Z");
    EXPECT_EQ(formatISO8601(moment + 999999us), "2026-03-04T05:06:07Z");
    // Before the epoch a fraction must round down, not toward zero.
    EXPECT_EQ(formatISO8601(Date() - 1us), "1969-12-31T23:59:59Z");
}

TEST(DateParse, ReadsZoneFractionsAndOffsets) {
    const Date noon = at(2026y / March / 4, 12h, 0min, 0s);
    EXPECT_EQ(parseISO8601("2026-03-04T12:00:00Z"), noon);
    EXPECT_EQ(parseISO8601("2026-03-04T12:00:00.123456Z"), noon + 123456us);
    EXPECT_EQ(parseISO8601("2026-03-04T14:00:00+02:00"), noon);
    EXPECT_EQ(parseISO8601("2026-03-04T06:30:00.25-0530"), noon + 250ms);
    // An offset can move the moment into another day.
    EXPECT_EQ(parseISO8601("2026-03-05T01:00:00+13:00"), noon);
    EXPECT_EQ(parseISO8601("2024-02-29T00:00:00Z"), at(2024y / February / 29, 0h, 0min, 0s));
    EXPECT_EQ(parseISO8601("1960-01-02T03:04:05Z"), at(1960y / January / 2, 3h, 4min, 5s));
}

TEST(DateParse, RejectsMalformedText) {
    for (const char* text : {"", "2026-03-04T12:00:00", "2026-02-30T12:00:00Z", "2026-03-04T24:00:00Z",
                             "2026-03-04T12:00:00Zjunk", "2026-03-04T12:00:00+02:00 ", "2026-03-04t12:00:00Z",
                             "2026-03-04T12:00:00z", "2026-03-04T12:00:00.Z", "2026-03-04T12:00:00+02",
                             "2026-3-04T12:00:00Z"}) {
        EXPECT_FALSE(parseISO8601(text)) << text;
    }
}

TEST(DateClock, OverrideReplacesNowAndRestoresIt) {
    const Date first = at(2001y / January / 1, 0h, 0min, 0s);
    const Date second = at(2002y / February / 2, 0h, 0min, 0s);
    {
        platform::ScopedClockOverride outer([&] { return first; });
        {
            platform::ScopedClockOverride inner([&] { return second; });
            EXPECT_EQ(platform::now(), second);
        }
        EXPECT_EQ(platform::now(), first);
    }
    // The real clock is back: far from both installed moments.
    EXPECT_GT(platform::now(), at(2020y / January / 1, 0h, 0min, 0s));
}

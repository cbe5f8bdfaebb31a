#include "tests/mfcbase/thrown.h"

#include <afxdisp.h>

#include <gtest/gtest.h>

TEST(DateTime, AgreesWithTheSystemOnEveryKindOfDay)
{
    struct Case
    {
        int year, month, day, hour, minute, second;
    };
    for (const Case& c : {Case{100, 1, 1, 0, 0, 0}, Case{1582, 10, 15, 1, 2, 3}, Case{1899, 12, 29, 6, 0, 0},
                          Case{1899, 12, 30, 6, 0, 0}, Case{1900, 2, 28, 23, 59, 59}, Case{2000, 2, 29, 12, 0, 0},
                          Case{2026, 11, 21, 4, 5, 6}, Case{9999, 12, 31, 23, 59, 59}})
    {
        const COleDateTime date(c.year, c.month, c.day, c.hour, c.minute, c.second);
        ASSERT_EQ(date.GetStatus(), COleDateTime::valid) << c.year;
        EXPECT_TRUE(date.GetYear() == c.year && date.GetMonth() == c.month && date.GetDay() == c.day);
        EXPECT_TRUE(date.GetHour() == c.hour && date.GetMinute() == c.minute && date.GetSecond() == c.second);
        SYSTEMTIME time = {};
        ASSERT_TRUE(date.GetAsSystemTime(time));
        DATE expected = 0;
        ASSERT_TRUE(SystemTimeToVariantTime(&time, &expected));
        EXPECT_NEAR(date.m_dt, expected, 1e-9) << c.year;
        EXPECT_EQ(COleDateTime(time), date);
    }
    const COleDateTime friday(2026, 11, 20, 0, 0, 0);
    EXPECT_EQ(friday.GetDayOfWeek(), 6);
    EXPECT_EQ(friday.GetDayOfYear(), 324);
}

TEST(DateTime, RefusesDaysThatDoNotExist)
{
    const struct
    {
        int year, month, day, hour;
    } none[] = {{1900, 2, 29, 0}, {2026, 4, 31, 0}, {99, 1, 1, 0}, {2026, 13, 1, 0}, {2026, 1, 1, 24}};
    COleDateTime date;
    for (const auto& c : none)
    {
        EXPECT_EQ(date.SetDateTime(c.year, c.month, c.day, c.hour, 0, 0), COleDateTime::invalid) << c.year;
    }
    EXPECT_EQ(date.GetYear(), COleDateTime::error);
    EXPECT_EQ(COleDateTime(3e6).GetStatus(), COleDateTime::invalid);
}

TEST(DateTime, CalculatesAcrossTheEpoch)
{
    const COleDateTime late(1899, 12, 30, 6, 0, 0);
    const COleDateTime early(1899, 12, 28, 18, 0, 0); // as a DATE -2.75
    EXPECT_DOUBLE_EQ(early.m_dt, -2.75);
    EXPECT_LT(early, late);
    const COleDateTimeSpan span = late - early;
    EXPECT_EQ(span.GetTotalSeconds(), 36 * 3600);
    EXPECT_EQ(early + span, late);
    EXPECT_EQ((COleDateTime(9999, 12, 31, 0, 0, 0) + COleDateTimeSpan(2, 0, 0, 0)).GetStatus(), COleDateTime::invalid);
    EXPECT_EQ(COleDateTimeSpan(1e9).GetStatus(), COleDateTimeSpan::invalid);
}

TEST(DateTime, NullMixesWithNothing)
{
    COleDateTime null;
    null.SetStatus(COleDateTime::null);
    const COleDateTime date(2026, 1, 1, 0, 0, 0);
    EXPECT_EQ(null, null);
    EXPECT_FALSE(null == date || null < date || date < null);
    EXPECT_EQ((null + COleDateTimeSpan(1, 0, 0, 0)).GetStatus(), COleDateTime::null);
    EXPECT_EQ((date - null).GetStatus(), COleDateTimeSpan::null);
    EXPECT_STREQ(null.Format("%x"), "");
}

TEST(DateTime, FormatsInTheUsersLocale)
{
    ASSERT_EQ(GetUserDefaultLCID(), 0x409u) << "the test expects the texts of en-US";
    const COleDateTime date(2026, 3, 4, 15, 6, 7);
    struct Case
    {
        const char* format;
        const char* expected;
    };
    for (const Case& c : {Case{"%x", "3/4/2026"}, Case{"%X", "3:06:07 PM"}, Case{"%Y-%m-%d %H:%M:%S", "2026-03-04 15:06:07"},
                          Case{"%#d.%#m.%y", "4.3.26"}, Case{"%A %a %B %b", "Wednesday Wed March Mar"},
                          Case{"%I %p %j %w %U %W", "03 PM 063 3 09 09"}, Case{"100%% %", "100% "}})
    {
        EXPECT_STREQ(date.Format(c.format), c.expected) << c.format;
    }
    EXPECT_STREQ(date.Format(VAR_DATEVALUEONLY), "3/4/2026");
    EXPECT_STREQ(date.Format(VAR_TIMEVALUEONLY), "3:06:07 PM");
    EXPECT_STREQ(COleDateTime(1500, 1, 2, 0, 0, 0).Format("%x"), "1500-01-02");
    EXPECT_STREQ(COleDateTime(4e6).Format("%x"), "Invalid DateTime");
}

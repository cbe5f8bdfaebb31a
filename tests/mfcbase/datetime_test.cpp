#include <afxdisp.h>

#include <gtest/gtest.h>

TEST(DateTime, AgreesWithTheSystemOnEveryKindOfDay)
{
    const struct
    {
        int year, month, day, hour, minute, second;
    } cases[] = {{100, 1, 1, 0, 0, 0},      {1582, 10, 15, 1, 2, 3}, {1899, 12, 29, 6, 0, 0},
                 {1899, 12, 30, 6, 0, 0},   {2000, 2, 29, 12, 0, 0}, {1900, 2, 28, 23, 59, 59},
                 {9999, 12, 31, 23, 59, 59}};
    for (const auto& c : cases)
    {
        const COleDateTime date(c.year, c.month, c.day, c.hour, c.minute, c.second);
        ASSERT_EQ(date.GetStatus(), COleDateTime::valid) << c.year;
        EXPECT_TRUE(date.GetYear() == c.year && date.GetMonth() == c.month && date.GetDay() == c.day);
        SYSTEMTIME time = {};
        ASSERT_TRUE(date.GetAsSystemTime(time));
        EXPECT_TRUE(time.wHour == c.hour && time.wMinute == c.minute && time.wSecond == c.second);
        DATE expected = 0;
        ASSERT_TRUE(SystemTimeToVariantTime(&time, &expected));
        EXPECT_NEAR(date.m_dt, expected, 1e-9) << c.year;
        EXPECT_EQ(COleDateTime(time), date);
    }
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
    EXPECT_EQ(early + COleDateTimeSpan(1, 12, 0, 0), late);
    EXPECT_NEAR((late + COleDateTimeSpan(0, 0, 1, 1)).m_dt, 0.25 + 61 / 86400.0, 1e-9);
    EXPECT_EQ((COleDateTime(9999, 12, 31, 0, 0, 0) + COleDateTimeSpan(2, 0, 0, 0)).GetStatus(),
              COleDateTime::invalid);
}

TEST(DateTime, NullMixesWithNothing)
{
    COleDateTime null;
    null.SetStatus(COleDateTime::null);
    const COleDateTime date(2026, 1, 1, 0, 0, 0);
    EXPECT_EQ(null, null);
    EXPECT_FALSE(null == date || null < date || date < null);
    EXPECT_EQ((null + COleDateTimeSpan(1, 0, 0, 0)).GetStatus(), COleDateTime::null);
    EXPECT_STREQ(null.Format(), "");
    EXPECT_STREQ(COleDateTime(4e6).Format(), "Invalid DateTime");
    ASSERT_EQ(GetUserDefaultLCID(), 0x409u) << "the test expects the texts of en-US";
    EXPECT_STREQ(COleDateTime(2026, 3, 4, 15, 6, 7).Format(VAR_DATEVALUEONLY), "3/4/2026");
}

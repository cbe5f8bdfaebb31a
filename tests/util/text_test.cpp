#include "suite/util/veldate.h"
#include "suite/util/velstring.h"

#include <gtest/gtest.h>

TEST(Template, TakesTextsOfTheFramework)
{
    const CString name("Ann Lee");
    EXPECT_STREQ(velFormatTemplate("<1> (ID:<2>)", name, strString::ToAlpha(12, 3)), "Ann Lee (ID:012)");
    EXPECT_STREQ(velFormatTemplate("<1>", ""), "");
    EXPECT_STREQ(velFormatTemplate(static_cast<LPCTSTR>(nullptr), "a"), "");
}

TEST(Date, StartsAsNoDate)
{
    velCDate date;
    EXPECT_TRUE(date.IsNull() && !date.IsValid());
    EXPECT_STREQ(date.FormatDate(), "");
    EXPECT_STREQ(date.ToISO(), "");
    date = COleDateTime(2026, 3, 4, 5, 6, 7);
    EXPECT_TRUE(date.IsValid());
    EXPECT_STREQ(date.FormatDate(), "3/4/2026");
    EXPECT_STREQ(date.ToISO(), "2026-03-04");
    EXPECT_TRUE(velCDate::Today().IsValid());
}

TEST(Date, ComparesByTheDay)
{
    const velCDate morning(COleDateTime(2026, 3, 4, 0, 0, 1));
    const velCDate evening(COleDateTime(2026, 3, 4, 23, 59, 59));
    EXPECT_TRUE(morning.IsSameDate(evening));
    EXPECT_LT(evening.CompareDate(velCDate(2026, 3, 5)), 0);
    EXPECT_GT(morning.CompareDate(velCDate(2026, 3, 3)), 0);
    // Before the epoch a DATE's time of day counts the other way.
    EXPECT_TRUE(velCDate(COleDateTime(1898, 5, 6, 18, 0, 0)).IsSameDate(velCDate(1898, 5, 6)));
    EXPECT_LT(velCDate(COleDateTime(1898, 5, 6, 18, 0, 0)).CompareDate(velCDate(1898, 5, 7)), 0);
    EXPECT_FALSE(velCDate(1899, 12, 29).IsSameDate(velCDate(1899, 12, 30)));
    EXPECT_LT(velCDate().CompareDate(velCDate(100, 1, 1)), 0);
    EXPECT_TRUE(velCDate().IsSameDate(velCDate()));
}

TEST(Date, ConvertsFromIso)
{
    EXPECT_EQ(velCDate::FromISO("2024-02-29 10:20:30"), velCDate(COleDateTime(2024, 2, 29, 10, 20, 30)));
    EXPECT_TRUE(velCDate::FromISO("").IsNull());
    EXPECT_TRUE(velCDate::FromISO(nullptr).IsNull());
    for (const char* bad : {"2023-02-29", "2024-13-01", "0001-01-01", "29.02.2024"})
        EXPECT_EQ(velCDate::FromISO(bad).GetStatus(), COleDateTime::invalid) << bad;
}

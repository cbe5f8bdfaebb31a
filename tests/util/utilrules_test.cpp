#include "suite/util/utilrules.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

TEST(Template, FillsEachMarkerOnce)
{
    struct Case
    {
        const char* text;
        std::vector<std::string_view> arguments;
        std::string result;
    };
    for (const Case& c : {
             Case{"Patient Information - <1> ID: <2>",
                  {"Ann Lee", "A1"},
                  "Patient Information - Ann Lee ID: A1"},
             Case{"<2><1><1>", {"a", "b"}, "baa"},
             Case{"<1> <2>", {"<2>", "x"}, "<2> x"},
             Case{"<1> <3>", {"a", "b"}, "a <3>"},
             Case{"<0> <x> <1 < 1> <", {"a"}, "<0> <x> <1 < 1> <"},
             Case{"<1>", {}, "<1>"},
             Case{"", {"a"}, ""},
         })
        EXPECT_EQ(utlFillTemplate(c.text, c.arguments), c.result);
}

TEST(Template, EndsAt256Characters)
{
    const std::string big(1000, 'x');
    const std::vector<std::string_view> arguments = {big};
    EXPECT_EQ(utlFillTemplate("<1>!", arguments), std::string(256, 'x'));
    EXPECT_EQ(utlFillTemplate("<1>!", std::vector<std::string_view>{std::string_view(big).substr(0, 255)}),
              std::string(255, 'x') + "!");
    EXPECT_EQ(utlFillTemplate(big, arguments), std::string(256, 'x'));
}

TEST(NumberText, FillsWithZeros)
{
    EXPECT_EQ(utlNumberText(12, 3), "012");
    EXPECT_EQ(utlNumberText(1234, 3), "1234");
    EXPECT_EQ(utlNumberText(0, 0), "0");
    EXPECT_EQ(utlNumberText(-5, 3), "-05");
    EXPECT_EQ(utlNumberText(INT_MIN, -1), "-2147483648");
}

TEST(SplitPath, TakesPathsApartAndLosesNothing)
{
    struct Case
    {
        const char *path, *drive, *dir, *name, *ext;
    };
    for (const Case& c : {
             Case{"c:\\veltrix\\a.b.kaz", "c:", "\\veltrix\\", "a.b", ".kaz"},
             Case{"c:name", "c:", "", "name", ""},
             Case{"\\\\server\\share\\x\\y.pf", "\\\\server\\share", "\\x\\", "y", ".pf"},
             Case{"\\\\server\\share", "\\\\server\\share", "", "", ""},
             Case{"\\\\server", "\\\\server", "", "", ""},
             Case{"dir.d\\name", "", "dir.d\\", "name", ""},
             Case{"a/b.c", "", "a/", "b", ".c"},
             Case{"name.", "", "", "name", "."},
             Case{".ext", "", "", "", ".ext"},
             Case{"", "", "", "", ""},
         })
    {
        const utlPathParts parts = utlSplitPath(c.path);
        EXPECT_EQ(std::tie(parts.drive, parts.dir, parts.name, parts.ext),
                  std::tuple(c.drive, c.dir, c.name, c.ext))
            << c.path;
    }
    EXPECT_EQ(utlWithBackslash("c:\\x"), "c:\\x\\");
    EXPECT_EQ(utlWithBackslash("c:\\x\\\\"), "c:\\x\\");
    EXPECT_EQ(utlWithBackslash("/"), "\\");
    EXPECT_EQ(utlWithBackslash(""), "");
}

TEST(IsoDate, ChecksTheForm)
{
    const auto date = utlParseIsoDate("2026-11-21");
    ASSERT_TRUE(date);
    EXPECT_TRUE(date->year == 2026 && date->month == 11 && date->day == 21 && date->hour == 0);
    for (const char* text : {"2026-11-21T04:05:06", "2026-11-21 04:05:06"})
    {
        const auto time = utlParseIsoDate(text);
        ASSERT_TRUE(time) << text;
        EXPECT_TRUE(time->hour == 4 && time->minute == 5 && time->second == 6);
    }
    for (const char* bad : {"", "2026-1-1", "2026/11/21", "2026-11-21 ", "2026-11-21 04:05", "x026-11-21",
                            "2026-11-21 04:05:0x", "2026-11-2104:05:06 "})
        EXPECT_FALSE(utlParseIsoDate(bad)) << bad;
}

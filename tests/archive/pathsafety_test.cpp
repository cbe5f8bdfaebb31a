#include "archive/files/pathsafety.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;

TEST(ArchivePathSafety, AcceptsWhatAFolderCanHold)
{
    const std::string names[] = {
        "S1.PF",  ".hidden", "...x",          " a",    "A1$00$x.y.2dmorph",  "CONSOLE.PF", "COM10",
        "COM.PF", "xAUX",    "M\xFCller.I40", "a~1.b", std::string(255, 'x')};
    for (const std::string& name : names)
    {
        const auto safe = arc::SafeRelativePath(name);
        EXPECT_TRUE(safe && safe->path == name && !safe->folder) << name;
    }
    EXPECT_EQ(arc::SafeRelativePath("a\\b/c.d").value().path, "a\\b\\c.d");
    for (const char* stored : {"a\\b/", "a\\b\\"})
    {
        const auto safe = arc::SafeRelativePath(stored);
        EXPECT_TRUE(safe && safe->path == "a\\b" && safe->folder) << stored;
    }
}

TEST(ArchivePathSafety, RefusesEveryWayOut)
{
    const std::string cases[] = {
        // clang-format off
        "", "/", "\\", "//", "a//b", "a\\\\b", "a//", "/a", "\\a",
        // dots and what Windows makes of them
        ".", "..", "./a", "a/.", "a/..", "../a", "..\\a", "a/../b", "a\\..\\..\\b", "...", "a/.../b",
        ". .", ".. ", "..\\", ". ./a", ".. /a", " ", "a/ /b", "a.", "a. ", "a.pf ", "dir./a", "dir /a",
        "a/b.",
        // drives, streams, shares, devices
        "C:", "C:a", "C:\\a", "c:/a", "a:stream", "a.pf:x:$DATA", "\\\\server\\share\\a",
        "//server/share/a", "\\\\?\\C:\\a", "\\\\.\\C:", "\\??\\C:\\a", "//?/C:/a", "\\\\?\\UNC\\s\\a",
        // characters that no name has
        "a\0b"s, "\0"s, "a.pf\0.txt"s, "a\nb", "a\tb", "a\x1f", "a*", "a?", "a<b", "a>b", "a|b", "a\"b",
        // devices, in any form
        "CON", "con", "PRN.txt", "aux.PF", "NUL", "nul.tar.gz", "CONIN$", "conout$.x", "CLOCK$", "COM1",
        "com9.x", "LPT0", "LPT1.a.b", "COM\xB9", "com\xB2.x", "LPT\xB3", "COM\xC2\xB9.pf", "LPT\xC2\xB2",
        "com\xC2\xB3", "AUX .pf", "a/CON/b", "a\\nul", "CON ",
        // too long
        std::string(256, 'x'), std::string(200, 'x') + "\\" + std::string(60, 'y')
        // clang-format on
    };
    for (const std::string& stored : cases)
        EXPECT_FALSE(arc::SafeRelativePath(stored)) << testing::PrintToString(stored);
}

TEST(ArchivePathSafety, FileNamesHaveNoFolderAndTheFolderCountsIntoTheLength)
{
    EXPECT_TRUE(arc::SafeRelativePath("12345", 253));
    EXPECT_FALSE(arc::SafeRelativePath("12345", 254));
    EXPECT_EQ(arc::SafeFileName("S1.PF"), "S1.PF");
    for (const char* stored : {"a\\b", "a/b", "a\\", "..", ""})
        EXPECT_FALSE(arc::SafeFileName(stored)) << stored;
}

TEST(ArchivePathSafety, BelowMeansBehindAWholeFolderName)
{
    EXPECT_TRUE(arc::LiesBelow("C:\\tmp\\a", "c:\\TMP"));
    EXPECT_TRUE(arc::LiesBelow("C:\\a", "C:\\"));
    EXPECT_FALSE(arc::LiesBelow("C:\\tmpx\\a", "C:\\tmp"));
    EXPECT_FALSE(arc::LiesBelow("C:\\tmp", "C:\\tmp"));
    EXPECT_FALSE(arc::LiesBelow("C:\\tmp\\", "C:\\tmp"));
    EXPECT_FALSE(arc::LiesBelow("C:\\a", ""));
}

TEST(ArchivePathSafety, SameFileWhateverTheCase)
{
    EXPECT_EQ(arc::SameFileKey("a\\B.pf"), arc::SameFileKey("A\\b.PF"));
    EXPECT_EQ(arc::SameFileKey("\xE9\x9C"), arc::SameFileKey("\xC9\x8C"));
    EXPECT_NE(arc::SameFileKey("\xD7"), arc::SameFileKey("\xF7")); // multiplied and divided
    EXPECT_NE(arc::SameFileKey("\xDF"), arc::SameFileKey("ss"));
}

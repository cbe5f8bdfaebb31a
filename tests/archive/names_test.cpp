#include "archive/res/archiveres.h"
#include "archive/files/filenames.h"
#include "archive/files/fileset.h"
#include "archive/files/headerline.h"
#include "archive/files/progress.h"
#include "archive/work/resultcodes.h"
#include "tests/archive/memoryfilesystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <set>

using arc::ArchiveKind;
using testing::ElementsAre;

TEST(ArchiveNames, KindIsTheFirstKnownPartAnywhereInTheLoweredPath)
{
    const std::pair<const char*, ArchiveKind> cases[] = {
        {"D:\\x.KAR", ArchiveKind::VolumeFile},
        {"A:\\CURRENT.DAT", ArchiveKind::Diskettes},
        {"C:\\old\\SMITH.Pf", ArchiveKind::PatientFile},
        {"C:\\a.pf\\Current.Dat", ArchiveKind::Diskettes},
        {"C:\\a.pf\\current.dat.kar", ArchiveKind::VolumeFile},
        {"C:\\x.pfx", ArchiveKind::PatientFile},
        {"C:\\x.kaz", ArchiveKind::None},
        {"kar", ArchiveKind::None},
        {"", ArchiveKind::None},
    };
    for (const auto& [path, kind] : cases)
        EXPECT_EQ(arc::KindOfArchive(path), kind) << path;
    EXPECT_TRUE(arc::IsZippedArchive("D:\\P.KAZ"));
    EXPECT_FALSE(arc::IsZippedArchive("D:\\x.kaz\\P.kar"));
}

TEST(ArchiveNames, PatternArgumentHasTheEightPatternsAndSplitsBack)
{
    EXPECT_EQ(arc::ArchivePatternArgument("S1"),
              "\"S1.PF\" \"S1??.i??\" \"S1??.v??\" \"S1??.m\" \"S1??.i??.???\" "
              "\"S1$*\" \"S1??.d?.i??\" \"S1*.2dmorph\"");
    EXPECT_EQ(arc::SplitPatternArgument(arc::ArchivePatternArgument("S1")), arc::ArchivePatterns("S1"));
    EXPECT_THAT(arc::SplitPatternArgument("  a\"b\" \"\" c\""), ElementsAre("a", "b", "c"));
    EXPECT_THAT(arc::SplitPatternArgument("\" \""), ElementsAre());
}

TEST(ArchiveNames, WildcardsAreStrict)
{
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"A1.I40", "A1??.i??", false},
        {"A100.I4", "A1??.i??", false},
        {"A123.M", "A1??.m", true},
        {"A1.2dmorphs", "A1*.2dmorph", false},
        {"", "*", true},
        {"", "?", false},
        {"abcabd", "*abd", true},
        {"abc", "***", true},
    };
    for (const auto& [name, pattern, matches] : cases)
        EXPECT_EQ(arc::MatchesWildcard(name, pattern), matches) << name << " " << pattern;
}

TEST(ArchiveHeaderLine, WritesThreeEndedFieldsAndAcceptsOnlyWholeLines)
{
    using namespace std::string_literals;
    const std::string full(25, 'x');
    const std::pair<std::string, bool> cases[] = {
        {"Smith\x01Jo\x01S1\x01\n", true},
        {"Smith\x01Jo\x01S1\x01\r\n", true},
        {full + "\x01" + full + "\x01" + full + "\x01\r\nrest", true},
        {"\x01\x01S1\x01\n", true},
        {"Smith\x01Jo\x01\x01\n", false},
        {full + "x\x01Jo\x01S1\x01\n", false},
        {"Smith\x01Jo\x01" + full + "x\x01\n", false},
        {"Smith\x01Jo\x01S1\x01", false},
        {"Smith\x01Jo\x01S1\x01 \n", false},
        {"Smith\x01Jo\x01S1\n", false},
        {"Smith\x01Jo\n\x01S1\x01\n", false},
        {"Smi\0th\x01Jo\x01S1\x01\n"s, false},
        {"", false},
    };
    for (const auto& [line, accepted] : cases)
        EXPECT_EQ(arc::ParseHeaderLine(line).has_value(), accepted) << testing::PrintToString(line);
    EXPECT_EQ(arc::ParseHeaderLine(cases[0].first), (arc::HeaderLine{"Smith", "Jo", "S1"}));
    EXPECT_EQ(arc::WriteHeaderLine({full + "abc", "J\x01\n", "S"}), full + "\x01J\x01S\x01\n");

    // Compared are the 25 characters that a line holds.
    EXPECT_TRUE(arc::SamePatient({full + "abc", "Jo", "S1"}, {full, "Jo", "S1"}));
    EXPECT_FALSE(arc::SamePatient({"smith", "Jo", "S1"}, {"Smith", "Jo", "S1"})); // exact, case and all
    EXPECT_FALSE(arc::SamePatient({"Smith", "Jo", "S1"}, {"Smith", "Jo", "S2"}));
}

TEST(ArchiveFileSet, ListsByGroupThenTypeThenTimepoint)
{
    arc::ImageTypeTable types;
    types[0] = "AI";
    types[4] = "0";
    // Only an extension's first letter is ever another; a bit without a type of the table names no file.
    const arc::TimepointFiles first{0, "II00", {0b10}}, second{100, "II100", {0b11, 0, 0, 0, 0b101}};
    const auto names = arc::ListFileSet("II", {first, second}, types);
    EXPECT_THAT(names, ElementsAre("II.PF", "II100.I0A", "II100.V0A", "II00.I0I", "II00.V0I", "II100.I0I",
                                   "II100.V0I", "II100.I40", "II100.V40", "II00.DF0", "II00.DF1", "II00.DF2",
                                   "II00.DF3", "II00.M", "II100.DF0", "II100.DF1", "II100.DF2", "II100.DF3",
                                   "II100.M"));
    EXPECT_THAT(arc::ListFileSet("P", {}, types), ElementsAre("P.PF"));
}

TEST(ArchiveFileSet, FindsTheOtherNameOfAMissingImage)
{
    MemoryFileSystem files;
    files.Put("C:\\w\\P.PF", "1234");
    files.Put("C:\\w\\P00.C01", "12");
    files.Put("C:\\w\\P01.I40", "1");
    files.Put("C:\\w\\P01.C01", "123");
    files.Put("C:\\w\\P03.C01", "1234");
    files.CreateFolder("C:\\w\\P00.M");
    const auto present = arc::PresentFiles(
        files, "C:\\w", {"P.PF", "P00.i40", "P01.I40", "P02.I40", "P03.I41", "I40", "P00.M"});
    ASSERT_TRUE(present);
    EXPECT_THAT(*present, ElementsAre(arc::PresentFile{"P.PF", 4}, arc::PresentFile{"P00.C01", 2},
                                      arc::PresentFile{"P01.I40", 1}));
    // A file that cannot be asked is not one that is missing.
    files.FailFrom(2, 1);
    EXPECT_FALSE(arc::PresentFiles(files, "C:\\w", {"P.PF", "P00.M"}));
}

TEST(ArchiveFileSet, ArchiveHoldsPatternsThenListedFilesOnce)
{
    MemoryFileSystem files;
    for (const char* name :
         {"A1.PF", "A100.I40", "A101.C01", "A100.DF0", "A100.DF9", "A1$00$note.txt", "A1$x.2dmorph",
          "A12.2dmorph", "A1200.I40", "A12.PF", "A100.V40", "A100.D1.I20", "B.PF", "A100.I40.AVI"})
    {
        files.Put(std::string("C:\\w\\") + name, name);
    }
    std::vector<arc::PresentFile> found;
    ASSERT_TRUE(arc::FilesToArchive(files, "C:\\w", "A1",
                                    {"A1.PF", "A100.I40", "A101.I40", "A100.DF0", "A100.DF1"}, found));
    std::vector<arc::PresentFile> expected;
    for (const std::string name : {"A1.PF", "A100.I40", "A100.V40", "A100.I40.AVI", "A1$00$note.txt",
                                   "A1$x.2dmorph", "A100.D1.I20", "A12.2dmorph", "A101.C01", "A100.DF0"})
        expected.push_back({name, name.size()});
    EXPECT_EQ(found, expected);
    EXPECT_FALSE(arc::FilesToArchive(files, "C:\\none", "A1", {}, found));
}

TEST(ArchiveProgress, IsRoundedDownOrForEntriesUp)
{
    EXPECT_EQ(arc::ProgressPercent(2, 3), 66);
    EXPECT_EQ(arc::ProgressPercent(4, 3), 100);
    EXPECT_EQ(arc::ProgressPercent(0, 0), 100);
    constexpr auto huge = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(arc::ProgressPercent(huge / 2, huge), 50);
    EXPECT_EQ(arc::UnzipPercent(1, 3), 34);
    EXPECT_EQ(arc::UnzipPercent(999, 1000), 100);
    EXPECT_EQ(arc::UnzipPercent(0, 0), 100);
}

TEST(ArchiveResultCodes, EveryCodeHasTheMessageOfItsRow)
{
    const auto codesOf = [](unsigned (*table)(int), unsigned text) {
        std::set<int> codes;
        for (int code = -2; code <= 9000; ++code)
        {
            if (table(code) == text)
                codes.insert(code);
        }
        return codes;
    };
    using Codes = std::set<int>;
    EXPECT_EQ(codesOf(arc::SaveResultText, IDS_ARC_WRITE_PROTECTED), (Codes{3}));
    EXPECT_EQ(codesOf(arc::SaveResultText, IDS_ARC_WRITE_FAILURE), (Codes{14}));
    EXPECT_EQ(codesOf(arc::SaveResultText, IDS_ARC_NOT_CREATED), (Codes{15}));
    EXPECT_EQ(codesOf(arc::SaveResultText, IDS_ARC_SAVE_ERROR_CODE),
              (Codes{1, 2, 4, 5, 6, 7, 8, 10, 11, 12, 13, 16, 17, 18, 19, 20, 21}));
    EXPECT_EQ(codesOf(arc::LoadResultText, IDS_ARC_OPEN_ERROR), (Codes{2, 3, 4, 5, 9, 11, 12, 25, 28, 29}));
    EXPECT_EQ(codesOf(arc::LoadResultText, IDS_ARC_EXTRACT_ERROR), (Codes{39, 41, 42}));
    EXPECT_EQ(codesOf(arc::LoadResultText, IDS_ARC_LOAD_ERROR_CODE), (Codes{44, 45, 46, 47, 49, 50}));
    EXPECT_EQ(codesOf(arc::ThreadResultText, IDS_ARC_CANCELLED), (Codes{8493}));
    EXPECT_EQ(codesOf(arc::ThreadResultText, IDS_ARC_NO_DIALOG), (Codes{8495}));
}

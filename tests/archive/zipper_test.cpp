#include "archive/files/filenames.h"
#include "archive/zip/unzipper.h"
#include "archive/work/verify.h"
#include "archive/zip/zipdirectory.h"
#include "archive/zip/zipper.h"
#include "tests/archive/memoryfilesystem.h"
#include "tests/archive/rawzip.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using testing::ElementsAre;
namespace attribute = arc::attribute;

// The zip library keeps 80 bytes when it cannot write an entry's header; a save that fails so is over anyway.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:zipOpenNewFileInZip4_64";
}

namespace
{
std::string Noise(std::size_t size)
{
    std::string bytes(size, '\0');
    std::uint32_t state = 12345;
    for (char& byte : bytes)
    {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

class ArchiveZipper : public testing::Test
{
protected:
    std::vector<arc::ZipEntry> Entries(const std::string& path = "C:\\w\\x.zip")
    {
        const auto file = files.Open(path, arc::Access::ReadShared);
        auto directory = file ? arc::ReadZipDirectory(*file) : std::nullopt;
        EXPECT_TRUE(directory);
        return directory ? directory->entries : std::vector<arc::ZipEntry>();
    }

    std::vector<std::string> Names(const std::string& path = "C:\\w\\x.zip")
    {
        std::vector<std::string> names;
        for (const arc::ZipEntry& entry : Entries(path))
        {
            names.push_back(entry.name);
        }
        return names;
    }

    MemoryFileSystem files;
    CZipper zipper{files};
};
} // namespace

TEST_F(ArchiveZipper, StoresNamesBehindTheRoot)
{
    files.Put("C:\\w\\a.pf", "a");
    files.Put("C:\\w\\sub\\b.pf", "b");
    files.Put("C:\\c.pf", "c");
    files.Put("D:\\d.pf", "d");
    const struct
    {
        const char* path;
        bool ignorePath;
        const char* stored; // null: refused
    } cases[] = {
        {"C:\\w\\a.pf", false, "a.pf"},     {"c:\\W\\sub\\b.pf", false, "sub\\b.pf"},
        {"C:\\w\\sub\\b.pf", true, "b.pf"}, {"C:\\c.pf", false, nullptr},
        {"C:\\c.pf", true, "c.pf"},         {"D:\\d.pf", false, nullptr},
        {"..\\c.pf", false, nullptr},       {"..\\c.pf", true, "c.pf"},
        {".\\c.pf", false, "c.pf"},         {"w\\a.pf", false, "w\\a.pf"},
        {"C:\\w\\none.pf", false, nullptr}, {"C:\\w\\sub", false, nullptr},
        {"w\\..\\c.pf", false, nullptr},    {"", false, nullptr},
    };
    for (const auto& c : cases)
    {
        ASSERT_TRUE(zipper.OpenZip("C:\\w\\x.zip"));
        EXPECT_EQ(zipper.AddFileToZip(c.path, c.ignorePath), c.stored != nullptr) << c.path;
        ASSERT_TRUE(zipper.CloseZip());
        EXPECT_EQ(Names(), c.stored ? std::vector<std::string>{c.stored} : std::vector<std::string>())
            << c.path;
    }
}

TEST_F(ArchiveZipper, EntryCarriesTimeAttributesAndCounts)
{
    files.Put("C:\\w\\a.pf", std::string(5000, 'a'), attribute::ReadOnly | attribute::Hidden);
    files.Find("C:\\w\\a.pf")->written = {2019, 1, 28, 23, 59, 58};
    files.Put("C:\\w\\empty.pf", "");
    files.Find("C:\\w\\empty.pf")->written = {1601, 0, 1, 0, 0, 0};
    ASSERT_TRUE(zipper.OpenZip("C:\\w\\x.zip"));
    EXPECT_TRUE(zipper.AddFileToZip("C:\\w\\a.pf"));
    EXPECT_TRUE(zipper.AddFileToZip("C:\\w\\empty.pf"));
    EXPECT_EQ(zipper.FilesAdded(), 2u);
    EXPECT_EQ(zipper.BytesAdded(), 5000u);
    ASSERT_TRUE(zipper.CloseZip());
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].time, (arc::LocalTime{2019, 1, 28, 23, 59, 58}));
    EXPECT_EQ(entries[0].attributes, attribute::ReadOnly | attribute::Hidden);
    EXPECT_EQ(entries[0].method, 8);
    EXPECT_LT(entries[0].packedSize, 100u);
    EXPECT_EQ(entries[1].size, 0u);
    EXPECT_EQ(entries[1].time.year, 1980);
}

TEST_F(ArchiveZipper, FoldersAreStoredBeforeWhatTheyHold)
{
    files.Put("C:\\w\\f\\a.txt", "a");
    files.Put("C:\\w\\f\\.git\\x", "x");
    files.Put("C:\\w\\f\\.hidden", "x");
    files.Put("C:\\w\\f\\g\\b.txt", "b");
    files.CreateFolder("C:\\w\\f\\empty");
    files.Put("C:\\w\\f\\link\\c.txt", "c");
    files.SetAttributes("C:\\w\\f\\link", attribute::Folder | attribute::Reparse);

    ASSERT_TRUE(zipper.OpenZip("C:\\w\\x.zip"));
    EXPECT_TRUE(zipper.AddFolderToZip("C:\\w\\f"));
    EXPECT_EQ(zipper.FoldersAdded(), 3u);
    EXPECT_FALSE(zipper.AddFolderToZip("C:\\other"));
    ASSERT_TRUE(zipper.CloseZip());
    EXPECT_THAT(Names(), ElementsAre("f\\", "f\\a.txt", "f\\empty\\", "f\\g\\", "f\\g\\b.txt"));
    EXPECT_EQ(Entries()[0].attributes, attribute::Folder);
    EXPECT_EQ(Entries()[2].packedSize, 0u);

    ASSERT_TRUE(zipper.OpenZip("C:\\w\\x.zip"));
    EXPECT_TRUE(zipper.AddFolderToZip("C:\\w\\f\\", true));
    ASSERT_TRUE(zipper.CloseZip());
    EXPECT_THAT(Names(), ElementsAre("f\\", "a.txt", "empty\\", "g\\", "b.txt"));

    ASSERT_TRUE(zipper.OpenZip("C:\\x.zip", "C:\\w\\f"));
    EXPECT_TRUE(zipper.AddFolderToZip("C:\\w\\f"));
    ASSERT_TRUE(zipper.CloseZip());
    EXPECT_THAT(Names("C:\\x.zip"), ElementsAre("a.txt", "empty\\", "g\\", "g\\b.txt"));
}

TEST_F(ArchiveZipper, AppendsOnlyToASoundZip)
{
    files.Put("C:\\w\\a.pf", "a");
    files.Put("C:\\w\\b.pf", "b");
    ASSERT_TRUE(zipper.OpenZip("C:\\w\\x.zip", "", true)); // not there: created
    EXPECT_TRUE(zipper.AddFileToZip("C:\\w\\a.pf"));
    ASSERT_TRUE(zipper.CloseZip());
    ASSERT_TRUE(zipper.OpenZip("C:\\w\\x.zip", "", true));
    EXPECT_TRUE(zipper.AddFileToZip("C:\\w\\b.pf"));
    ASSERT_TRUE(zipper.CloseZip());
    EXPECT_THAT(Names(), ElementsAre("a.pf", "b.pf"));
    ASSERT_TRUE(zipper.OpenZip("C:\\w\\x.zip"));
    ASSERT_TRUE(zipper.CloseZip());
    EXPECT_EQ(files.Bytes("C:\\w\\x.zip").size(), 22u);
    ASSERT_TRUE(zipper.OpenZip("C:\\w\\x.zip", "", true)); // behind the contents of an empty one
    EXPECT_TRUE(zipper.AddFileToZip("C:\\w\\b.pf"));
    ASSERT_TRUE(zipper.CloseZip());
    EXPECT_THAT(Names(), ElementsAre("b.pf"));

    for (const std::string& bytes : {std::string(), std::string(100, '\0'), std::string("a letter")})
    {
        files.Put("C:\\w\\letter.zip", bytes);
        EXPECT_FALSE(zipper.OpenZip("C:\\w\\letter.zip", "", true));
        EXPECT_EQ(files.Bytes("C:\\w\\letter.zip"), bytes);
    }
}

TEST_F(ArchiveZipper, OpenFailsWhereNothingCanBeWritten)
{
    files.Put("C:\\ro.zip", "x", attribute::ReadOnly);
    EXPECT_FALSE(zipper.OpenZip(""));
    EXPECT_FALSE(zipper.OpenZip("C:\\none\\x.zip"));
    EXPECT_FALSE(zipper.OpenZip("C:\\ro.zip"));
    EXPECT_FALSE(zipper.OpenZip("C:\\" + std::string(300, 'x')));
    EXPECT_FALSE(zipper.CloseZip());
    EXPECT_FALSE(zipper.AddFileToZip("C:\\ro.zip"));
    EXPECT_FALSE(zipper.AddFolderToZip("C:\\"));
    EXPECT_FALSE(zipper.AddPatternList("\"*\""));
}

TEST_F(ArchiveZipper, PatternListTakesStrictMatchesOnce)
{
    for (const char* name : {"A1.PF", "A100.I40", "A100.V40", "A1200.I40", "A1$00$x", "A1$y.2dmorph", "B.PF"})
    {
        files.Put(std::string("C:\\work\\") + name, name);
    }
    files.CreateFolder("C:\\out");
    ASSERT_TRUE(zipper.OpenZip("C:\\out\\A1.KAZ"));
    EXPECT_TRUE(zipper.AddPatternList(arc::ArchivePatternArgument("A1"), "C:\\work", true));
    ASSERT_TRUE(zipper.CloseZip());
    EXPECT_THAT(Names("C:\\out\\A1.KAZ"),
                ElementsAre("A1.PF", "A100.I40", "A100.V40", "A1$00$x", "A1$y.2dmorph"));

    ASSERT_TRUE(zipper.OpenZip("C:\\out\\B.KAZ", "C:\\work"));
    EXPECT_TRUE(zipper.AddPatternList("\"C:\\work\\B*\" C:\\work\\none.*"));
    ASSERT_TRUE(zipper.CloseZip());
    EXPECT_THAT(Names("C:\\out\\B.KAZ"), ElementsAre("B.PF"));

    // A file that is held by another process is a failed save, not one file less.
    const auto held = files.Open("C:\\work\\A100.I40", arc::Access::ReadShared);
    ASSERT_TRUE(zipper.OpenZip("C:\\out\\A1.KAZ"));
    EXPECT_FALSE(zipper.AddPatternList(arc::ArchivePatternArgument("A1"), "C:\\work", true));
}

TEST_F(ArchiveZipper, ZipsOneFileBesideIt)
{
    files.Put("C:\\w\\a.pf", "abc");
    EXPECT_TRUE(CZipper::ZipFile(files, "C:\\w\\a.pf"));
    EXPECT_THAT(Names("C:\\w\\a.zip"), ElementsAre("a.pf"));
    EXPECT_FALSE(CZipper::ZipFile(files, "C:\\w\\none.pf"));
    EXPECT_FALSE(files.Exists("C:\\w\\none.zip"));
    // A zip is not emptied to hold itself.
    const std::string before = files.Bytes("C:\\w\\a.zip");
    EXPECT_FALSE(CZipper::ZipFile(files, "C:\\w\\A.ZIP"));
    EXPECT_EQ(files.Bytes("C:\\w\\a.zip"), before);
}

TEST_F(ArchiveZipper, ProgressMovesWithinALargeFile)
{
    files.Put("C:\\w\\large.i40", Noise(3'000'000));
    files.Put("C:\\w\\small.i40", "x");
    std::vector<int> seen;
    zipper.SetProgress([&](int percent, const std::string&) {
        seen.push_back(percent);
        return true;
    });
    ASSERT_TRUE(zipper.OpenZip("C:\\w\\x.zip"));
    EXPECT_TRUE(zipper.AddPatternList("\"*.i40\"", "C:\\w", true));
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_GT(
        std::count_if(seen.begin(), seen.end(), [](int percent) { return percent > 0 && percent < 100; }),
        30);
    EXPECT_EQ(seen.back(), 100);
}

TEST_F(ArchiveZipper, LargeFilesRoundTripThroughEveryBuffer)
{
    std::vector<arc::PresentFile> set;
    for (const std::size_t size : {0u, 1u, 2047u, 2048u, 2049u, 65536u, 262144u, 262145u, 700'001u})
    {
        set.push_back({"f" + std::to_string(size) + ".bin", size});
        files.Put("C:\\w\\" + set.back().name, Noise(size));
    }
    ASSERT_TRUE(zipper.OpenZip("C:\\x.kaz"));
    EXPECT_TRUE(zipper.AddFiles("C:\\w", set));
    ASSERT_TRUE(zipper.CloseZip());
    EXPECT_TRUE(arc::VerifyZip(files, "C:\\x.kaz", set));
    CUnzipper unzipper(files);
    ASSERT_TRUE(unzipper.OpenZip("C:\\x.kaz"));
    EXPECT_TRUE(unzipper.UnzipAll("C:\\out\\deep"));
    for (const auto& file : set)
    {
        EXPECT_EQ(files.Bytes("C:\\out\\deep\\" + file.name), files.Bytes("C:\\w\\" + file.name))
            << file.name;
    }
    set.back().size++;
    EXPECT_FALSE(arc::VerifyZip(files, "C:\\x.kaz", set));
    set.pop_back();
    EXPECT_FALSE(arc::VerifyZip(files, "C:\\x.kaz", set));
}

// Whatever call fails first, all after it fail too, as on a disk that is full or gone: the save says so.
TEST_F(ArchiveZipper, NoFaultGoesUnnoticed)
{
    std::vector<arc::PresentFile> set;
    for (const std::size_t size : {600'000u, 3u})
    {
        set.push_back({"f" + std::to_string(size), size});
        files.Put("C:\\w\\" + set.back().name, Noise(size));
    }
    const auto save = [&] {
        CZipper saver(files);
        const bool added = saver.OpenZip("C:\\x.kaz") && saver.AddFiles("C:\\w", set);
        return saver.CloseZip() && added;
    };
    files.FailFrom(0);
    ASSERT_TRUE(save());
    const int calls = files.Calls();
    ASSERT_GT(calls, 10);
    for (int call = 1; call <= calls; ++call)
    {
        files.FailFrom(call);
        EXPECT_FALSE(save()) << call;
    }
    files.FailFrom(0);
    EXPECT_TRUE(save());
}

TEST_F(ArchiveZipper, AFullDiskIsAFailedSave)
{
    files.AddDrive('D', 20, 512);
    files.Put("C:\\w\\a.pf", Noise(20'000));
    ASSERT_TRUE(zipper.OpenZip("D:\\x.kaz"));
    const bool added = zipper.AddFileToZip("C:\\w\\a.pf", true);
    EXPECT_FALSE(zipper.CloseZip() && added);
}

TEST_F(ArchiveZipper, VerificationSeesEveryChangedByte)
{
    files.Put("C:\\w\\a.pf", "some bytes of a record");
    files.Put("C:\\w\\b.pf", Noise(50));
    const std::vector<arc::PresentFile> set = {{"a.pf", 22}, {"b.pf", 50}};
    ASSERT_TRUE(zipper.OpenZip("C:\\x.kaz"));
    ASSERT_TRUE(zipper.AddFiles("C:\\w", set));
    ASSERT_TRUE(zipper.CloseZip());
    const std::string whole = files.Bytes("C:\\x.kaz");
    int unnoticed = 0;
    for (std::size_t at = 0; at < whole.size(); ++at)
    {
        std::string changed = whole;
        changed[at] ^= 0x10;
        files.Put("C:\\x.kaz", changed);
        unnoticed += arc::VerifyZip(files, "C:\\x.kaz", set) ? 1 : 0;
    }
    // Versions, times and attributes of two entries in two headers, and the bits that fill up the last byte
    // of packed contents; nothing of names, sizes, places or contents.
    EXPECT_LE(unnoticed, 2 * (6 + 14 + 1));
}

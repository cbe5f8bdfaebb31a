// Writing zips, file by file and folder by folder.
#include "archive/zip/zipdirectory.h"
#include "tests/archive/zipfixture.h"

using testing::ElementsAre;
namespace attribute = arc::attribute;

namespace
{
class ArchiveZipper : public testing::Test
{
protected:
    std::vector<arc::ZipEntry> Entries(const std::string& path = "C:\\w\\x.zip")
    {
        const auto file = files.Open(path, arc::Access::ReadShared);
        const auto directory = file ? arc::ReadZipDirectory(*file) : std::nullopt;
        EXPECT_TRUE(directory);
        return directory.value_or(arc::ZipDirectory()).entries;
    }

    std::vector<std::string> Names(const std::string& path = "C:\\w\\x.zip")
    {
        std::vector<std::string> names;
        for (const arc::ZipEntry& entry : Entries(path))
            names.push_back(entry.name);
        return names;
    }

    // What the zip holds when something was added to it, or to a new one.
    std::vector<std::string> NamesBehind(const std::function<bool()>& add, bool append = false,
                                         const std::string& root = {})
    {
        EXPECT_TRUE(zipper.OpenZip("C:\\w\\x.zip", root, append));
        EXPECT_TRUE(add());
        EXPECT_TRUE(zipper.CloseZip());
        return Names();
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
    EXPECT_THAT(NamesBehind([&] {
                    return zipper.AddFileToZip("C:\\w\\a.pf") && zipper.AddFileToZip("C:\\w\\empty.pf");
                }),
                ElementsAre("a.pf", "empty.pf"));
    EXPECT_EQ(zipper.FilesAdded(), 2u);
    EXPECT_EQ(zipper.BytesAdded(), 5000u);
    const auto entries = Entries();
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

    const auto add = [&] { return zipper.AddFolderToZip("C:\\w\\f"); };
    EXPECT_THAT(NamesBehind(add), ElementsAre("f\\", "f\\a.txt", "f\\empty\\", "f\\g\\", "f\\g\\b.txt"));
    EXPECT_EQ(zipper.FoldersAdded(), 3u);
    EXPECT_EQ(Entries()[0].attributes, attribute::Folder);
    EXPECT_EQ(Entries()[2].packedSize, 0u);
    EXPECT_THAT(NamesBehind(add, false, "C:\\w\\f"), ElementsAre("a.txt", "empty\\", "g\\", "g\\b.txt"));
    EXPECT_THAT(NamesBehind([&] {
                    return !zipper.AddFolderToZip("C:\\other") && zipper.AddFolderToZip("C:\\w\\f\\", true);
                }),
                ElementsAre("f\\", "a.txt", "empty\\", "g\\", "b.txt"));
}

TEST_F(ArchiveZipper, AppendsOnlyToASoundZip)
{
    files.Put("C:\\w\\a.pf", "a");
    files.Put("C:\\w\\b.pf", "b");
    const auto addA = [&] { return zipper.AddFileToZip("C:\\w\\a.pf"); };
    const auto addB = [&] { return zipper.AddFileToZip("C:\\w\\b.pf"); };
    EXPECT_THAT(NamesBehind(addA, true), ElementsAre("a.pf")); // not there: created
    EXPECT_THAT(NamesBehind(addB, true), ElementsAre("a.pf", "b.pf"));
    // Patterns may have paths and match nothing.
    EXPECT_THAT(NamesBehind([&] { return zipper.AddPatternList("\"C:\\w\\B*\" C:\\w\\none.*"); }),
                ElementsAre("b.pf"));
    EXPECT_THAT(NamesBehind([] { return true; }), ElementsAre());
    EXPECT_EQ(files.Bytes("C:\\w\\x.zip").size(), 22u);
    EXPECT_THAT(NamesBehind(addB, true), ElementsAre("b.pf")); // behind the contents of an empty one
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

#include "archive/files/filenames.h"
#include "tests/archive/rawzip.h"
#include "tests/archive/zipfixture.h"

#include <algorithm>

using namespace std::string_literals;
using testing::ElementsAre;
namespace attribute = arc::attribute;

namespace
{
class ArchiveUnzipper : public ZipTest
{
protected:
    ArchiveUnzipper()
    {
        unzipper.SetParallel(parallel);
    }

    bool Open(const std::string& bytes)
    {
        files.Put("C:\\x.kaz", bytes);
        return unzipper.OpenZip("C:\\x.kaz");
    }

    // Whatever happens, nothing may come to stand outside the folder.
    bool Load(const std::string& bytes)
    {
        files.Clear("C:\\out");
        const std::size_t others = files.Tree("C:").size() + (files.Exists("C:\\x.kaz") ? 0 : 1);
        const bool loaded = Open(bytes) && unzipper.UnzipAll("C:\\out");
        unzipper.CloseZip();
        EXPECT_EQ(files.Tree("C:").size() - files.Tree("C:\\out").size(), others);
        return loaded;
    }

    std::vector<std::string> Tree()
    {
        return files.Tree("C:\\out");
    }

    CUnzipper unzipper{files};
};
INSTANTIATE_TEST_SUITE_P(Workers, ArchiveUnzipper, testing::Values(1U, 2U, 7U));
} // namespace

TEST_P(ArchiveUnzipper, ListsWhatItHolds)
{
    RawZip zip;
    zip.entries = {{"a.pf", "contents"},
                   {"sub/", ""},
                   {"Sub\\B.PF", std::string(5000, 'b'), 8},
                   {std::string(300, 'n'), "contents"}};
    zip.entries[0].comment = std::string(400, 'c');
    ASSERT_TRUE(Open(zip.Build()));
    ASSERT_TRUE(Open(zip.Build())); // closes the one before
    EXPECT_EQ(unzipper.FileCount(), 4u);
    std::vector<CUnzipper::EntryInfo> listed;
    for (bool more = unzipper.GoToFirstEntry(); more; more = unzipper.GoToNextEntry())
        ASSERT_TRUE(unzipper.CurrentEntryInfo(listed.emplace_back()));
    ASSERT_EQ(listed.size(), 4u);
    EXPECT_EQ(listed[0].name, "a.pf");
    EXPECT_EQ(listed[0].comment, std::string(255, 'c'));
    EXPECT_EQ(listed[0].time, (arc::LocalTime{2026, 10, 21, 4, 0, 0}));
    EXPECT_EQ(listed[0].attributes, 0x20u);
    EXPECT_TRUE(listed[1].folder && !listed[2].folder);
    EXPECT_EQ(listed[2].size, 5000u);
    EXPECT_EQ(listed[3].name, std::string(260, 'n'));
    EXPECT_FALSE(unzipper.GoToNextEntry());
    EXPECT_FALSE(unzipper.CurrentEntryInfo(listed[0]));

    EXPECT_TRUE(unzipper.LocateEntry("sub\\b.pf"));
    EXPECT_FALSE(unzipper.LocateEntry("none"));
    EXPECT_TRUE(unzipper.UnzipCurrentEntry("C:\\out"));
    EXPECT_THAT(Tree(), ElementsAre("C:\\OUT\\SUB\\B.PF"));
    EXPECT_TRUE(unzipper.LocateEntry(std::string(300, 'n')));
    EXPECT_FALSE(unzipper.UnzipCurrentEntry("C:\\out"));
    unzipper.CloseZip();
    EXPECT_FALSE(unzipper.GoToFirstEntry() || unzipper.UnzipCurrentEntry("C:\\out"));
}

TEST_P(ArchiveUnzipper, ExtractsBelowTheFolderWithTimes)
{
    RawZip zip;
    zip.entries = {{"d\\e\\a.pf", "contents"}, {"f\\", ""}, {"b.pf", "", 8}};
    unzipper.SetProgress(Noting());
    files.Put("C:\\out\\d\\e\\a.pf", "older and longer than the new one", attribute::ReadOnly);
    ASSERT_TRUE(Open(zip.Build()));
    unzipper.SetOutputFolder("C:\\out");
    ASSERT_TRUE(unzipper.UnzipAll());
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
    EXPECT_EQ(percents.back(), 100);
    EXPECT_TRUE(!IsSerial() || percents == std::vector<int>({34, 67, 100}));
    EXPECT_EQ(files.Bytes("C:\\out\\d\\e\\a.pf"), "contents");
    EXPECT_EQ(files.Find("C:\\out\\d\\e\\a.pf")->written, (arc::LocalTime{2026, 10, 21, 4, 0, 0}));
    EXPECT_TRUE(files.Find("C:\\out\\f")->Info().IsFolder());
    EXPECT_TRUE(files.Exists("C:\\out\\b.pf"));
    ASSERT_TRUE(unzipper.LocateEntry("d\\e\\a.pf"));
    EXPECT_TRUE(unzipper.UnzipCurrentEntry("C:\\flat", true));
    EXPECT_EQ(files.Bytes("C:\\flat\\a.pf"), "contents");
}

TEST_P(ArchiveUnzipper, EmptyZipsAndThoseOfOtherProgramsLoad)
{
    RawZip zip;
    zip.comment = "made elsewhere";
    EXPECT_TRUE(Load(zip.Build()));
    EXPECT_TRUE(Tree().empty());
    EXPECT_TRUE(Open(zip.Build()));
    EXPECT_FALSE(unzipper.GoToFirstEntry());
    char comment[5];
    EXPECT_TRUE(unzipper.GlobalComment(comment, sizeof comment));
    EXPECT_STREQ(comment, "made");
    EXPECT_FALSE(unzipper.GlobalComment(comment, 0));

    zip.entries = {{"a/b.pf", "text", 8}, {"c.pf", "contents"}};
    for (const bool has64BitEnd : {true, false})
    {
        zip.has64BitEnd = has64BitEnd;
        EXPECT_TRUE(Load(zip.Build()));
        EXPECT_EQ(Tree().size(), 2u);
    }
    zip.prefix = std::string(1000, 'x'); // behind a self-extracting program
    EXPECT_TRUE(Load(zip.Build()));
    zip.trailing = std::string(500, '\0'); // padded by a medium
    EXPECT_TRUE(Load(zip.Build()));
    EXPECT_THAT(Tree(), ElementsAre("C:\\OUT\\A\\B.PF", "C:\\OUT\\C.PF"));
}

TEST_P(ArchiveUnzipper, HostileAndDamagedZipsAreRefused)
{
    const std::string first(500, 'a');
    const auto with = [&](auto change) {
        RawZip zip;
        zip.entries = {{"a.pf", first, 8}, {"b.pf", "stored"}, {"c.pf", "last"}};
        change(zip);
        return zip.Build();
    };
    const auto renamed = [&](const std::string& name) {
        return with([&](RawZip& zip) { zip.entries[1].name = name; });
    };
    const std::string zip64Extra = "\x01\x00\x08\x00\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F"s;
    const struct
    {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"not a zip", std::string(5000, 'x')},
        {"parent", renamed("..\\b.pf")},
        {"NUL inside", renamed("b.pf\0.txt"s)},
        {"no name", renamed("")},
        {"long name", renamed(std::string(300, 'n'))},
        {"the same file twice", renamed("A.PF")},
        {"file and folder of one name", renamed("a.pf\\x")},
        {"encrypted", with([](RawZip& zip) { zip.entries[1].flags = 1; })},
        {"strongly encrypted", with([](RawZip& zip) { zip.entries[1].flags = 0x41; })},
        {"masked headers", with([](RawZip& zip) { zip.entries[1].flags = 0x2000; })},
        {"another method", with([](RawZip& zip) { zip.entries[1].method = 12; })},
        {"checksum wrong", with([](RawZip& zip) { zip.entries[0].crc = 1; })},
        {"checksum of stored wrong", with([](RawZip& zip) { zip.entries[1].crc = 1; })},
        {"size too large", with([](RawZip& zip) { zip.entries[0].size = 501; })},
        {"size too small", with([](RawZip& zip) { zip.entries[0].size = 499; })},
        {"stored longer than packed", with([](RawZip& zip) { zip.entries[1].size = 7; })},
        {"packed beyond the file", with([](RawZip& zip) { zip.entries[0].packedSize = 1 << 20; })},
        {"packed of 4 GiB", with([](RawZip& zip) { zip.entries[0].packedSize = 0xFFFFFFFE; })},
        {"overlap", with([](RawZip& zip) {
             zip.entries[2] = zip.entries[1];
             zip.entries[2].name = "b.pf";
             zip.entries[2].offset =
                 30 + 4 + static_cast<std::uint32_t>(Deflate(zip.entries[0].contents).size());
         })},
        {"64 bit sizes that are not there", with([](RawZip& zip) { zip.entries[1].size = 0xFFFFFFFF; })},
        {"64 bit size beyond everything", with([&](RawZip& zip) {
             zip.entries[0].size = 0xFFFFFFFF;
             zip.entries[0].extra = zip64Extra;
         })},
        {"extra field beyond its end", with([](RawZip& zip) { zip.entries[1].extra = "\x01\x00\x7F\x00"s; })},
        {"bomb of 1.75 GiB", with([](RawZip& zip) { zip.entries[0].size = 0x70000000; })},
        {"folder with contents", with([](RawZip& zip) { zip.entries[1].attributes = 0x10; })},
        {"too few counted", with([](RawZip& zip) { zip.count = 2; })},
        {"too many counted in 64 bits", with([](RawZip& zip) {
             zip.count = 4;
             zip.has64BitEnd = true;
         })},
        {"too many counted", with([](RawZip& zip) { zip.count = 4; })},
        {"signature in the comment", with([](RawZip& zip) { zip.comment = "PK\x05\x06"; })},
    };
    for (const auto& c : cases)
    {
        EXPECT_FALSE(Load(c.bytes)) << c.what;
        // Only whole entries may stand; with one thread only such as came before.
        for (const std::string& path : Tree())
        {
            EXPECT_EQ(files.Bytes(path), path.ends_with("\\A.PF")   ? first
                                         : path.ends_with("\\C.PF") ? "last"
                                                                    : "stored")
                << c.what;
            EXPECT_TRUE(!IsSerial() || path == "C:\\OUT\\A.PF") << c.what;
        }
    }
}

// A small zip without its first or last bytes, and with every single bit another: refused, or loaded with the
// very same contents.
TEST_P(ArchiveUnzipper, TruncatedOrFlippedItNeverLoadsOtherContents)
{
    RawZip zip;
    zip.entries = {{"a.pf", std::string(200, 'a') + "xyz", 8}, {"b.pf", "stored"}};
    zip.comment = "comment";
    const std::string whole = zip.Build();
    ASSERT_TRUE(Load(whole));
    for (std::size_t size = 0; size < whole.size(); ++size)
    {
        EXPECT_FALSE(Load(whole.substr(0, size))) << size;
        EXPECT_TRUE(Tree().empty());
        EXPECT_FALSE(size > 0 && Load(whole.substr(size))) << "without its first " << size;
    }
    int accepted = 0;
    for (std::size_t bit = 0; bit < whole.size() * 8; ++bit)
    {
        std::string changed = whole;
        changed[bit / 8] ^= static_cast<char>(1 << bit % 8);
        const bool isSound = Open(changed) && unzipper.CheckAll();
        const bool loaded = Load(changed);
        EXPECT_EQ(isSound, loaded) << bit;
        accepted += loaded ? 1 : 0;
        for (const RawEntry& entry : zip.entries)
            EXPECT_TRUE(!loaded || files.Bytes("C:\\out\\" + entry.name) == entry.contents) << bit;
    }
    // Of two entries: versions (6 bytes), times (8) and attributes (6, of which one bit makes a folder).
    // Further the comment and what the last bytes of packed contents have behind their end.
    EXPECT_LE(accepted, 2 * (20 * 8 - 1) + 7 * 8 + 2 * 8);
}

TEST_P(ArchiveUnzipper, NeedsRoomForAllAndNeverWritesThroughALink)
{
    files.AddDrive('D', 10, 512);
    RawZip zip;
    zip.entries = {{"link\\a.pf", "contents"}, {"b.pf", std::string(6000, 'b'), 8}};
    ASSERT_TRUE(Open(zip.Build()));
    EXPECT_FALSE(unzipper.UnzipAll("D:\\out"));
    EXPECT_TRUE(files.Tree("D:").empty());

    files.Put("C:\\out\\link\\a.pf", "x");
    files.SetAttributes("C:\\out\\link", attribute::Folder | attribute::Reparse);
    EXPECT_FALSE(unzipper.UnzipAll("C:\\out"));
    files.SetAttributes("C:\\out\\link", attribute::Folder);
    files.SetAttributes("C:\\out\\link\\a.pf", attribute::Archive | attribute::Reparse);
    EXPECT_FALSE(unzipper.UnzipAll("C:\\out"));
    EXPECT_EQ(files.Bytes("C:\\out\\link\\a.pf"), "x");
}

// Whatever call fails, once or from then on, on whichever thread.
TEST_P(ArchiveUnzipper, AnyFaultLeavesNoPartOfAFile)
{
    RawZip zip;
    zip.entries = {{"a.pf", std::string(300'000, 'a'), 8},
                   {"d\\b.pf", std::string(200'000, 'b')},
                   {"c.pf", std::string(200'000, 'c'), 8}};
    parallel.largest = 250'000; // so that the first is a stream
    files.Put("C:\\x.kaz", zip.Build());
    for (const bool checks : {false, true})
    {
        const auto run = [&](int call, int times) {
            files.FailFrom(0);
            files.Clear("C:\\out");
            files.RemoveFolder("C:\\out\\d");
            files.RemoveFolder("C:\\out");
            files.FailFrom(call, times);
            CUnzipper fresh(files);
            fresh.SetParallel(parallel);
            return fresh.OpenZip("C:\\x.kaz") && (checks ? fresh.CheckAll() : fresh.UnzipAll("C:\\out"));
        };
        ASSERT_TRUE(run(0, 0));
        const int calls = files.m_calls;
        ASSERT_GT(calls, 8);
        for (int call = 1; call <= calls; ++call)
        {
            for (const int times : {0, 1})
            {
                const bool done = run(call, times);
                // Closing what was only read may fail, by each thread last of all.
                const int harmless = static_cast<int>(GetParam()) + 2;
                EXPECT_TRUE(!done || !checks || times == 1 || files.m_calls < call + harmless) << call;
                EXPECT_TRUE(!done || checks || Tree().size() == 3) << call;
                for (const std::string& path : Tree())
                    EXPECT_TRUE(times == 0 || files.Bytes(path).size() >= 200'000) << call << path;
            }
        }
    }
}

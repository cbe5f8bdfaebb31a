// The plain pieces of saving and loading: the scratch folder, the disc bundle, diskettes.
#include "archive/res/archiveres.h"
#include "archive/volumes/diskettevolumes.h"
#include "archive/files/asidefile.h"
#include "archive/files/foldertree.h"
#include "archive/files/scratchfolder.h"
#include "archive/work/discbundle.h"
#include "archive/work/filecopies.h"
#include "archive/work/recordfile.h"
#include "archive/work/resultcodes.h"
#include "archive/work/volumesaving.h"
#include "tests/archive/memoryfilesystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

using testing::Return;

namespace
{
TEST(ScratchFolder, IsEmptiedAndBelongsToOneAtATime)
{
    MemoryFileSystem files;
    files.Put("C:\\Temp\\VELTMP\\left.over", "x", arc::attribute::ReadOnly);
    {
        arc::ScratchFolder scratch(files, "C:\\Temp");
        ASSERT_EQ(scratch.Take(), arc::ScratchState::Taken);
        EXPECT_FALSE(files.Exists("C:\\Temp\\VELTMP\\left.over"));
        arc::ScratchFolder second(files, "C:\\Temp");
        EXPECT_EQ(second.Take(), arc::ScratchState::Busy);
        files.Put(scratch.Path() + "\\A1.PF", "x");
    }
    EXPECT_TRUE(files.Tree("C:\\Temp").empty() && !files.Exists("C:\\Temp\\VELTMP"));
    files.Put("C:\\Temp\\VELTMP\\viewed", "x");
    const auto viewed = files.Open("C:\\Temp\\VELTMP\\viewed", arc::Access::ReadShared);
    EXPECT_EQ(arc::ScratchFolder(files, "C:\\Temp").Take(), arc::ScratchState::Failed);
    EXPECT_EQ(arc::ScratchFolder(files, "C:\\none").Take(), arc::ScratchState::Failed);
}

TEST(ScratchFolder, RemovesLinksAndNotWhatTheyLeadTo)
{
    constexpr std::uint32_t compressed = 0x800;
    MemoryFileSystem files;
    files.Put("C:\\Temp\\VELTMP\\deep\\link\\precious.txt", "x");
    files.SetAttributes("C:\\Temp\\VELTMP\\deep\\link", arc::attribute::Folder | arc::attribute::Reparse);
    files.Put("C:\\Temp\\VELTMP\\packed", "x", arc::attribute::ReadOnly | compressed);
    EXPECT_TRUE(arc::RemoveTree(files, "C:\\Temp\\VELTMP\\packed"));
    EXPECT_TRUE(arc::RemoveTree(files, "C:\\Temp\\VELTMP\\deep\\link"));
    files.FailFrom(1, 1); // whether it is there cannot be asked
    EXPECT_FALSE(arc::RemoveTree(files, "C:\\Temp\\none"));
    EXPECT_TRUE(arc::RemoveTree(files, "C:\\Temp\\none"));

    // The scratch folder itself may be a link.
    files.SetAttributes("C:\\Temp\\VELTMP", arc::attribute::Folder | arc::attribute::Reparse);
    arc::ScratchFolder scratch(files, "C:\\Temp");
    EXPECT_EQ(scratch.Take(), arc::ScratchState::Taken);
    EXPECT_EQ(files.Find("C:\\Temp\\VELTMP")->attributes, arc::attribute::Folder);
    EXPECT_EQ(files.Tree("C:\\Temp\\VELTMP"),
              std::vector<std::string>{"C:\\TEMP\\VELTMP\\DEEP\\LINK\\PRECIOUS.TXT"});
}

TEST(AsideFile, MovesOnlyWhatItKnowsToBeThereAndOnlyToFreeNames)
{
    MemoryFileSystem files;
    files.Put("C:\\P", "old");
    files.Put("C:\\P.previous", "older");
    const struct
    {
        int fault; // the call that fails
        bool moved;
        const char* now;
    } cases[] = {
        {1, false, "C:\\P"}, {2, true, "C:\\P.previous2"}, {3, true, "C:\\P.previous3"}, {4, false, "C:\\P"}};
    for (const auto& c : cases)
    {
        arc::AsideFile aside(files);
        files.FailFrom(c.fault, 1);
        EXPECT_EQ(aside.MoveAway("C:\\P"), c.moved) << c.fault;
        files.FailFrom(0);
        EXPECT_EQ(files.Bytes(c.now), "old") << c.fault;
        EXPECT_EQ(files.Bytes("C:\\P.previous"), "older");
        EXPECT_TRUE(aside.PutBack());
        EXPECT_EQ(files.Bytes("C:\\P"), "old");
    }
}

TEST(RecordFile, IsNewAndOneSavesAlone)
{
    MemoryFileSystem files;
    files.Put("C:\\Temp\\A1.ACV", "of a dead save", arc::attribute::Archive);
    {
        arc::RecordFile record(files), second(files);
        ASSERT_TRUE(record.Write("C:\\Temp", "A1", "mine"));
        EXPECT_EQ(files.Bytes(record.Path()), "mine");
        EXPECT_TRUE(files.Find(record.Path())->onMedium);
        EXPECT_FALSE(second.Write("C:\\Temp", "A1", "another practice's"));
        arc::RecordFile::ClearAbandoned(files, "C:\\Temp");
        second.Remove();
        EXPECT_EQ(files.Bytes("C:\\Temp\\A1.ACV"), "mine");
        EXPECT_TRUE(second.Write("C:\\Temp", "A2", "x"));
    }
    EXPECT_TRUE(files.Tree("C:\\Temp").empty());
    for (int fault = 1; fault < 12; ++fault)
    {
        arc::RecordFile record(files);
        files.FailFrom(fault);
        const bool written = record.Write("C:\\Temp", "A1", "mine");
        EXPECT_TRUE(!written || files.Bytes("C:\\Temp\\A1.ACV") == "mine") << fault;
        files.FailFrom(0);
    }
    files.Put("C:\\Temp\\A1.ACV", "left");
    files.Put("C:\\Temp\\A1.ACV.LCK", "");
    files.Put("C:\\Temp\\other.ACV", "nobody's");
    arc::RecordFile::ClearAbandoned(files, "C:\\Temp");
    EXPECT_EQ(files.Tree("C:\\Temp"), (std::vector<std::string>{"C:\\TEMP\\OTHER.ACV"}));
}

TEST(FileCopies, AreNewEqualAndAllOrNone)
{
    const std::vector<arc::PresentFile> set = {{"a", 200'000}, {"b", 3}, {"empty", 0}};
    MemoryFileSystem files;
    files.CreateFolder("C:\\to");
    for (const arc::PresentFile& file : set)
        files.Put("C:\\from\\" + file.name, std::string(file.size, 'x'));
    files.Find("C:\\from\\b")->written.year = 2001;
    bool failed = true;
    for (int fault = 1; failed; ++fault)
    {
        files.Clear("C:\\to");
        files.FailFrom(fault, 1);
        const bool copied = arc::CopyAllNew(files, "C:\\from", set, "C:\\to");
        failed = files.m_calls >= fault;
        EXPECT_TRUE(copied || failed);
        EXPECT_EQ(files.Tree("C:\\to").size(), copied ? 3u : 0u) << fault;
    }
    files.FailFrom(0);
    EXPECT_TRUE(arc::SameContents(files, "C:\\from\\a", "C:\\to\\a"));
    EXPECT_EQ(files.Find("C:\\to\\b")->written.year, 2001);
    EXPECT_TRUE(files.Find("C:\\to\\a")->onMedium && files.Find("C:\\to\\b")->onMedium);
    for (const std::string& other : {std::string(200'001, 'x'), std::string(199'999, 'x') + "y"})
    {
        files.Put("C:\\to\\a", other);
        EXPECT_FALSE(arc::SameContents(files, "C:\\from\\a", "C:\\to\\a"));
        EXPECT_FALSE(arc::SameContents(files, "C:\\to\\a", "C:\\from\\a"));
    }
    files.RemoveFile("C:\\to\\b");
    EXPECT_FALSE(arc::CopyAllNew(files, "C:\\from", {set[1], set[0]}, "C:\\to"));
    EXPECT_EQ(files.Bytes("C:\\to\\a").back(), 'y'); // what was there stays
    EXPECT_FALSE(files.Exists("C:\\to\\b"));

    files.m_bGarbles = true;
    EXPECT_FALSE(arc::CopyNew(files, "C:\\from\\a", "C:\\to\\b"));
    EXPECT_FALSE(files.Exists("C:\\to\\b"));
}

TEST(DiscBundle, CopiesWhatIsThereWholeAndKeepsTheTemplatesTail)
{
    MemoryFileSystem files;
    files.Put("C:\\prog\\VeltrixViewerSetup.exe", std::string(200'000, 'x'));
    files.Put("C:\\prog\\LaunchKazReadme.txt", "read me");
    files.CreateFolder("C:\\disc");
    const auto make = [&] { arc::MakeDiscBundle(files, "C:\\prog", "C:\\disc", "A1"); };
    for (int fault = 1; fault < 40; ++fault)
    {
        files.Clear("C:\\disc");
        files.FailFrom(fault, 1);
        make(); // without a template there is no autorun file
        for (const std::string& path : files.Tree("C:\\disc"))
            EXPECT_EQ(files.Bytes(path).size(), path == "C:\\DISC\\ZZZ.EXE" ? 200'000u : 7u) << fault << path;
    }
    files.FailFrom(0);
    files.Put("C:\\disc\\readme.txt", "an older and longer text");
    files.Put("C:\\prog\\autorunLaunchKaz.inf",
              "[autorun]\r\nOPEN=LaunchKaz.exe PATIENT.KAZ\r\nICON=disc.ico\r\n");
    make();
    EXPECT_EQ(files.Tree("C:\\disc").size(), 3u); // there is no launcher
    EXPECT_EQ("read me", files.Bytes("C:\\disc\\readme.txt"));
    EXPECT_EQ("[autorun]\r\nOPEN=LaunchKaz.exe A1.KAZT.KAZ\r\nICON=disc.ico\r\n",
              files.Bytes("C:\\disc\\autorun.inf"));
}

class Prompts : public arc::DiskettePrompts
{
public:
    MOCK_METHOD(bool, Insert, (int number, char drive), (override));
    MOCK_METHOD(bool, UseAnyway, (unsigned text), (override));
    MOCK_METHOD(bool, InsertRight, (int number, char drive), (override));
    MOCK_METHOD(void, WriteFault, (char drive), (override));
    MOCK_METHOD(void, Unreadable, (char drive), (override));
    MOCK_METHOD(void, Erasing, (), (override));
    MOCK_METHOD(void, Expect, (std::uint64_t volumes), (override));
    MOCK_METHOD(void, Writing, (int number), (override));
    MOCK_METHOD(void, FirstAgain, (), (override));
};

class DisketteVolumesTest : public testing::Test
{
protected:
    DisketteVolumesTest()
    {
        files.AddDrive('A', 40, 512); // 20 KB a disk
        files.CreateFolder("C:\\work");
        for (const char* name : {"S1.PF", "S100.I0A", "S100.V0A"})
        {
            files.Put(std::string("C:\\work\\") + name, std::string(9000, name[4]));
            set.push_back({name, 9000});
        }
    }

    // Takes the disk out and puts the one with this number in; a new one is blank.
    void Change(int number)
    {
        disks[inDrive].clear();
        for (const std::string& path : files.Tree("A:\\"))
            disks[inDrive][path] = files.Bytes(path);
        files.Clear("A:\\");
        inDrive = number;
        for (const auto& [path, bytes] : disks[number])
            files.Put(path, bytes);
    }

    void PutInWhatIsAskedFor()
    {
        const auto change = [this](int number, char) {
            Change(number);
            return true;
        };
        ON_CALL(prompts, Insert).WillByDefault(change);
        ON_CALL(prompts, InsertRight).WillByDefault(change);
        ON_CALL(prompts, FirstAgain).WillByDefault([this] { Change(1); });
    }

    arc::VolumeStatus Write(bool confirmed = false)
    {
        arc::DisketteVolumes volumes(files, prompts, 'A', patient, confirmed);
        return arc::WriteVolumeStream(files, "C:\\work", set, {}, volumes);
    }
    arc::VolumeStatus Verify()
    {
        arc::DisketteVolumes volumes(files, prompts, 'A', patient, false);
        return arc::VerifyVolumeStream(files, "C:\\work", set, volumes);
    }

    MemoryFileSystem files;
    testing::NiceMock<Prompts> prompts;
    std::vector<arc::PresentFile> set;
    const arc::HeaderLine patient{"Smith", "Jo", "S1"};
    std::map<int, std::map<std::string, std::string>> disks; // what they hold, by path
    int inDrive = 1;
};

TEST_F(DisketteVolumesTest, ASetOfTwoDisksIsWrittenAndReadBack)
{
    EXPECT_EQ(Write(), arc::VolumeStatus::Cancelled); // there is no second one
    PutInWhatIsAskedFor();
    arc::VolumeSave save{patient, "A:\\CURRENT.DAT", "C:\\work", {}, {}, "", {}, {}};
    for (const arc::PresentFile& file : set)
        save.listed.push_back(file.name);
    save.trial = [](const std::string& path) { return path == "C:\\work\\S1.PF"; };
    arc::DisketteSaving saving(files, save, prompts, false, {});
    EXPECT_CALL(prompts, Expect(2));
    EXPECT_CALL(prompts, Writing(1));
    EXPECT_CALL(prompts, Writing(2));
    EXPECT_CALL(prompts, FirstAgain);
    EXPECT_EQ(arc::Run(saving), arc::ResultDone);
    EXPECT_EQ(arc::WriteHeaderLine(patient), files.Bytes("A:\\CURRENT.DAT") + disks[1].begin()->second);
}

// That holds for the first disk as for the second, which agreeing to the first does not mean.
TEST_F(DisketteVolumesTest, AForeignDiskIsErasedOnlyWhenTheUserSaysSo)
{
    EXPECT_CALL(prompts, UseAnyway(IDS_ARC_DISK_NOT_PATIENT)).WillOnce(Return(false)).RetiresOnSaturation();
    files.Put("A:\\holiday.jpg", "picture", arc::attribute::ReadOnly);
    EXPECT_EQ(Write(), arc::VolumeStatus::Cancelled);
    EXPECT_TRUE(files.Exists("A:\\holiday.jpg"));

    PutInWhatIsAskedFor();
    files.Clear("A:\\"); // a blank first one is not asked about
    disks[2] = {{"A:\\holiday.jpg", "picture"}};
    EXPECT_CALL(prompts, UseAnyway(IDS_ARC_DISK_NOT_PATIENT)).WillOnce(Return(false)).RetiresOnSaturation();
    EXPECT_EQ(Write(true), arc::VolumeStatus::Cancelled);
    EXPECT_TRUE(files.Exists("A:\\holiday.jpg"));

    // Nor when the drive is found empty and the first is asked for.
    Change(3);
    files.FailFrom(1, 2);
    const auto putIn = [this](int, char) {
        Change(2);
        return true;
    };
    EXPECT_CALL(prompts, Insert).WillOnce(putIn).WillRepeatedly(testing::DoDefault());
    EXPECT_CALL(prompts, UseAnyway(IDS_ARC_DISK_NOT_PATIENT)).WillOnce(Return(false)).RetiresOnSaturation();
    arc::DisketteVolumes volumes(files, prompts, 'A', patient, true);
    std::unique_ptr<arc::File> volume;
    std::uint64_t capacity = 0;
    EXPECT_EQ(volumes.OpenForWriting(1, volume, capacity), arc::VolumeStatus::Cancelled);
    EXPECT_TRUE(files.Exists("A:\\holiday.jpg"));
    files.FailFrom(0);

    EXPECT_CALL(prompts, UseAnyway).WillRepeatedly(Return(true));
    EXPECT_EQ(Write(), arc::VolumeStatus::Done);
    EXPECT_FALSE(files.Exists("A:\\holiday.jpg"));
}

TEST_F(DisketteVolumesTest, AWrongDiskIsAskedAboutWhileReading)
{
    PutInWhatIsAskedFor();
    ASSERT_EQ(Write(), arc::VolumeStatus::Done);
    Change(1);
    const auto other = [this](int, char) { // none of the set
        Change(9);
        return true;
    };
    EXPECT_CALL(prompts, Insert(2, 'A')).WillOnce(other);
    EXPECT_CALL(prompts, InsertRight(2, 'A')).WillOnce(other).WillOnce([this](int number, char) {
        Change(number);
        return true;
    });
    EXPECT_EQ(Verify(), arc::VolumeStatus::Done);
    Change(9);
    EXPECT_CALL(prompts, Insert(1, 'A')).WillOnce(other);
    EXPECT_CALL(prompts, InsertRight(1, 'A')).WillOnce(other).WillOnce(Return(false));
    EXPECT_EQ(Verify(), arc::VolumeStatus::Cancelled);
}

// What cannot be read is told, asked for again, and gone on with where it was, whichever call fails.
TEST_F(DisketteVolumesTest, AFaultInsideAVolumeDoesNotEndTheReading)
{
    PutInWhatIsAskedFor();
    ASSERT_EQ(Write(), arc::VolumeStatus::Done);
    Change(0);
    const auto both = disks;
    int nTold = 0;
    ON_CALL(prompts, Unreadable).WillByDefault([&](char) { ++nTold; });
    for (int call = 1; call <= 60; ++call)
    {
        disks = both;
        Change(1);
        const int nBefore = nTold;
        files.FailFrom(call, 1);
        EXPECT_TRUE(Verify() == arc::VolumeStatus::Done || nTold == nBefore) << call;
        files.FailFrom(0);
        Change(0);
    }
    EXPECT_GT(nTold, 4); // at opening and reading two headers, and behind them
}

TEST_F(DisketteVolumesTest, ADiskThatCannotBeWrittenOrReadIsTold)
{
    files.Put("A:\\S1.001", "held");
    const auto held = files.Open("A:\\S1.001", arc::Access::ReadShared);
    EXPECT_CALL(prompts, UseAnyway).WillOnce(Return(true));
    EXPECT_CALL(prompts, WriteFault('A'));
    EXPECT_EQ(Write(), arc::VolumeStatus::WriteFailed);
    files.Find("A:\\S1.001")->alone = true;
    EXPECT_CALL(prompts, Unreadable('A'));
    EXPECT_EQ(Verify(), arc::VolumeStatus::Cancelled);
}
} // namespace

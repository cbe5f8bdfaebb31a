// The plain pieces of saving and loading: the scratch folder, the disc bundle, diskettes.
#include "archive/volumes/diskettevolumes.h"
#include "archive/work/discbundle.h"
#include "archive/files/scratchfolder.h"
#include "tests/archive/memoryfilesystem.h"

#include <gtest/gtest.h>

#include <deque>

namespace
{
TEST(ScratchFolder, IsEmptiedAndBelongsToOneAtATime)
{
    MemoryFileSystem files;
    ASSERT_TRUE(files.CreateFolder("C:\\Temp"));
    ASSERT_TRUE(files.CreateFolder("C:\\Temp\\VELTMP"));
    files.Put("C:\\Temp\\VELTMP\\left.over", "x", arc::attribute::ReadOnly);
    {
        arc::ScratchFolder scratch(files, "C:\\Temp");
        ASSERT_TRUE(scratch.Take());
        EXPECT_FALSE(files.Exists("C:\\Temp\\VELTMP\\left.over"));
        arc::ScratchFolder second(files, "C:\\Temp");
        EXPECT_FALSE(second.Take());
        files.Put(scratch.Path() + "\\A1.PF", "x");
    }
    EXPECT_TRUE(files.Tree("C:\\Temp").empty());
    EXPECT_FALSE(files.Query("C:\\Temp\\VELTMP"));
}

TEST(DiscBundle, CopiesWhatIsThereAndKeepsTheTemplatesTail)
{
    MemoryFileSystem files;
    for (const char* folder : {"C:\\prog", "C:\\disc"})
        ASSERT_TRUE(files.CreateFolder(folder));
    files.Put("C:\\prog\\VeltrixViewerSetup.exe", "viewer");
    files.Put("C:\\prog\\autorunLaunchKaz.inf", "[autorun]\r\nOPEN=LaunchKaz.exe PATIENT.KAZ\r\nICON=disc.ico\r\n");
    files.Put("C:\\prog\\LaunchKazReadme.txt", "read me");
    files.Put("C:\\disc\\readme.txt", "an older and longer text");
    arc::MakeDiscBundle(files, "C:\\prog", "C:\\disc", "A1");
    EXPECT_EQ("viewer", files.Bytes("C:\\disc\\zzz.exe"));
    EXPECT_FALSE(files.Exists("C:\\disc\\LaunchKaz.exe"));
    EXPECT_EQ("read me", files.Bytes("C:\\disc\\readme.txt"));
    EXPECT_EQ("[autorun]\r\nOPEN=LaunchKaz.exe A1.KAZT.KAZ\r\nICON=disc.ico\r\n", files.Bytes("C:\\disc\\autorun.inf"));
}

TEST(DiscBundle, NeitherMakesAnAutorunFileNorLeavesHalfACopy)
{
    MemoryFileSystem reference;
    for (int fault = 1; fault < 40; ++fault)
    {
        MemoryFileSystem files;
        ASSERT_TRUE(files.CreateFolder("C:\\prog"));
        ASSERT_TRUE(files.CreateFolder("C:\\disc"));
        files.Put("C:\\prog\\LaunchKaz.exe", std::string(200000, 'x'));
        files.FailFrom(fault, 1);
        arc::MakeDiscBundle(files, "C:\\prog", "C:\\disc", "A1");
        EXPECT_FALSE(files.Exists("C:\\disc\\autorun.inf")) << fault;
        if (files.Exists("C:\\disc\\LaunchKaz.exe"))
        {
            EXPECT_EQ(200000u, files.Bytes("C:\\disc\\LaunchKaz.exe").size()) << fault;
        }
    }
}

// Answers prompts from a list; an insertion changes what is in the drive.
class ScriptedPrompts : public arc::DiskettePrompts
{
public:
    std::function<bool(int)> insert = [](int) { return false; };
    std::deque<bool> answers;
    std::vector<unsigned> questions;
    int faults = 0;

    bool Insert(int number, char) override
    {
        return insert(number);
    }
    bool UseAnyway(unsigned text) override
    {
        questions.push_back(text);
        const bool answer = !answers.empty() && answers.front();
        if (!answers.empty())
            answers.pop_front();
        return answer;
    }
    bool InsertRight(int number, char) override
    {
        return insert(number);
    }
    void WriteFault(char) override
    {
        ++faults;
    }
    void Unreadable(char) override
    {
        ++faults;
    }
    void Erasing() override
    {
    }
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
        std::vector<std::pair<std::string, std::string>> out;
        for (const std::string& path : files.Tree("A:\\"))
        {
            out.emplace_back(path, files.Bytes(path));
            files.RemoveFile(path);
        }
        disks[inDrive] = std::move(out);
        inDrive = number;
        for (const auto& [path, bytes] : disks[number])
            files.Put(path, bytes);
    }

    MemoryFileSystem files;
    ScriptedPrompts prompts;
    std::vector<arc::PresentFile> set;
    const arc::HeaderLine patient{"Smith", "Jo", "S1"};
    std::map<int, std::vector<std::pair<std::string, std::string>>> disks;
    int inDrive = 1;
};

TEST_F(DisketteVolumesTest, ASetOfTwoDisksIsWrittenAndReadBack)
{
    prompts.insert = [this](int number) {
        Change(number);
        return true;
    };
    arc::DisketteVolumes volumes(files, prompts, 'A', patient, false);
    ASSERT_EQ(arc::VolumeStatus::Done, arc::WriteVolumeStream(files, "C:\\work", set, {}, volumes));
    EXPECT_EQ(2, volumes.VolumesWritten());
    EXPECT_EQ(arc::VolumeStatus::Done, arc::VerifyVolumeStream(files, "C:\\work", set, volumes));
    EXPECT_EQ(arc::WriteHeaderLine(patient), files.Bytes("A:\\CURRENT.DAT") + disks[1].front().second);
}

TEST_F(DisketteVolumesTest, AForeignDiskIsErasedOnlyWhenTheUserSaysSo)
{
    files.Put("A:\\holiday.jpg", "picture", arc::attribute::ReadOnly);
    prompts.answers = {false};
    {
        arc::DisketteVolumes volumes(files, prompts, 'A', patient, false);
        EXPECT_EQ(arc::VolumeStatus::Cancelled, arc::WriteVolumeStream(files, "C:\\work", set, {}, volumes));
    }
    EXPECT_TRUE(files.Exists("A:\\holiday.jpg"));
    EXPECT_EQ(1u, prompts.questions.size());

    set.resize(1);
    prompts.answers = {true};
    arc::DisketteVolumes volumes(files, prompts, 'A', patient, false);
    EXPECT_EQ(arc::VolumeStatus::Done, arc::WriteVolumeStream(files, "C:\\work", set, {}, volumes));
    EXPECT_FALSE(files.Exists("A:\\holiday.jpg"));
}

TEST_F(DisketteVolumesTest, RefusingTheNextDiskEndsTheSave)
{
    arc::DisketteVolumes volumes(files, prompts, 'A', patient, false);
    EXPECT_EQ(arc::VolumeStatus::Cancelled, arc::WriteVolumeStream(files, "C:\\work", set, {}, volumes));
    EXPECT_EQ(1, volumes.VolumesWritten());
}
} // namespace

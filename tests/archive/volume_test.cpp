#include "archive/files/filenames.h"
#include "archive/volumes/volumestream.h"
#include "tests/archive/memoryfilesystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

using arc::VolumeStatus;
using testing::ElementsAre;

namespace
{
const arc::LocalTime Saved{2026, 10, 21, 4, 5, 59};

// The bytes of the golden files' image.
std::string ImageBytes(std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 7);
    return bytes;
}

std::string Golden(const std::string& name)
{
    std::ifstream file(std::string(TEST_DATA_FOLDER) + "/" + name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

// Volumes of a capacity that the test chooses.
class Volumes : public arc::FolderVolumes
{
public:
    Volumes(arc::FileSystem& files, const std::string& id, std::uint64_t capacity)
        : FolderVolumes(files, "C:\\arc", id), m_capacity(capacity)
    {
    }
    std::uint64_t ExpectedCapacity() override
    {
        return m_bTellsCapacity ? m_capacity : 0;
    }
    VolumeStatus OpenForWriting(int number, std::unique_ptr<arc::File>& volume,
                                std::uint64_t& capacity) override
    {
        const VolumeStatus status = FolderVolumes::OpenForWriting(number, volume, capacity);
        capacity = m_capacity;
        return status;
    }

    bool m_bTellsCapacity = true; // before a volume is opened

private:
    std::uint64_t m_capacity;
};

arc::TransferBuffer SmallBuffer(std::size_t largest)
{
    return arc::TransferBuffer::Allocate([=](std::size_t bytes) {
        return bytes > largest ? nullptr : std::unique_ptr<unsigned char[]>(new unsigned char[bytes]);
    });
}

class ArchiveVolumes : public testing::Test
{
protected:
    ArchiveVolumes()
    {
        files.CreateFolder("C:\\w");
        files.CreateFolder("C:\\arc");
        files.CreateFolder("C:\\out");
    }

    void PutSet(const std::vector<std::pair<std::string, std::string>>& contents)
    {
        for (const auto& [name, bytes] : contents)
        {
            files.Put("C:\\w\\" + name, bytes);
            set.push_back({name, bytes.size()});
        }
    }

    void PutShort()
    {
        PutSet({{"AB.PF", "Smith\x01Jo\x01"
                          "AB\x01\nrest"},
                {"AB00.I00", ImageBytes(300)},
                {"AB00.M", ""}});
    }

    VolumeStatus Write(const std::string& id, std::uint64_t capacity, std::size_t buffer = 32767)
    {
        files.Clear("C:\\arc");
        percents.clear();
        Volumes volumes(files, id, capacity);
        const auto progress = [this](int percent) {
            percents.push_back(percent);
            return true;
        };
        return arc::WriteVolumeStream(files, "C:\\w", set, Saved, volumes, progress, SmallBuffer(buffer));
    }
    VolumeStatus Verify()
    {
        arc::FolderVolumes volumes(files, "C:\\arc", "AB");
        return arc::VerifyVolumeStream(files, "C:\\w", set, volumes);
    }

    VolumeStatus Read(const std::string& id, std::size_t buffer = 32767)
    {
        arc::FolderVolumes volumes(files, "C:\\arc", id);
        read.clear();
        return arc::ReadVolumeStream(files, "C:\\out", volumes, read, {}, SmallBuffer(buffer));
    }

    void ExpectAllRead()
    {
        ASSERT_EQ(read.size(), set.size());
        for (const auto& file : set)
            EXPECT_EQ(files.Bytes("C:\\out\\" + file.name), files.Bytes("C:\\w\\" + file.name)) << file.name;
    }

    MemoryFileSystem files;
    std::vector<arc::PresentFile> set;
    std::vector<arc::PresentFile> read;
    std::vector<int> percents; // of the last write
};
} // namespace

TEST_F(ArchiveVolumes, BothFormsAreByteExact)
{
    PutShort();
    ASSERT_EQ(Write("AB", 1 << 20), VolumeStatus::Done);
    EXPECT_THAT(files.Tree("C:\\arc"), ElementsAre("C:\\ARC\\AB.001"));
    EXPECT_EQ(files.Bytes("C:\\arc\\AB.001"), Golden("AB.001"));

    set.clear();
    PutSet({{"LONG_ID.PF", "Smith\x01Jo\x01LONG_ID\x01\n"},
            {"LONG_ID00.I00", ImageBytes(300)},
            {"LONG_ID00.V00", "V"}});
    ASSERT_EQ(Write("LONG_ID", 200, 64), VolumeStatus::Done);
    for (const char* name : {"LONG_ID.001", "LONG_ID.002", "LONG_ID.003"})
        EXPECT_EQ(files.Bytes(std::string("C:\\arc\\") + name), Golden(name)) << name;
    EXPECT_EQ(files.Tree("C:\\arc").size(), 3u);
    ASSERT_EQ(Read("LONG_ID"), VolumeStatus::Done);
    ExpectAllRead();
}

// Every capacity, with buffers down to a byte: records and files straddle volumes and buffers at every place.
TEST_F(ArchiveVolumes, EveryCutReadsBack)
{
    PutShort();
    for (std::uint64_t capacity = 45; capacity < 430; ++capacity)
    {
        const std::size_t buffer = capacity % 3 == 0 ? 1 : capacity;
        ASSERT_EQ(Write("AB", capacity, buffer), VolumeStatus::Done) << capacity;
        for (const std::string& volume : files.Tree("C:\\arc"))
            ASSERT_LE(files.Bytes(volume).size(), capacity);
        ASSERT_EQ(Read("AB", buffer), VolumeStatus::Done) << capacity;
        ExpectAllRead();
        ASSERT_EQ(Verify(), VolumeStatus::Done);
        // Headers count: with many volumes the bar is full before the stream is.
        ASSERT_TRUE(std::is_sorted(percents.begin(), percents.end()));
        ASSERT_EQ(percents.back(), 100);
        ASSERT_TRUE(capacity > 60 || std::count(percents.begin(), percents.end(), 100) > 1);
    }
}

TEST_F(ArchiveVolumes, BufferHalvesUntilMemoryIsHad)
{
    EXPECT_EQ(SmallBuffer(32767).size, 32767u);
    EXPECT_EQ(SmallBuffer(5000).size, 4095u);
    PutShort();
    EXPECT_EQ(Write("AB", 1000, 0), VolumeStatus::OutOfMemory);
}

TEST_F(ArchiveVolumes, LimitsAreRefusedBeforeAnythingIsWritten)
{
    constexpr std::uint64_t full = 0xFFFFFFFF;
    const std::tuple<VolumeStatus, std::vector<arc::PresentFile>, std::uint64_t> cases[] = {
        {VolumeStatus::TooManyFiles, {}, 0},
        {VolumeStatus::TooManyFiles, std::vector<arc::PresentFile>(65536, {"AB.PF", 0}), 0},
        {VolumeStatus::Done, std::vector<arc::PresentFile>(65535, {"AB.PF", 0}), 0},
        {VolumeStatus::TooManyBytes, {{"AB.PF", full + 1}}, 0},
        {VolumeStatus::Done, {{"AB.PF", full - 16}}, 0},
        {VolumeStatus::TooManyBytes, {{"AB.PF", full - 15}}, 0},
        {VolumeStatus::NameTooLong, {{"SIXSIX.PF", 0}, {"AB12345678.I4", 0}}, 0},
        {VolumeStatus::Done, {{"AB.PF", 0}, {"AB1234567.I4", 0}}, 0},
        {VolumeStatus::NameTooLong, {{"LONG_ID.PF", 0}, {std::string(32, 'x'), 0}}, 0},
        {VolumeStatus::Done, {{"LONG_ID.PF", 0}, {std::string(31, 'x'), 0}}, 0},
        {VolumeStatus::NoRoom, {{"AB.PF", 1000}}, 44},
        // 255 volumes of 100 bytes carry 255 * 72 - 16 bytes of stream.
        {VolumeStatus::Done, {{"AB.PF", 255 * 72 - 16 - 16}}, 100},
        {VolumeStatus::TooManyVolumes, {{"AB.PF", 255 * 72 - 16 - 15}}, 100},
    };
    for (const auto& [status, list, capacity] : cases)
        EXPECT_EQ(arc::CheckStreamLimits(list, capacity), status) << list.size() << " " << capacity;

    PutShort();
    set.push_back({"AB00.V00", full});
    EXPECT_EQ(Write("AB", 0), VolumeStatus::TooManyBytes);
    EXPECT_TRUE(files.Tree("C:\\arc").empty());
}

TEST_F(ArchiveVolumes, FillsTheLastOf255Volumes)
{
    PutSet({{"AB.PF", std::string(255 * 72 - 16 - 16, 'x')}});
    ASSERT_EQ(Write("AB", 100), VolumeStatus::Done);
    EXPECT_EQ(files.Tree("C:\\arc").size(), 255u);
    EXPECT_TRUE(files.Exists("C:\\arc\\AB.012") && files.Exists("C:\\arc\\AB.255"));
    ASSERT_EQ(Read("AB"), VolumeStatus::Done);
    ExpectAllRead();

    files.Put("C:\\w\\AB.PF", std::string(++set[0].size, 'x'));
    files.Clear("C:\\arc");
    Volumes volumes(files, "AB", 100);
    volumes.m_bTellsCapacity = false;
    EXPECT_EQ(arc::WriteVolumeStream(files, "C:\\w", set, Saved, volumes), VolumeStatus::TooManyVolumes);
}

// A fault at every call in turn: never success, and whatever is left is not read as a whole patient.
TEST_F(ArchiveVolumes, NoFaultGoesUnnoticed)
{
    PutShort();
    const std::function<VolumeStatus()> write = [&] { return Write("AB", 150); },
                                        readBack = [&] { return Read("AB"); };
    for (const auto& step : {write, readBack})
    {
        files.FailFrom(0);
        ASSERT_EQ(step(), VolumeStatus::Done);
        const int calls = files.m_calls;
        ASSERT_GT(calls, 10);
        for (int call = 1; call <= calls; ++call)
        {
            files.FailFrom(call);
            // Closing a file that was only read loses nothing.
            EXPECT_TRUE(step() != VolumeStatus::Done || read.size() == set.size()) << call;
        }
        files.FailFrom(0);
        ASSERT_EQ(write(), VolumeStatus::Done);
    }
}

TEST_F(ArchiveVolumes, WritesOverNothingAndTakesAwayOnlyItsOwn)
{
    PutShort();
    const auto whole = set;
    set[1].size = 299;
    EXPECT_EQ(Write("AB", 1000), VolumeStatus::FileChanged);
    set[1] = {"AB00.I01", 1};
    EXPECT_EQ(Write("AB", 1000), VolumeStatus::OpenFailed);
    set = whole;
    files.Clear("C:\\arc");
    Volumes volumes(files, "AB", 150);
    files.Put("C:\\arc\\AB.002", "mine");
    EXPECT_EQ(arc::WriteVolumeStream(files, "C:\\w", set, Saved, volumes), VolumeStatus::OpenFailed);
    EXPECT_TRUE(files.Find("C:\\arc\\AB.001")->onMedium);
    volumes.RemoveWritten();
    EXPECT_EQ(files.Tree("C:\\arc"), std::vector<std::string>{"C:\\ARC\\AB.002"});
    EXPECT_EQ(files.Bytes("C:\\arc\\AB.002"), "mine");
}

TEST_F(ArchiveVolumes, ShortOrAnothersVolumesAreRefused)
{
    PutShort();
    ASSERT_EQ(Write("AB", 250), VolumeStatus::Done);
    const std::string paths[] = {"C:\\arc\\AB.001", "C:\\arc\\AB.002"};
    const std::string wholes[] = {files.Bytes(paths[0]), files.Bytes(paths[1])};
    for (const int number : {0, 1})
    {
        for (std::size_t size = 0; size < wholes[number].size(); ++size)
        {
            files.Put(paths[number], wholes[number].substr(0, size));
            EXPECT_NE(Read("AB"), VolumeStatus::Done) << number << " " << size;
            EXPECT_LT(read.size(), set.size());
            // Nothing stands there that was not read whole.
            EXPECT_EQ(files.Tree("C:\\out").size(), read.size()) << number << " " << size;
            files.Clear("C:\\out");
        }
        files.Put(paths[number], wholes[1 - number]);
        EXPECT_EQ(Read("AB"), VolumeStatus::OutOfOrder);
        files.Put(paths[number], wholes[number]);
    }
    for (std::size_t byte = 0; byte < 9; ++byte) // of another save
    {
        std::string other = wholes[1];
        other[byte] ^= 1;
        files.Put(paths[1], other);
        EXPECT_NE(Read("AB"), VolumeStatus::Done) << byte;
    }
}

TEST_F(ArchiveVolumes, HostileRecordsAreRefused)
{
    const auto volume = [](std::vector<arc::DirectoryRecord> records, std::string contents,
                           std::uint32_t total, std::size_t count) {
        const auto header = arc::EncodeHeader(arc::MakeVolumeHeader(Saved, 1, count, arc::RecordForm::Long));
        const auto block = arc::EncodeTotal(total);
        std::string bytes(header.begin(), header.end());
        bytes.append(block.begin(), block.end());
        for (const auto& record : records)
            bytes += arc::EncodeRecord(record, arc::RecordForm::Long);
        return bytes + contents;
    };
    const std::tuple<const char*, std::string, VolumeStatus> cases[] = {
        {"empty name", volume({{0, ""}}, "", 36, 1), VolumeStatus::Corrupt},
        {"parent", volume({{1, "..\\x.pf"}}, "x", 37, 1), VolumeStatus::UnsafeName},
        {"device", volume({{1, "AUX.PF"}}, "x", 37, 1), VolumeStatus::UnsafeName},
        {"same file", volume({{0, "x.pf"}, {0, "X.PF"}}, "", 72, 2), VolumeStatus::DuplicateName},
        {"beyond the stream", volume({{2, "x.pf"}}, "x", 37, 1), VolumeStatus::Corrupt},
        {"4 GiB", volume({{0xFFFFFFFF, "x.pf"}}, "x", 37, 1), VolumeStatus::Corrupt},
        {"total too small", volume({{1, "x.pf"}}, "x", 35, 1), VolumeStatus::Corrupt},
        {"total too large", volume({{1, "x.pf"}}, "xx", 38, 1), VolumeStatus::Corrupt},
        {"total of 4 GiB", volume({{1, "x.pf"}}, "x", 0xFFFFFFFF, 1), VolumeStatus::NoRoom},
        {"no files", volume({}, "", 0, 0), VolumeStatus::Corrupt},
        {"count too large", volume({{1, "x.pf"}}, "x", 37, 2), VolumeStatus::Corrupt},
        {"not a volume", std::string(100, 'x'), VolumeStatus::Corrupt},
    };
    for (const auto& [what, bytes, status] : cases)
    {
        files.Put("C:\\arc\\P.001", bytes);
        EXPECT_EQ(Read("P"), status) << what;
        for (const auto& file : read)
            files.RemoveFile("C:\\out\\" + file.name);
        EXPECT_TRUE(files.Tree("C:\\out").empty()) << what;
    }
}

TEST_F(ArchiveVolumes, VerificationSeesEveryChangedByte)
{
    PutShort();
    ASSERT_EQ(Write("AB", 1000), VolumeStatus::Done);
    const std::string whole = files.Bytes("C:\\arc\\AB.001");
    int unnoticed = 0;
    for (std::size_t at = 44 + 16; at < whole.size(); ++at)
    {
        std::string changed = whole;
        changed[at] ^= 0x40;
        files.Put("C:\\arc\\AB.001", changed);
        unnoticed += Verify() == VolumeStatus::Done ? 1 : 0;
    }
    EXPECT_LE(unnoticed, 3 + 5); // what pads the second and the third name
}

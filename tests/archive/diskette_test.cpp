#include "archive/res/archiveres.h"
#include "archive/volumes/diskette.h"
#include "archive/volumes/volumeformat.h"
#include "tests/archive/memoryfilesystem.h"

#include <gtest/gtest.h>

namespace attribute = arc::attribute;

namespace
{
const arc::HeaderLine Patient{"Smith", "Jo", "S1"};

std::string VolumeBytes(int number)
{
    const auto header = arc::EncodeHeader(arc::MakeVolumeHeader({}, number, 1, arc::RecordForm::Short));
    return {header.begin(), header.end()};
}

class ArchiveDiskette : public testing::Test
{
protected:
    ArchiveDiskette()
    {
        files.AddDrive('A', 100, 512);
    }
    unsigned Question(int number)
    {
        return arc::DisketteQuestion(arc::CheckDiskette(files, 'A', Patient, number));
    }
    MemoryFileSystem files;
};
} // namespace

TEST_F(ArchiveDiskette, AnEmptyDriveHoldsNoDisk)
{
    for (const char drive : {'A', 'B'})
        EXPECT_EQ(arc::CheckDiskette(files, drive, Patient, 1), arc::DisketteCheck::NoDisk);
    EXPECT_EQ(Question(1), 0u);
    EXPECT_TRUE(arc::IsBlankDisk(files, 'A'));
    EXPECT_FALSE(arc::IsBlankDisk(files, 'B'));
}

TEST_F(ArchiveDiskette, FirstDiskIsKnownByItsLabel)
{
    files.Put("A:\\other.txt", "x");
    EXPECT_EQ(Question(1), IDS_ARC_DISK_NOT_PATIENT);
    files.Put("A:\\S1.002", VolumeBytes(2));
    EXPECT_EQ(Question(1), IDS_ARC_DISK_OUT_OF_ORDER); // no label, but a volume of the patient
    files.Put("A:\\CURRENT.DAT", "no header");
    EXPECT_EQ(Question(1), IDS_ARC_DISK_OUT_OF_ORDER);
    for (const arc::HeaderLine& other :
         {arc::HeaderLine{"Smyth", "Jo", "S1"}, arc::HeaderLine{"Smith", "jo", "S1"},
          arc::HeaderLine{"Smith", "Jo", "S2"}})
    {
        files.Put("A:\\CURRENT.DAT", arc::WriteHeaderLine(other));
        EXPECT_EQ(Question(1), IDS_ARC_DISK_OTHER_PATIENT);
    }
    files.Put("A:\\CURRENT.DAT", arc::WriteHeaderLine(Patient));
    EXPECT_EQ(Question(1), IDS_ARC_DISK_OUT_OF_ORDER);
    files.Put("A:\\S1.002", VolumeBytes(1));
    EXPECT_EQ(Question(1), 0u);
}

TEST_F(ArchiveDiskette, LaterDisksAreKnownByTheirVolume)
{
    files.Put("A:\\CURRENT.DAT", "anything");
    EXPECT_EQ(Question(2), IDS_ARC_DISK_NOT_PATIENT);
    files.Put("A:\\S1.002", VolumeBytes(2).substr(0, 27));
    EXPECT_EQ(Question(2), IDS_ARC_DISK_NOT_PATIENT);
    files.Put("A:\\S1.002", VolumeBytes(2));
    EXPECT_EQ(Question(2), 0u);
    EXPECT_EQ(Question(3), IDS_ARC_DISK_OUT_OF_ORDER);
}

TEST_F(ArchiveDiskette, ErasesWhatItMayUpToTheFirstFailureAndSkipsLinksAndOtherAttributes)
{
    files.Put("A:\\f\\g\\deep.txt", "x", attribute::ReadOnly | attribute::Hidden | attribute::System);
    files.Put("A:\\none.txt", "x", attribute::Normal);
    files.Put("A:\\plain.txt", "x");
    EXPECT_TRUE(arc::EraseDrive(files, 'A'));
    EXPECT_TRUE(files.Tree("A:\\").empty() && !files.Exists("A:\\f"));

    constexpr std::uint32_t compressed = 0x800;
    files.Put("A:\\kept.txt", "x", attribute::Archive | compressed);
    files.Put("A:\\link\\precious.txt", "x");
    files.SetAttributes("A:\\link", attribute::Folder | attribute::Reparse);
    files.Put("A:\\z.txt", "x");
    EXPECT_FALSE(arc::EraseDrive(files, 'A'));
    EXPECT_EQ(files.Tree("A:\\"), (std::vector<std::string>{"A:\\KEPT.TXT", "A:\\LINK\\PRECIOUS.TXT"}));

    for (const char* path : {"A:\\a.txt", "A:\\b.txt", "A:\\c.txt"})
        files.Put(path, "x");
    const auto held = files.Open("A:\\b.txt", arc::Access::ReadShared);
    EXPECT_FALSE(arc::EraseDrive(files, 'A'));
    EXPECT_TRUE(!files.Exists("A:\\a.txt") && files.Exists("A:\\c.txt"));
}

TEST_F(ArchiveDiskette, CountsVolumesInClustersTwice)
{
    const arc::HeaderLine label{"Smith", "Jo", "S1"}; // 14 bytes: a cluster
    // 10 clusters of stream and 1 of label in volumes of 11; their header spills the stream into another
    // cluster.
    EXPECT_EQ(arc::EstimateVolumes(10 * 512 - 28, label, 512, 11), 1u);
    EXPECT_EQ(arc::EstimateVolumes(10 * 512 - 27, label, 512, 11), 2u);
    EXPECT_EQ(arc::EstimateVolumes(0, label, 512, 11), 1u);
    // A label of more than a cluster: 4 + 5 + 3 + 5 = 17 bytes.
    EXPECT_EQ(arc::EstimateVolumes(16, {"1234", "12345", "123"}, 16, 3), 2u);
    EXPECT_EQ(arc::EstimateVolumes(100, label, 0, 11), 0u);
    EXPECT_EQ(arc::EstimateVolumes(100, label, 512, 0), 0u);
}

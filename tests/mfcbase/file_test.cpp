#include "tests/mfcbase/thrown.h"
#include "tests/support/temporarypractice.h"

#include <afxdisp.h>

#include <gtest/gtest.h>

using mfctest::FileError;
using mfctest::Thrown;

namespace
{
class FileTest : public ::testing::Test
{
protected:
    CString Path(const char* name) const { return m_folder.Path(name).c_str(); }

    veltest::TemporaryPractice m_folder;
};
} // namespace

TEST_F(FileTest, OpensAndSharesByItsModes)
{
    m_folder.WriteFile("a.txt", "old");
    CFile owner(Path("a.txt"), CFile::modeRead | CFile::shareDenyWrite);
    EXPECT_EQ(owner.GetLength(), 3u);
    EXPECT_EQ(Thrown([&] { CFile(Path("a.txt"), CFile::modeRead | CFile::shareDenyNone); }), "");
    EXPECT_EQ(
        Thrown([&] { CFile(Path("a.txt"), CFile::modeWrite | CFile::modeCreate | CFile::shareDenyNone); }),
        FileError(CFileException::sharingViolation));
    owner.Abort();
    const CFile truncating(Path("a.txt"), CFile::modeWrite | CFile::modeCreate);
    EXPECT_EQ(truncating.GetLength(), 0u);
    EXPECT_EQ(Thrown([&] { CFile(Path("a.txt"), CFile::modeRead | CFile::shareDenyNone); }),
              FileError(CFileException::sharingViolation));
}

TEST_F(FileTest, SaysWhyAFileDoesNotOpen)
{
    EXPECT_EQ(Thrown([&] { CFile(Path("no\\where.txt"), CFile::modeRead); }),
              FileError(CFileException::badPath));
    EXPECT_EQ(Thrown([&] { CFile(Path("working"), CFile::modeWrite); }), FileError(CFileException::accessDenied));

    CFileException error;
    CFile file;
    EXPECT_FALSE(file.Open(Path("none.txt"), CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, CFileException::fileNotFound);
    EXPECT_EQ(error.m_lOsError, ERROR_FILE_NOT_FOUND);
    EXPECT_STREQ(error.m_strFileName, Path("none.txt"));
}

TEST_F(FileTest, AFullDiskIsAnErrorHoweverItIsWritten)
{
    const char* const full = "Z:\\dev\\full"; // takes nothing, as a full disk
    CFile file;
    if (!file.Open(full, CFile::modeWrite | CFile::shareDenyNone))
    {
        GTEST_SKIP() << "no full device on this machine";
    }
    const std::string diskFull = FileError(CFileException::diskFull);
    EXPECT_EQ(Thrown([&] { file.Write("x", 1); }), diskFull);

    CArchive archive(&file, CArchive::store);
    archive << 1;
    EXPECT_EQ(Thrown([&] { archive.Close(); }), diskFull);
}

TEST_F(FileTest, TellsStatus)
{
    m_folder.WriteFile("s.txt", "12345");
    CFileStatus status;
    ASSERT_TRUE(CFile::GetStatus(Path("s.txt"), status));
    EXPECT_EQ(status.m_size, 5u);
    SYSTEMTIME local = {};
    ASSERT_TRUE(status.m_mtime.GetAsSystemTime(local));
    EXPECT_LT(std::abs(COleDateTime::GetCurrentTime().m_dt - COleDateTime(local).m_dt), 60 / 86400.0);
    EXPECT_FALSE(CFile::GetStatus(Path("*.txt"), status));
}

TEST(Exceptions, TellTheUserWhatHappenedToWhichFile)
{
    char text[256];
    const CFileException full(CFileException::diskFull, ERROR_DISK_FULL, "d:\\x.kaz");
    ASSERT_TRUE(full.GetErrorMessage(text, sizeof(text)));
    EXPECT_STREQ(text, "The disk is full while accessing d:\\x.kaz.");
    const CArchiveException cut(CArchiveException::endOfFile);
    ASSERT_TRUE(cut.GetErrorMessage(text, 12));
    EXPECT_STREQ(text, "an unnamed ");
    ASSERT_TRUE(CMemoryException().GetErrorMessage(text, sizeof(text)));
    EXPECT_STREQ(text, "There is not enough memory.");
    EXPECT_FALSE(CUserException().GetErrorMessage(text, sizeof(text)));
    EXPECT_STREQ(text, "");
}

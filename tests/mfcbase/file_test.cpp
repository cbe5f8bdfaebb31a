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

TEST_F(FileTest, OpensByItsModes)
{
    m_folder.WriteFile("a.txt", "old");
    CFile file(Path("a.txt"), CFile::modeReadWrite | CFile::modeCreate | CFile::modeNoTruncate);
    EXPECT_EQ(file.GetLength(), 3u);
    EXPECT_STREQ(file.GetFileName(), "a.txt");
    EXPECT_STREQ(file.GetFileTitle(), "a");
    file.Close();
    CFile(Path("a.txt"), CFile::modeWrite | CFile::modeCreate).Close();
    EXPECT_EQ(m_folder.ReadFile("a.txt"), "");
}

TEST_F(FileTest, SharesByItsModes)
{
    m_folder.WriteFile("a.txt", "x");
    CFileException error;
    {
        CFile owner(Path("a.txt"), CFile::modeRead | CFile::shareExclusive);
        CFile other;
        EXPECT_FALSE(other.Open(Path("a.txt"), CFile::modeRead | CFile::shareDenyNone, &error));
        EXPECT_EQ(error.m_cause, CFileException::sharingViolation);
    }
    CFile owner(Path("a.txt"), CFile::modeRead | CFile::shareDenyWrite);
    CFile reader(Path("a.txt"), CFile::modeRead | CFile::shareDenyNone);
    CFile writer;
    EXPECT_FALSE(writer.Open(Path("a.txt"), CFile::modeWrite | CFile::shareDenyNone, &error));
    EXPECT_EQ(error.m_cause, CFileException::sharingViolation);
}

TEST_F(FileTest, SaysWhyAFileDoesNotOpen)
{
    const UINT read = CFile::modeRead;
    EXPECT_EQ(Thrown([&] { CFile(Path("none.txt"), read); }), FileError(CFileException::fileNotFound));
    EXPECT_EQ(Thrown([&] { CFile(Path("no\\where.txt"), read); }), FileError(CFileException::badPath));
    EXPECT_EQ(Thrown([&] { CFile(Path("working"), CFile::modeWrite); }), FileError(CFileException::accessDenied));

    CFileException error;
    CFile file;
    EXPECT_FALSE(file.Open(Path("none.txt"), read, &error));
    EXPECT_EQ(error.m_lOsError, ERROR_FILE_NOT_FOUND);
    EXPECT_STREQ(error.m_strFileName, Path("none.txt"));
}

TEST_F(FileTest, SeeksBeyondFourGigabytes)
{
    CFile file(Path("big"), CFile::modeReadWrite | CFile::modeCreate);
    const ULONGLONG end = 5'000'000'000ULL;
    file.SetLength(end);
    EXPECT_EQ(file.Seek(-1, CFile::end), end - 1);
    file.Write("x", 1);
    EXPECT_EQ(file.GetPosition(), end);
    EXPECT_EQ(file.GetLength(), end);
    EXPECT_EQ(Thrown([&] { file.Seek(-1, CFile::begin); }), FileError(CFileException::badSeek));
    file.SetLength(0);
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
    const __time64_t now = _time64(nullptr);
    m_folder.WriteFile("s.txt", "12345");
    CFileStatus status;
    ASSERT_TRUE(CFile::GetStatus(Path("s.txt"), status));
    EXPECT_EQ(status.m_size, 5u);
    EXPECT_EQ(status.m_attribute & CFile::readOnly, 0u);
    EXPECT_LT(std::abs(now - status.m_mtime.GetTime()), 60);
    SYSTEMTIME local = {};
    ASSERT_TRUE(status.m_mtime.GetAsSystemTime(local));
    EXPECT_LT(std::abs(COleDateTime::GetCurrentTime().m_dt - COleDateTime(local).m_dt), 60 / 86400.0);
    EXPECT_FALSE(CFile::GetStatus(Path("none"), status));
    EXPECT_FALSE(CFile::GetStatus(Path("*.txt"), status));
}

TEST_F(FileTest, MemoryFilesGrow)
{
    CMemFile file;
    file.Write("abc", 3);
    file.Seek(5, CFile::begin);
    file.Write("f", 1);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(file.GetBufferPtr()), 6), std::string("abc\0\0f", 6));
    file.Seek(1, CFile::begin);
    char bytes[10];
    EXPECT_EQ(file.Read(bytes, sizeof(bytes)), 5u);
    EXPECT_EQ(file.Read(bytes, sizeof(bytes)), 0u);
    EXPECT_EQ(Thrown([&] { file.Seek(-1, CFile::begin); }), FileError(CFileException::badSeek));
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

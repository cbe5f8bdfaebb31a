#include "suite/util/velini.h"
#include "suite/util/velpath.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

namespace
{

class PathTest : public ::testing::Test
{
protected:
    CString Path(const char* name) const
    {
        return m_practice.Path(name).c_str();
    }

    veltest::TemporaryPractice m_practice;
};

} // namespace

TEST_F(PathTest, FoldersComeFromTheSettings)
{
    EXPECT_STREQ(velGetDataPath(), m_practice.Working().c_str());
    EXPECT_STREQ(make_filename("Veltrix", "chm", "sys"), Path("sys\\Veltrix.chm"));
    EXPECT_STREQ(make_filename("Veltrix", "chm", "absent"), "c:\\veltrix\\Veltrix.chm");
    EXPECT_STREQ(make_filename("a", "", "sys"), Path("sys\\a"));

    char system[MAX_PATH + 1] = {};
    GetTempPathA(sizeof(system), system);
    EXPECT_STREQ(velGetTempPath(), system);
    m_practice.Set("Environment", "TEMP", m_practice.Path("temp"));
    EXPECT_STREQ(velGetTempPath(), Path("temp\\"));
    m_practice.Set("Environment", "TEMP", m_practice.Path("no folder"));
    EXPECT_STREQ(velGetTempPath(), system);
}

TEST_F(PathTest, FilenamesChangeByTheirParts)
{
    strFilename file("c:\\practice\\A1.PF");
    EXPECT_STREQ(file.GetPath(), "c:\\practice\\");
    file.SetExt("ORIGINALPF");
    EXPECT_STREQ(file.GetNameExt(), "A1.ORIGINALPF");
    file.SetPath("\\\\server\\share");
    file.SetName("B");
    file.SetExt(".I00");
    EXPECT_STREQ(file.GetFull(), "\\\\server\\share\\B.I00");
    file.SetExt("");
    EXPECT_STREQ(file.GetFull(), "\\\\server\\share\\B");
}

TEST_F(PathTest, FindsFilesInOrder)
{
    for (const char* name : {"working\\b.pf", "working\\A.PF", "working\\c.txt", "working\\d.pf\\x"})
    {
        std::filesystem::create_directories(std::filesystem::path(m_practice.Path(name)).parent_path());
        m_practice.WriteFile(name, "");
    }
    CStringArray names;
    EXPECT_EQ(velFindFiles(Path("working\\*.pf"), names), 2);
    ASSERT_EQ(names.GetSize(), 2);
    EXPECT_STREQ(names[0], "A.PF");
    EXPECT_STREQ(names[1], "b.pf");
    EXPECT_EQ(velFindFiles(Path("nowhere\\*.pf"), names), 0);
    EXPECT_TRUE(velFileExists(Path("working\\b.pf")) && !velFolderExists(Path("working\\b.pf")));
    EXPECT_TRUE(velFolderExists(Path("working\\d.pf")) && !velFileExists(Path("working\\d.pf")));
}

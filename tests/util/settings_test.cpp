#include "suite/util/velini.h"
#include "suite/util/velinisettings.h"
#include "tests/support/childprocess.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace
{

class SettingsTest : public ::testing::Test
{
protected:
    void Write(const std::string& bytes) const
    {
        m_practice.WriteFile("veltrix.ini", bytes);
    }
    std::string Bytes() const
    {
        return m_practice.ReadFile("veltrix.ini");
    }
    CString Path() const
    {
        return m_practice.IniFile().c_str();
    }

    // Files beside the settings file that a write left behind.
    int Leftovers() const
    {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(m_practice.Folder()))
            count += entry.is_regular_file() && entry.path().filename() != "veltrix.ini";
        return count;
    }

    veltest::TemporaryPractice m_practice;
};

} // namespace

TEST_F(SettingsTest, AnswersValuesOrDefaults)
{
    Write("[Defaults]\r\nCountry=USA\r\nEmpty=\r\nNumber= 12 \r\nText=abc\r\nBad=a\x01\r\n");
    EXPECT_STREQ(velGetIniString("defaults", "COUNTRY"), "USA");
    EXPECT_STREQ(velGetIniString("Defaults", "Empty", "x"), "");
    EXPECT_STREQ(velGetIniString("Defaults", "Absent", "x"), "x");
    EXPECT_STREQ(velGetIniString("Defaults", "Absent", nullptr), "");
    EXPECT_STREQ(velGetIniString("Defaults", "Bad", "x"), "x");
    EXPECT_STREQ(velGetIniString(static_cast<LPCTSTR>(nullptr), "Country", "x"), "x");
    EXPECT_EQ(velGetIniInt("Defaults", "Number", 5), 12);
    EXPECT_EQ(velGetIniInt("Defaults", "Text", 5), 5);
    EXPECT_EQ(velGetIniInt("Defaults", "Absent", -5), -5);
    EXPECT_FALSE(IsViewingSoftware());
    m_practice.Set("Environment", "Viewer", "1");
    EXPECT_TRUE(IsViewingSoftware());
}

TEST_F(SettingsTest, AFileThatIsNoneGivesDefaultsAndIsLeftAlone)
{
    for (const std::string& bytes :
         {std::string("[S]\0k=v", 7), std::string("\xFF\xFE[\0S\0]\0", 8), std::string(2 * 1024 * 1024, 'x')})
    {
        Write(bytes);
        EXPECT_STREQ(velGetIniString("S", "k", "default"), "default");
        EXPECT_FALSE(velSetIniString("S", "k", "v"));
        EXPECT_EQ(Bytes(), bytes);
    }
    for (const char* path : {"working", "no\\such\\folder.ini"}) // a folder; one deep in a missing one
    {
        velSetIniFile(m_practice.Path(path).c_str());
        EXPECT_STREQ(velGetIniString("S", "k", "default"), "default");
        EXPECT_FALSE(velSetIniString("S", "k", "v"));
    }
    velSetIniFile(nullptr);
    EXPECT_EQ(Leftovers(), 0);
}

TEST_F(SettingsTest, WritesAndKeepsComments)
{
    Write("; kept\r\n[S]\r\nk=1\r\n");
    EXPECT_TRUE(velSetIniString("S", "k", " two "));
    EXPECT_TRUE(velSetIniInt("S", "n", -3));
    EXPECT_EQ(Bytes(), "; kept\r\n[S]\r\nk=\" two \"\r\nn=-3\r\n");
    EXPECT_STREQ(velGetIniString("S", "k"), " two ");
    EXPECT_EQ(velGetIniInt("S", "n", 0), -3);
    EXPECT_TRUE(velSetIniString("S", "k", nullptr));
    EXPECT_EQ(Bytes(), "; kept\r\n[S]\r\nn=-3\r\n");
    EXPECT_FALSE(velSetIniString("S", "k", "two\r\nlines"));
    EXPECT_EQ(Leftovers(), 0);
}

TEST_F(SettingsTest, MakesTheFileAndItsFolderAndKeepsAReadOnlyOne)
{
    const std::string file = m_practice.Path("new\\veltrix.ini");
    velSetIniFile(file.c_str());
    EXPECT_TRUE(velSetIniString("S", "k", "v"));
    SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(velSetIniString("S", "k", "2"));
    EXPECT_STREQ(velGetIniString("S", "k"), "v");
    SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    velSetIniFile(nullptr);
    EXPECT_EQ(m_practice.ReadFile("new\\veltrix.ini"), "[S]\r\nk=v\r\n");
}

TEST_F(SettingsTest, SeesEveryChangeHoweverQuick)
{
    for (int i = 0; i < 200; ++i)
    {
        const std::string value = std::to_string(100 + i); // always as long
        Write("[S]\nk=" + value + "\n");
        ASSERT_STREQ(velGetIniString("S", "k"), value.c_str());
    }
    DeleteFileA(Path());
    EXPECT_STREQ(velGetIniString("S", "k", "gone"), "gone");
}

VEL_CHILD_PROCESS(readForEver)
{
    while (velGetIniInt("Race", "k", -1) != 1000)
        if (velGetIniInt("Race", "k", -1) == -1)
            return 1; // saw no file, or half a one
    return 0;
}

TEST_F(SettingsTest, ReadersSeeWholeFilesAndDoNotStopAWriter)
{
    Write("[Race]\nk=0\n");
    veltest::ChildProcess reader("readForEver", {});
    for (int i = 1; i <= 100; ++i)
        ASSERT_TRUE(velSetIniInt("Race", "k", i));
    ASSERT_TRUE(velSetIniInt("Race", "k", 1000));
    EXPECT_EQ(reader.Wait(), 0);
}

VEL_CHILD_PROCESS(writeSettings)
{
    for (int i = 0; i < 50; ++i)
        if (!velSetIniInt("Race", (arguments[0] + std::to_string(i)).c_str(), i))
            return 1;
    return 0;
}

VEL_CHILD_PROCESS(writeForEver)
{
    for (int i = 0;; ++i)
        velSetIniInt("Race", "k", i);
}

TEST_F(SettingsTest, TwoProcessesLoseNothingOfEachOther)
{
    veltest::ChildProcess one("writeSettings", {"a"});
    EXPECT_EQ(veltest::ChildProcess("writeSettings", {"b"}).Wait() + one.Wait(), 0);
    for (int i = 0; i < 50; ++i)
    {
        EXPECT_EQ(velGetIniInt("Race", ("a" + std::to_string(i)).c_str(), -1), i);
        EXPECT_EQ(velGetIniInt("Race", ("b" + std::to_string(i)).c_str(), -1), i);
    }
    EXPECT_EQ(Leftovers(), 0);
}

TEST_F(SettingsTest, AKilledWriterLeavesAWholeFileAndNoLock)
{
    for (int round = 0; round < 5; ++round)
    {
        Write("[Race]\nk=-1\nlast=x\n");
        veltest::ChildProcess writer("writeForEver", {});
        while (velGetIniInt("Race", "k", -1) < 3 && writer.IsRunning())
            Sleep(1);
        writer.Kill();
        EXPECT_GE(velGetIniInt("Race", "k", -1), 3);
        EXPECT_STREQ(velGetIniString("Race", "last"), "x");
        EXPECT_TRUE(velSetIniString("Race", "k", "mine"));
        EXPECT_EQ(Leftovers(), 0);
    }
}

TEST(SettingsContainer, KeepsItsFieldsInTheirOrder)
{
    const CVelIniSettingsContainer c;
    EXPECT_EQ(c.m_nSize, sizeof(c));
    const auto at = [&](const auto& field) {
        return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&c);
    };
    const std::ptrdiff_t order[] = {at(c.m_nMeasWndNumDisplayPrec),
                                    at(c.m_nMeasInTracingNumDisplayPrec),
                                    at(c.m_fTracingPrintTextScale),
                                    at(c.m_nUseUniformTeethSize),
                                    at(c.m_nUseTracingAntiAlias),
                                    at(c.m_nTurnOnTextGuides),
                                    at(c.m_nDisplayQuality),
                                    at(c.m_nDisplayPhotoCornerRoundedness),
                                    at(c.m_bRecycle),
                                    at(c.m_crBackgroundColor),
                                    at(c.m_strImplants),
                                    at(c.m_nAllowPatientChanges),
                                    at(c.m_bLimitCapturedImagesSize),
                                    at(c.m_dLimitCapturedImagesToMegaPixel),
                                    at(c.m_fTracingLineThickness)};
    EXPECT_TRUE(std::ranges::is_sorted(order));
    static_assert(sizeof(c.m_dLimitCapturedImagesToMegaPixel) == 8 &&
                  sizeof(c.m_fTracingLineThickness) == 4 && sizeof(c.m_bRecycle) == 4 &&
                  sizeof(c.m_crBackgroundColor) == 4);
}

// Practices that are there, missing, moved, damaged or hostile.

#include "host/hostpractice.h"
#include "host/picture.h"
#include "suite/patients/velpat.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace
{

class HostPractice : public testing::Test
{
protected:
    HostPractice()
    {
        InitVelPatDLL(1);
    }

    ~HostPractice() override
    {
        m_practice.Close();
        dbCPatients::Close();
        velSetIniFile(nullptr);
    }

    std::string Folder(const char* name) const
    {
        return m_files.Path(name);
    }

    void Make(const std::string& folder, int patients)
    {
        CString error;
        ASSERT_TRUE(hostCPractice::Create(folder.c_str(), patients, error)) << error.GetString();
    }

    BOOL Open(const std::string& folder)
    {
        m_questions.clear();
        return m_practice.Open(
            folder.c_str(),
            [this](hostQuestion question, const CString&) {
                m_questions.push_back(question);
                return m_answer;
            },
            m_error);
    }

    veltest::TemporaryPractice m_files;
    picCSession m_drawing;
    hostCPractice m_practice;
    CString m_error;
    bool m_answer = false;
    std::vector<hostQuestion> m_questions;
};

std::set<std::string> FilesBelow(const std::string& folder)
{
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        files.insert(std::filesystem::relative(entry.path(), folder).string());
    return files;
}

TEST_F(HostPractice, NothingIsWrittenWithoutAYes)
{
    std::filesystem::create_directory(Folder("empty"));
    for (const char* name : {"missing", "empty"})
    {
        EXPECT_FALSE(Open(Folder(name)));
        EXPECT_STREQ("", m_error) << "the user said no: nothing to tell";
        EXPECT_EQ(std::vector<hostQuestion>{hostQuestion::createPractice}, m_questions) << name;
        EXPECT_FALSE(m_practice.IsOpen());
    }
    EXPECT_FALSE(std::filesystem::exists(Folder("missing")));
    EXPECT_TRUE(std::filesystem::is_empty(Folder("empty")));
}

TEST_F(HostPractice, TheSamplePracticeIsCompleteAndItsFilesAreThere)
{
    m_answer = true;
    ASSERT_TRUE(Open(Folder("sample\\"))) << m_error.GetString();
    EXPECT_STREQ("sample", m_practice.GetName());
    dbCPatients patients;
    EXPECT_EQ(hostCPractice::kSamplePatients, patients.GetCount());
    EXPECT_EQ(0, velGetDataPath().Find(m_practice.GetFolder()));

    dbTList<dbSPatientListRow> rows;
    ASSERT_EQ(hostCPractice::kSamplePatients, patients.GetPage(dbSearchName, "", nullptr, 1000, rows));
    int images = 0;
    for (const dbSPatientListRow& row : rows)
    {
        dbCPatient patient;
        ASSERT_TRUE(patient.Load(row.strGUID));
        SCOPED_TRACE(patient.GetID().GetString());
        EXPECT_TRUE(velFileExists(velGetDataPath() + patient.GetID() + ".PF"));
        EXPECT_FALSE(patient.GetAddress(0).GetStreet().IsEmpty());
        dbCPerson doctor;
        EXPECT_TRUE(patient.GetPersonInfo(dbPersonTreatingDoctor, doctor));
        for (const patCTimepoint& timepoint : patient.GetTimepoints())
            for (int group = 0; group < patCImageTypes::GROUP_COUNT; ++group)
                for (int type = 0; type < patCImageTypes::GetTypeCount(group); ++type)
                    if (timepoint.HasImage(group, type))
                    {
                        const CString file = velGetDataPath() + timepoint.GetImageFilename(group, type);
                        EXPECT_TRUE(picLoadThumbnail(file.GetString(), 64, 48, 0) != nullptr)
                            << file.GetString();
                        ++images;
                    }
    }
    EXPECT_GT(images, 100);
    EXPECT_FALSE(velFileExists(m_practice.GetFolder() + "\\Veltrix.new"));
}

TEST_F(HostPractice, ALargePracticeHasFewFilesAndIsNotWrittenOver)
{
    Make(Folder("large"), 1500);
    ASSERT_TRUE(Open(Folder("large"))) << m_error.GetString();
    CString error;
    EXPECT_FALSE(hostCPractice::Create(Folder("large").c_str(), 9, error));
    EXPECT_THAT(error.GetString(), testing::HasSubstr("exists already"));
    EXPECT_EQ(1500, dbCPatients().GetCount());
    CStringArray files;
    EXPECT_EQ(200, velFindFiles(velGetDataPath() + "*.PF", files));
}

TEST_F(HostPractice, DamagedOnesAreToldAndLeftAsTheyAre)
{
    const std::pair<std::string, std::string> cases[] = {
        {"empty file", ""}, {"noise", std::string(8192, '\x5A')}, {"short", "SQLite format 3"}};
    for (const auto& [name, content] : cases)
    {
        SCOPED_TRACE(name);
        m_files.WriteFile(name + "\\Veltrix.db", content);
        m_files.WriteFile(name + "\\veltrix.ini", "[Environment]\r\nWORKING=" + m_files.Working() + "\r\n");
        EXPECT_FALSE(Open(m_files.Path(name)));
        EXPECT_THAT(m_error.GetString(), testing::HasSubstr("Veltrix.db"));
        EXPECT_TRUE(m_questions.empty()) << "there is a database: no offer to make one";
        EXPECT_EQ(content, m_files.ReadFile(name + "\\Veltrix.db"));
        EXPECT_FALSE(m_practice.IsOpen());
    }
}

TEST_F(HostPractice, AFileInPlaceOfTheFolderIsTold)
{
    m_files.WriteFile("afile", "x");
    m_answer = true;
    EXPECT_FALSE(Open(Folder("afile")));
    EXPECT_THAT(m_error.GetString(), testing::HasSubstr("is a file"));
    EXPECT_FALSE(Open(Folder("afile\\below")));
    EXPECT_THAT(m_error.GetString(), testing::HasSubstr("could not be created"));
    EXPECT_EQ("x", m_files.ReadFile("afile"));
}

TEST_F(HostPractice, SettingsThatNameNoWorkingFolderAreNotOpened)
{
    Make(Folder("p"), 1);
    for (const std::string& content :
         {std::string(), std::string("\x00\x01\x02[[[[", 7), std::string("[Environment]\r\nWORKING=\r\n")})
    {
        m_files.WriteFile("p\\veltrix.ini", content);
        EXPECT_FALSE(Open(Folder("p")));
        EXPECT_THAT(m_error.GetString(), testing::HasSubstr("names no working folder"));
        EXPECT_EQ(content, m_files.ReadFile("p\\veltrix.ini"));
    }
    std::filesystem::remove(Folder("p\\veltrix.ini"));
    EXPECT_FALSE(Open(Folder("p")));
    EXPECT_EQ(std::vector<hostQuestion>{hostQuestion::createSettings}, m_questions);
    m_answer = true;
    EXPECT_TRUE(Open(Folder("p"))) << m_error.GetString();
}

TEST_F(HostPractice, ACopyWorksWithItsOwnFiles)
{
    Make(Folder("first"), 3);
    std::filesystem::copy(Folder("first"), Folder("second"), std::filesystem::copy_options::recursive);
    const std::set<std::string> before = FilesBelow(Folder("first"));
    ASSERT_TRUE(Open(Folder("second"))) << m_error.GetString();
    EXPECT_EQ(0, velGetDataPath().CompareNoCase((Folder("second") + "\\Working\\").c_str()));
    EXPECT_EQ(0, velGetIniString("Defaults", "ArchiveFilePath")
                     .CompareNoCase((Folder("second") + "\\Archive").c_str()));
    m_practice.Close();
    EXPECT_EQ(before, FilesBelow(Folder("first")));
}

} // namespace

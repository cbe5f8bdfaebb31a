// The process ends at every named step of every operation.
#include "tests/archive/archivefixture.h"
#include "tests/support/steps.h"

#include <filesystem>

using veltest::Dialog;
using veltest::DialogScript;

namespace
{
// Runs one operation as a user does and ends the process at a step of it; 0 when it has none so late.
VEL_CHILD_PROCESS(dieAtStep) // database, operation, ID or empty, archive, file type, remove or keep, step
{
    dbCPatients::Open(arguments[0].c_str());
    HostWindow host;
    host.Open();
    SetArchivingAllowed(true);
    const auto nOperation = static_cast<ARCHIVE_OP>(std::stoi(arguments[1]));
    const int nFilter = std::stoi(arguments[4]);
    const bool bSave = nOperation == ARCHIVE_OP_SAVE;
    const std::vector<std::string> none, ids = {arguments[2]}, given = {arguments[3]};
    const auto play = [&](DialogScript& script) {
        WaitForChoice(script).Press(IDOK);
        if (!bSave)
            return;
        TakeOfferedName(script, nFilter);
        if (nFilter == 2)
            script.AnswerBox("", IDYES);
        if (std::filesystem::exists(arguments[3]))
            script.WaitForDialogWith(IDC_ARC_OVERWRITE_TEXT).Press(IDYES);
        if (nFilter == 0)
            script.AnswerBox("", arguments[5] == "remove" ? IDYES : IDNO);
    };
    veltest::EndAtStep(std::stoi(arguments[6]));
    RunArchiveDialog(host, nOperation, arguments[2].empty() ? none : ids, bSave ? none : given, play);
    return 0;
}

class CrashTest : public ArchiveDialogTest
{
protected:
    // Ends a process at each step in turn, and looks at what it has left behind.
    void DieAtEachStep(ARCHIVE_OP nOperation, const std::string& id, const std::string& archive, int nFilter,
                       const std::string& removal, int nSteps, const std::function<void(int)>& look)
    {
        int nStep = 1;
        for (int nCode = veltest::ENDED_AT_STEP; nCode == veltest::ENDED_AT_STEP && nStep < 60; ++nStep)
        {
            dbCPatients::Close();
            veltest::ChildProcess child("dieAtStep",
                                        {m_database, std::to_string(nOperation), id, archive,
                                         std::to_string(nFilter), removal, std::to_string(nStep)});
            nCode = child.Wait();
            EXPECT_TRUE(nCode == 0 || nCode == veltest::ENDED_AT_STEP) << nStep << ": " << nCode;
            dbCPatients::Open(m_database.c_str());
            EXPECT_EQ(m_patients.IsLocked("A1"), patLockFree) << nStep;
            look(nStep);
        }
        EXPECT_GE(nStep - 2, nSteps);
    }

    void SetArchiveFolder(const std::map<std::string, std::string>& files)
    {
        for (const auto& [name, bytes] : FilesIn("archive"))
            std::filesystem::remove(m_practice.Path("archive\\" + name));
        for (const auto& [name, bytes] : files)
            m_practice.WriteFile("archive\\" + name, bytes);
    }
};

class CrashInFormatTest : public CrashTest, public testing::WithParamInterface<int>
{
};
} // namespace

TEST_P(CrashInFormatTest, ASaveLeavesThePatientAndAWholeArchive)
{
    const int nFilter = GetParam();
    StorePatient("A1");
    const auto files = WorkingFiles();
    Save("A1", nFilter);
    const auto old = FilesIn("archive");
    DieAtEachStep(ARCHIVE_OP_SAVE, "A1", Archive("A1", nFilter), nFilter, "keep", 9, [&](int nStep) {
        EXPECT_TRUE(IsStored("A1")) << nStep;
        EXPECT_EQ(WorkingFiles(), files) << nStep;
        const auto now = FilesIn("archive"); // old or new, as saving_test.cpp looks at them
        for (const auto& [name, bytes] : old)
            EXPECT_TRUE(now.contains(name) || now.contains(name + ".PREVIOUS")) << nStep << name;
        SetArchiveFolder(old);
    });
    UsePractice(2);
    Load(Archive("A1", nFilter));
    EXPECT_TRUE(IsStored("A1"));
    EXPECT_TRUE(
        std::filesystem::is_empty(m_practice.Path("temp"))); // and so the dead have left nothing there
}

TEST_P(CrashInFormatTest, ALoadLeavesThePracticeAsBeforeOrAsAfter)
{
    const int nFilter = GetParam();
    StorePatient("A1");
    Save("A1", nFilter);
    UsePractice(2);
    Load(Archive("A1", nFilter));
    const auto files = WorkingFiles();
    m_patients.DeletePatient("A1");
    ASSERT_TRUE(WorkingFiles().empty());
    DieAtEachStep(ARCHIVE_OP_LOAD, "", Archive("A1", nFilter), nFilter, "", 10, [&](int nStep) {
        if (IsStored("A1"))
        {
            EXPECT_EQ(WorkingFiles(), files) << nStep;
            m_patients.DeletePatient("A1");
        }
        EXPECT_TRUE(WorkingFiles().empty()) << nStep << " " << WorkingFiles().begin()->first;
        ChangeWorkers();
    });
    Load(Archive("A1", nFilter));
    EXPECT_EQ(WorkingFiles(), files);
    EXPECT_TRUE(std::filesystem::is_empty(m_practice.Path("temp")));
}

INSTANTIATE_TEST_SUITE_P(Formats, CrashInFormatTest, testing::Values(0, 1, 2));

TEST_F(CrashTest, AMergeLeavesThePracticeAsBeforeOrAsAfter)
{
    StorePatient("A1");
    SaveAndChange("A1");
    StorePatient("A1", 1, 10);
    const auto before = WorkingFiles();
    DieAtEachStep(ARCHIVE_OP_MERGE, "A1", Archive("A1"), 0, "", 10, [&](int nStep) {
        dbCPatient patient;
        ASSERT_TRUE(patient.Load("A1")) << nStep;
        auto files = WorkingFiles();
        if (patient.GetTimepoints().GetCount() == 1)
        {
            EXPECT_EQ(files, before) << nStep;
            return;
        }
        EXPECT_EQ(patient.GetTimepoints().GetCount(), 3) << nStep;
        EXPECT_NE(files.at("A1.PF"), before.at("A1.PF")) << nStep;
        for (const char* pszNew : {"A101", "A102"})
            EXPECT_EQ(std::erase_if(files, [&](const auto& file) { return file.first.starts_with(pszNew); }),
                      7u);
        files["A1.PF"] = before.at("A1.PF");
        EXPECT_TRUE(std::includes(files.begin(), files.end(), before.begin(), before.end())) << nStep;
        m_patients.DeletePatient("A1");
        StorePatient("A1", 1, 10);
        EXPECT_EQ(WorkingFiles(), before);
    });
}

TEST_F(CrashTest, ARemovalAfterASaveTakesAllOrNothing)
{
    StorePatient("A1");
    const auto files = WorkingFiles();
    DieAtEachStep(ARCHIVE_OP_SAVE, "A1", Archive("A1"), 0, "remove", 12, [&](int nStep) {
        const auto now = WorkingFiles();
        if (IsStored("A1"))
        {
            EXPECT_EQ(now, files) << nStep;
        }
        else
        {
            EXPECT_TRUE(now.empty()) << nStep << " " << now.begin()->first;
            // What was removed is in the archive.
            Load(Archive("A1"));
            EXPECT_EQ(WorkingFiles(), files) << nStep;
        }
        SetArchiveFolder({});
        ChangeWorkers();
    });
}

// The process ends in the middle of an operation.
#include "tests/archive/archivefixture.h"

#include <filesystem>
#include <thread>

using veltest::Dialog;
using veltest::DialogScript;

namespace
{
// Runs one operation and ends the process some milliseconds after it was begun.
VEL_CHILD_PROCESS(dieWithin) // database, operation, ID or empty, archive, milliseconds
{
    dbCPatients::Open(arguments[0].c_str());
    dbCPatients patients;
    HostWindow host;
    host.Open();
    SetArchivingAllowed(true);
    CStringArray selected, archives, more;
    dbCPatient patient;
    const bool bHasPatient = !arguments[2].empty() && patient.Load(arguments[2].c_str());
    if (bHasPatient)
        selected.Add(arguments[2].c_str());
    archives.Add(arguments[3].c_str());
    const auto nOperation = static_cast<ARCHIVE_OP>(std::stoi(arguments[1]));
    veltest::RunModal(
        [&] {
            return ArchiveDlg(&host, 0, bHasPatient ? &patient : nullptr, nOperation, selected, &patients,
                              archives, more, more, more, 0, 0);
        },
        [&](DialogScript& script) {
            const Dialog choice = WaitForChoice(script);
            std::thread([nDelay = std::stoul(arguments[4])] {
                ::Sleep(nDelay);
                ::TerminateProcess(::GetCurrentProcess(), 42);
            }).detach();
            choice.Press(IDOK);
            if (nOperation == ARCHIVE_OP_SAVE)
                TakeOfferedName(script);
            ::Sleep(60'000);
        });
    return 0;
}

class CrashTest : public ArchiveDialogTest
{
protected:
    void DieWithin(int nMilliseconds, ARCHIVE_OP nOperation, const std::string& id,
                   const std::string& database)
    {
        dbCPatients::Close();
        veltest::ChildProcess child("dieWithin", {m_practice.Path(database), std::to_string(nOperation), id,
                                                  nOperation == ARCHIVE_OP_SAVE ? "" : Archive("A1"),
                                                  std::to_string(nMilliseconds)});
        EXPECT_EQ(child.Wait(), 42) << nMilliseconds;
    }
};

constexpr int Moments[] = {1, 60, 150, 400};
} // namespace

TEST_F(CrashTest, LeavesThePracticeAsBeforeOrAsAfterALoad)
{
    StorePatient("A1", 2, 400'000);
    const auto files = WorkingFiles();
    SaveAndChange("A1");
    for (const int nMoment : Moments)
    {
        DieWithin(nMoment, ARCHIVE_OP_LOAD, "", "patients2.db");
        UseSecondPractice();
        if (IsStored("A1"))
        {
            EXPECT_EQ(WorkingFiles(), files) << nMoment;
            m_patients.DeletePatient("A1");
        }
        EXPECT_TRUE(WorkingFiles().empty()) << nMoment << " " << WorkingFiles().begin()->first;
        EXPECT_EQ(m_patients.IsLocked("A1"), patLockFree);
    }
    // What the dead have left in the scratch folder is nobody's.
    EXPECT_EQ(Load(Archive("A1")), IDOK);
    EXPECT_EQ(WorkingFiles(), files);
    EXPECT_TRUE(std::filesystem::is_empty(m_practice.Path("temp")));
}

TEST_F(CrashTest, LeavesThePracticeAsBeforeOrAsAfterAMerge)
{
    StorePatient("A1", 2, 400'000);
    SaveAndChange("A1");
    StorePatient("A1", 1, 10);
    for (const int nMoment : Moments)
    {
        UseSecondPractice();
        const auto before = WorkingFiles();
        DieWithin(nMoment, ARCHIVE_OP_MERGE, "A1", "patients2.db");
        UseSecondPractice();
        dbCPatient patient;
        ASSERT_TRUE(patient.Load("A1"));
        const int nCount = patient.GetTimepoints().GetCount();
        if (nCount == 1)
        {
            EXPECT_EQ(WorkingFiles(), before) << nMoment;
            continue;
        }
        // Merged: done for all that follow.
        EXPECT_EQ(nCount, 3);
        EXPECT_EQ(WorkingFiles().size(), before.size() + 2 * 7 + 1) << nMoment;
        break;
    }
}

TEST_F(CrashTest, KeepsTheOldArchiveAndThePatientOverASave)
{
    StorePatient("A1", 2, 400'000);
    const auto files = WorkingFiles();
    for (const int nMoment : Moments)
    {
        DieWithin(nMoment, ARCHIVE_OP_SAVE, "A1", "patients.db");
        UseFirstPractice();
        EXPECT_TRUE(IsStored("A1"));
        EXPECT_EQ(WorkingFiles(), files) << nMoment;
        EXPECT_EQ(m_patients.IsLocked("A1"), patLockFree);
    }
    std::filesystem::remove(Archive("A1"));
    SaveAndChange("A1");
    EXPECT_EQ(Load(Archive("A1")), IDOK);
    EXPECT_EQ(WorkingFiles(), files);
}

// Two processes on one database: waiting, and locks with their holders.

#include "tests/patients/testdatabase.h"
#include "tests/support/childprocess.h"

#include <fstream>

namespace
{
using SharedDatabase = DatabaseTest;
using PatientLock = DatabaseTest;

VEL_CHILD_PROCESS(holdPatient)
{
    dbCPatients::Open(arguments[0].c_str());
    dbCPatients patients;
    const int nAnswer = patients.LockPatient("A1", atoi(arguments[2].c_str()));
    std::ofstream(arguments[1]) << '.';
    if (nAnswer == 0)
        Sleep(60'000);
    return nAnswer;
}

VEL_CHILD_PROCESS(holdDatabase)
{
    dbCPatients::Open(arguments[0].c_str());
    dbCTransaction transaction;
    NewPatient("HALF").Save();
    std::ofstream(arguments[1]) << '.';
    Sleep(60'000);
    return 0;
}

/// Another process that holds something of a database, with what its child process is told.
struct Holder : veltest::ChildProcess
{
    Holder(const TestDatabase& database, const char* pszChild, const char* pszMode = "")
        : ChildProcess(pszChild, {database.Path(), database.practice.Path("go"), pszMode})
    {
        EXPECT_TRUE(WaitFor(database.practice.Path("go")));
    }
};

TEST_F(SharedDatabase, AWriterThatTakesTooLongIsReportedAndAKilledOneLeavesNothing)
{
    NewPatient("A1").Save();
    Holder child(database, "holdDatabase");
    dbCPatient patient = NewPatient("B2");
    EXPECT_EQ(ErrorOf([&] { patient.Save(); }), dbErrLocked);
    EXPECT_FALSE(patient.IsValid());
    dbCPatients::Open(database.Path().c_str());
    EXPECT_TRUE(dbCPatient().Load("A1")) << "opening and reading go on";
    EXPECT_FALSE(dbCPatient().Load("HALF"));
    child.Kill();
    child.Wait();
    patient.Save();
    EXPECT_TRUE(dbCPatients().IsIDFree("HALF"));
}

TEST_F(PatientLock, AnothersLockIsSeenAndADeadHoldersRemoved)
{
    dbCPatients patients;
    CString strHolder;
    {
        Holder child(database, "holdPatient", "0");
        EXPECT_EQ(patients.IsLocked("a1", &strHolder), patLockInUse);
        EXPECT_FALSE(strHolder.IsEmpty());
        EXPECT_EQ(patients.LockPatient("A1", patLockExclusive, &strHolder), patLockInUse);
        EXPECT_EQ(patients.LockPatient("A1", patLockShared), patLockInUse);
        EXPECT_FALSE(patients.Unlock("A1")) << "not ours to give back";
        EXPECT_EQ(patients.IsLocked("A1"), patLockInUse);
        EXPECT_EQ(patients.IsLocked("A2"), patLockFree);
        child.Kill();
        child.Wait();
    }
    EXPECT_EQ(patients.IsLocked("A1", &strHolder), patLockFree);
    EXPECT_TRUE(strHolder.IsEmpty());
    EXPECT_EQ(patients.LockPatient("A1"), patLockFree);
    EXPECT_TRUE(patients.Unlock("A1"));
}

TEST_F(PatientLock, LookersCanBePassed)
{
    dbCPatients patients;
    Holder child(database, "holdPatient", "1");
    EXPECT_EQ(patients.IsLocked("A1"), patLockPassable);
    EXPECT_EQ(patients.LockPatient("A1", patLockExclusive), patLockPassable);
    EXPECT_FALSE(patients.Unlock("A1"));
    EXPECT_EQ(patients.LockPatient("A1", patLockShared), patLockFree);
    EXPECT_TRUE(patients.Unlock("A1"));
    dbCPatients::BreakLock("A1");
    EXPECT_EQ(patients.IsLocked("A1"), patLockFree);
    child.Kill();
    {
        dbCTransaction transaction;
        EXPECT_EQ(patients.LockPatient("A1"), patLockFree);
    }
    EXPECT_FALSE(patients.Unlock("A1")) << "rolled back with its transaction";
}

TEST_F(PatientLock, ANewIDTakesTheLockAlong)
{
    const auto answerOfAnother = [&](const char* pszMode) {
        return veltest::ChildProcess("holdPatient", {database.Path(), database.practice.Path("x"), pszMode})
            .Wait();
    };
    dbCPatient patient = Saved(NewPatient("B2"));
    dbCPatients patients, others;
    EXPECT_EQ(patients.LockPatient("B2"), patLockFree);
    EXPECT_EQ(others.LockPatient("b2"), patLockFree);
    patient.SetID("A1");
    {
        dbCTransaction transaction;
        patient.Save();
    }
    EXPECT_FALSE(patients.Unlock("A1")) << "rolled back";
    patient.Save();
    EXPECT_EQ(answerOfAnother("0"), patLockInUse);
    EXPECT_FALSE(patients.Unlock("B2"));
    EXPECT_TRUE(patients.Unlock("A1"));
    EXPECT_EQ(answerOfAnother("1"), patLockInUse) << "it was locked twice";
    EXPECT_TRUE(patients.Unlock("A1"));

    patient.SetID("C3");
    patient.Save();
    Holder child(database, "holdPatient", "0");
    patient.SetID("A1");
    EXPECT_EQ(ErrorOf([&] { patient.Save(); }), dbErrPatientInUse);
    EXPECT_TRUE(patients.IsIDFree("A1"));
    child.Kill();
}
} // namespace

// Databases that cannot be opened or written: each tells its own reason and is left as it was.

#include "tests/patients/testdatabase.h"
#include "tests/support/childprocess.h"

#include <filesystem>
#include <fstream>

namespace
{
TEST(Database, CallsWithoutOneSaySo)
{
    dbCPatients::Close();
    EXPECT_FALSE(dbCPatients::IsOpen());
    EXPECT_EQ(ErrorOf([] { NewPatient("A1").Save(); }), dbErrNotOpen);
    EXPECT_EQ(ErrorOf([] { dbCPatients().IsIDFree("A1"); }), dbErrNotOpen);
    EXPECT_EQ(ErrorOf([] { dbCTransaction transaction; }), dbErrNotOpen);
    EXPECT_EQ(dbCPatients().IsLocked("A1"), patLockFailed);
}

TEST(Database, WhatIsNoPatientDatabaseIsRefusedUnchangedAndTheOpenOneStays)
{
    TestDatabase database;
    NewPatient("A1").Save();
    const veltest::TemporaryPractice& practice = database.practice;
    const std::pair<std::string, dbError> CASES[] = {
        {std::string(4096, 'x'), dbErrCorrupt}, {"", dbErrNotPatients}, {"SQLite format 3", dbErrCorrupt}};
    for (const auto& [bytes, nError] : CASES)
    {
        practice.WriteFile("file.db", bytes);
        EXPECT_EQ(ErrorOf([&] { dbCPatients::Open(practice.Path("file.db").c_str()); }), nError) << bytes;
        EXPECT_EQ(ErrorOf([&] { dbCPatients::Create(practice.Path("file.db").c_str()); }), dbErrExists);
        EXPECT_EQ(practice.ReadFile("file.db"), bytes);
    }
    for (const char* pszMissing : {"none.db", "none\\none.db", "working"})
        EXPECT_EQ(ErrorOf([&] { dbCPatients::Open(practice.Path(pszMissing).c_str()); }), dbErrMissing)
            << pszMissing;
    EXPECT_FALSE(std::filesystem::exists(practice.Path("none.db")));
    EXPECT_EQ(dbCPatients::GetPath(), database.Path().c_str());
    EXPECT_FALSE(dbCPatients().IsIDFree("A1"));
}

TEST(Database, TruncatedOrDamagedIsReported)
{
    TestDatabase database;
    for (int i = 0; i < 20; ++i)
        FullPatient(("P" + std::to_string(i)).c_str(), CString('n', 400)).Save();
    dbCPatients::Close();
    const std::string bytes = database.practice.ReadFile("patients.db");
    // Everything behind the first pages is noise: opening may succeed, reading must say what is wrong.
    std::string noise = bytes;
    for (size_t n = 4096 * 2; n < noise.size(); ++n)
        noise[n] = static_cast<char>(n * 7);
    for (const std::string& damaged : {bytes.substr(0, bytes.size() / 2), noise})
    {
        database.practice.WriteFile("damaged.db", damaged);
        EXPECT_EQ(ErrorOf([&] {
                      dbCPatients::Open(database.practice.Path("damaged.db").c_str());
                      dbCPatient().Load("P1");
                  }),
                  dbErrCorrupt);
        dbCPatients::Close();
    }
}

TEST(Database, WhatCannotBeWrittenIsRefusedWhenOpened)
{
    TestDatabase database;
    dbCPatients::Close();
    SetFileAttributesA(database.Path().c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(ErrorOf([&] { dbCPatients::Open(database.Path().c_str()); }), dbErrReadOnly);
    SetFileAttributesA(database.Path().c_str(), FILE_ATTRIBUTE_NORMAL);
    const HANDLE hFile = CreateFileA(database.Path().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                     OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(hFile, INVALID_HANDLE_VALUE);
    EXPECT_EQ(ErrorOf([&] { dbCPatients::Open(database.Path().c_str()); }), dbErrLocked);
    CloseHandle(hFile);
    dbCPatients::Open(database.Path().c_str());
}

VEL_CHILD_PROCESS(holdOpen)
{
    dbCPatients::Open(arguments[0].c_str());
    std::ofstream(arguments[1]) << '.';
    Sleep(60'000);
    return 0;
}

TEST(Database, OverTheNetworkItHasARollbackJournal)
{
    const auto hasLog = [](const veltest::TemporaryPractice& practice) {
        return practice.ReadFile("patients.db")[19] == 2;
    };
    TestDatabase database;
    EXPECT_TRUE(hasLog(database.practice));
    dbCPatients::Close();
    database.practice.Set("Environment", "DatabaseOnNetwork", "0");
    veltest::ChildProcess local("holdOpen", {database.Path(), database.practice.Path("go")});
    ASSERT_TRUE(WaitFor(database.practice.Path("go")));
    database.practice.Set("Environment", "DatabaseOnNetwork", "1");
    EXPECT_EQ(ErrorOf([&] { dbCPatients::Open(database.Path().c_str()); }), dbErrNetwork);
    EXPECT_TRUE(hasLog(database.practice));
    local.Kill();
    local.Wait();
    dbCPatients::Open(database.Path().c_str());
    EXPECT_FALSE(hasLog(database.practice));
    NewPatient("A1").Save();
    EXPECT_FALSE(std::filesystem::exists(database.Path() + "-wal"));

    // Another seat, here as there, works with it as it is.
    database.practice.Set("Environment", "DatabaseOnNetwork", "0");
    std::filesystem::remove(database.practice.Path("go"));
    veltest::ChildProcess other("holdOpen", {database.Path(), database.practice.Path("go")});
    ASSERT_TRUE(WaitFor(database.practice.Path("go")));
    NewPatient("A2").Save();
    EXPECT_EQ(dbCPatients().GetCount(), 2);
    EXPECT_FALSE(hasLog(database.practice));
    dbCPatients::Close();
    database.practice.Set("Environment", "DatabaseOnNetwork", "1");
    dbCPatients::Create(database.practice.Path("remote.db").c_str());
    NewPatient("A1").Save();
    EXPECT_EQ(database.practice.ReadFile("remote.db")[19], 1);
}

TEST(Database, ACommitThatAReaderHoldsUpIsRefusedAndCanBeRepeated)
{
    TestDatabase database;
    dbCPatients::Close();
    database.practice.Set("Environment", "DatabaseOnNetwork", "1");
    dbCPatients::Open(database.Path().c_str());
    sqlite3* pReader = nullptr;
    ASSERT_EQ(sqlite3_open(database.Path().c_str(), &pReader), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(pReader, "BEGIN; SELECT count(*) FROM patients", nullptr, nullptr, nullptr),
              SQLITE_OK);
    dbCPatient patient = NewPatient("A1");
    EXPECT_EQ(ErrorOf([&] { patient.Save(); }), dbErrLocked);
    EXPECT_FALSE(patient.IsValid());
    EXPECT_FALSE(dbCTransaction::IsActive());
    sqlite3_close(pReader);
    const __int64 nChanges = dbCPatients::GetChangeCounter();
    EXPECT_EQ(dbCPatients::GetChangeCounter(), nChanges);
    patient.Save();
    EXPECT_NE(dbCPatients::GetChangeCounter(), nChanges);
    EXPECT_TRUE(dbCPatient().Load("A1"));
}

TEST(Database, RecognisesGUIDs)
{
    EXPECT_TRUE(dbCPatients::IsGUID(dbNewGUID()));
    EXPECT_TRUE(dbCPatients::IsGUID("{0123abcd-0000-0000-0000-00000000FFFF}"));
    for (const char* psz :
         {"", "A1", "0123abcd-0000-0000-0000-00000000FFFF", "{0123abcd-0000-0000-0000-00000000FFFG}",
          "{0123abcd-0000-0000-0000-00000000FFFF} "})
        EXPECT_FALSE(dbCPatients::IsGUID(psz)) << psz;
    EXPECT_FALSE(dbCPatients::IsGUID(nullptr));
    EXPECT_TRUE(InitVelPatDLL(1));
    EXPECT_FALSE(InitVelPatDLL(2));
}
} // namespace

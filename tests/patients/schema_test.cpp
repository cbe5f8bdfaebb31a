// Versions of the database: older ones are brought forward, newer ones refused.

#include "suite/patients/store/dbschema.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace
{
constexpr dbSMigration TO_2{"ALTER TABLE persons ADD COLUMN colour TEXT NOT NULL DEFAULT 'blue';"
                            "UPDATE persons SET colour = 'red' WHERE lastName = 'Lee'"};
constexpr dbSMigration TO_3{"CREATE TABLE extra (id INTEGER PRIMARY KEY, person INTEGER REFERENCES persons);"
                            "INSERT INTO extra (person) SELECT id FROM persons"};
constexpr dbSMigration BROKEN{"CREATE TABLE half (id INTEGER PRIMARY KEY); INSERT INTO nowhere VALUES (1)"};

std::vector<dbSMigration> StepsAnd(std::initializer_list<dbSMigration> more)
{
    std::vector<dbSMigration> steps(dbSchemaSteps().begin(), dbSchemaSteps().end());
    steps.insert(steps.end(), more);
    return steps;
}

dbError Update(const std::string& path, const std::vector<dbSMigration>& steps)
{
    try
    {
        dbCSqliteSession connection(path.c_str(), dbCSqliteSession::Mode::Open);
        dbUpdateSchema(connection, steps);
    }
    catch (dbCException* e)
    {
        const dbError nError = e->GetError();
        e->Delete();
        return nError;
    }
    return dbErrNone;
}

__int64 Ask(const std::string& path, const char* pszSql)
{
    dbCSqliteSession connection(path.c_str(), dbCSqliteSession::Mode::Open);
    return connection.QueryInt(pszSql);
}

struct OldDatabase
{
    OldDatabase() : path(practice.Path("old.db"))
    {
        dbCSqliteSession connection(path.c_str(), dbCSqliteSession::Mode::Create);
        dbCreateSchema(connection);
        connection.Execute("INSERT INTO persons VALUES (1, 'G', '', 'Ann', 'Lee', '', '', '', '', NULL, 1)");
    }
    veltest::TemporaryPractice practice;
    std::string path;
};

TEST(Schema, AnOlderDatabaseIsBroughtForwardWithItsData)
{
    const OldDatabase old;
    EXPECT_EQ(Update(old.path, StepsAnd({TO_2, TO_3})), dbErrNone);
    EXPECT_EQ(Ask(old.path, "PRAGMA user_version"), static_cast<__int64>(dbSchemaSteps().size()) + 2);
    EXPECT_EQ(
        Ask(old.path,
            "SELECT count(*) FROM persons JOIN extra ON extra.person = persons.id WHERE colour = 'red'"),
        1);
    EXPECT_EQ(Update(old.path, StepsAnd({TO_2, TO_3})), dbErrNone) << "once is enough";
    EXPECT_EQ(Ask(old.path, "SELECT count(*) FROM extra"), 1);
}

TEST(Schema, WhatAnEarlierVersionLeftToDoIsStillDone)
{
    const veltest::TemporaryPractice practice;
    const std::string path = practice.Path("old.db");
    {
        dbCSqliteSession connection(path.c_str(), dbCSqliteSession::Mode::Create);
        dbCreateSchema(connection, dbSchemaSteps().first(4));
        connection.Execute(
            "INSERT INTO persons VALUES (1, 'G1', '', '', '', '', '', '', '', NULL, 0),"
            " (2, 'G2', '', '', '', '', '', '', '', NULL, 0), (5, 'G5', '', '', '', '', '', '', '', NULL, 0),"
            " (7, 'G7', '', '', '', '', '', '', '', NULL, 0);"
            "INSERT INTO patients VALUES (1, 'A1', '', '', '', 0, 0, '', '', '', NULL, NULL, '', 0, NULL, 0, 8),"
            " (5, 'B2', '', '', '', 0, 0, '', '', '', NULL, NULL, '', 0, NULL, 1, 3);"
            "INSERT INTO patientPersons VALUES (1, 0, 2), (5, 0, 7); INSERT INTO fileRenames VALUES (1, 'X', 'A1')");
    }
    EXPECT_EQ(Update(path, StepsAnd({})), dbErrNone);
    EXPECT_EQ(Ask(path, "SELECT group_concat(id) = '1,2' FROM (SELECT id FROM persons ORDER BY id)"), 1);
    EXPECT_EQ(Ask(path, "SELECT count(*) FROM patients WHERE patientID = 'A1'"), 1);
    EXPECT_EQ(Ask(path, "SELECT count(*) FROM fileWork WHERE kind = 1 AND patientID = 'X' AND newID = 'A1'"), 1);
    EXPECT_EQ(Ask(path, "SELECT count(*) FROM fileWork WHERE kind = 2 AND patientID = 'B2' AND listed = 0"), 1);
    EXPECT_EQ(Ask(path, "SELECT last FROM counters WHERE name = 'persons'"), 7);
    EXPECT_EQ(Ask(path, "SELECT last FROM counters WHERE name = 'versions'"), 8);
}

TEST(Schema, AFailingStepLeavesTheOldVersion)
{
    const OldDatabase old;
    const __int64 nVersion = Ask(old.path, "PRAGMA user_version");
    EXPECT_NE(Update(old.path, StepsAnd({TO_2, BROKEN})), dbErrNone);
    EXPECT_EQ(Ask(old.path, "PRAGMA user_version"), nVersion);
    EXPECT_EQ(Ask(old.path, "SELECT count(*) FROM pragma_table_info('persons') WHERE name = 'colour'"), 0);
    EXPECT_EQ(Ask(old.path, "SELECT count(*) FROM sqlite_schema WHERE name = 'half'"), 0);
}

TEST(Schema, NewerOrForeignIsRefused)
{
    const OldDatabase old;
    ASSERT_EQ(Update(old.path, StepsAnd({TO_2})), dbErrNone);
    EXPECT_EQ(Update(old.path, StepsAnd({})), dbErrNewerVersion);
    EXPECT_EQ(Ask(old.path, "PRAGMA user_version"), static_cast<__int64>(dbSchemaSteps().size()) + 1);

    const std::string foreign = old.practice.Path("foreign.db");
    {
        dbCSqliteSession connection(foreign.c_str(), dbCSqliteSession::Mode::Create);
        connection.Execute("CREATE TABLE t (x); PRAGMA user_version = 1");
    }
    EXPECT_EQ(Update(foreign, StepsAnd({})), dbErrNotPatients);
    EXPECT_FALSE(std::filesystem::exists(foreign + "-wal"));
}

TEST(Schema, AnotherComputersFileIsKnownByItsNameOrDrive)
{
    const struct
    {
        const char* pszPath;
        UINT nDriveType;
        bool bRemote;
    } cases[] = {
        {R"(C:\a.db)", DRIVE_FIXED, false},           {R"(P:\a.db)", DRIVE_REMOTE, true},
        {R"(\\srv\p\a.db)", DRIVE_NO_ROOT_DIR, true}, {R"(\\?\C:\a.db)", DRIVE_FIXED, false},
        {R"(\\.\C:\a.db)", DRIVE_FIXED, false},       {R"(\\?\unc\srv\p\a.db)", DRIVE_NO_ROOT_DIR, true}};
    for (const auto& c : cases)
        EXPECT_EQ(dbIsRemote(c.pszPath, c.nDriveType), c.bRemote) << c.pszPath;
}

TEST(Schema, SettingsOfTheConnection)
{
    const OldDatabase old;
    EXPECT_EQ(Ask(old.path, "PRAGMA foreign_keys"), 1);
    EXPECT_EQ(Ask(old.path, "SELECT count(*) FROM pragma_journal_mode WHERE journal_mode = 'wal'"), 1);
    EXPECT_EQ(Ask(old.path, "PRAGMA busy_timeout"), 5000);
    old.practice.Set("Environment", "DatabaseTimeout", "1234");
    EXPECT_EQ(Ask(old.path, "PRAGMA busy_timeout"), 1234);
    old.practice.Set("Environment", "DatabaseTimeout", "-1");
    EXPECT_EQ(Ask(old.path, "PRAGMA busy_timeout"), 0);
}
} // namespace

#pragma once

#include "app/exports/veldlgs.h"
#include "maintenance/maintenanceres.h"
#include "suite/patients/records/dbkeywords.h"
#include "tests/support/dialogscript.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>

#include <sqlite3.h>

#include <string>
#include <vector>

/// A practice with an empty database whose keyword lists a test fills and reads.
class KeywordPractice : public testing::Test
{
protected:
    void SetUp() override
    {
        dbCPatients::Create(m_practice.Path("patients.db").c_str());
    }
    void TearDown() override
    {
        dbCPatients::Close();
    }

    static void Store(int nList, const std::vector<std::string>& words)
    {
        CKeywords keywords;
        ASSERT_TRUE(keywords.Load(nList));
        for (const std::string& word : words)
            keywords.Add(word.c_str());
        keywords.Save();
    }

    /// Runs SQL on the database as another program would; answers the first column of what it selects.
    std::vector<std::string> Sql(const std::string& sql) const
    {
        std::vector<std::string> values;
        const auto row = [](void* out, int, char** columns, char**) {
            static_cast<std::vector<std::string>*>(out)->emplace_back(columns[0]);
            return 0;
        };
        sqlite3* database = nullptr;
        sqlite3_open(m_practice.Path("patients.db").c_str(), &database);
        EXPECT_EQ(sqlite3_exec(database, sql.c_str(), row, &values, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database);
        sqlite3_close(database);
        return values;
    }

    /// The words of a list as the file holds them, in UTF-8.
    std::vector<std::string> Stored(int nList) const
    {
        return Sql("SELECT word FROM keywords WHERE list = " + std::to_string(nList) + " ORDER BY id");
    }

    veltest::TemporaryPractice m_practice;
};

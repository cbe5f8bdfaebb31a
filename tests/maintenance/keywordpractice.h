#pragma once

#include "app/exports/veldlgs.h"
#include "maintenance/maintenanceres.h"
#include "suite/patients/records/dbkeywords.h"
#include "tests/support/dialogscript.h"
#include "tests/support/sql.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>

/// A practice with an empty database whose keyword lists a test fills and reads.
class KeywordPractice : public testing::Test
{
protected:
    KeywordPractice()
    {
        dbCPatients::Create(m_practice.Path("patients.db").c_str());
    }
    ~KeywordPractice() override
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

    std::vector<std::string> Sql(const std::string& sql) const
    {
        return veltest::RunSql(m_practice.Path("patients.db"), sql);
    }

    /// The words of a list as the file holds them, in UTF-8.
    std::vector<std::string> Stored(int nList) const
    {
        return Sql("SELECT word FROM keywords WHERE list = " + std::to_string(nList) + " ORDER BY id");
    }

    veltest::TemporaryPractice m_practice;
};

#pragma once

#include "suite/patients/records/dbkeywords.h"
#include "suite/patients/records/dbpatients.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

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

    static std::vector<std::string> Stored(int nList)
    {
        CKeywords keywords;
        EXPECT_TRUE(keywords.Load(nList));
        std::vector<std::string> words;
        CString word;
        for (keywords.MoveFirst(); keywords.GetNext(word);)
            words.push_back(word.GetString());
        return words;
    }

    veltest::TemporaryPractice m_practice;
};

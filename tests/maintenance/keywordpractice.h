#pragma once

#include "suite/patients/records/dbkeywords.h"
#include "tests/maintenance/patientpractice.h"

/// A practice whose keyword lists a test fills and reads.
class KeywordPractice : public PatientPractice
{
protected:
    static void Store(int nList, const std::vector<std::string>& words)
    {
        CKeywords keywords;
        ASSERT_TRUE(keywords.Load(nList));
        for (const std::string& word : words)
            keywords.Add(word.c_str());
        keywords.Save();
    }

    /// The words of a list as the file holds them, in UTF-8.
    std::vector<std::string> Stored(int nList) const
    {
        return Sql("SELECT word FROM keywords WHERE list = " + std::to_string(nList) + " ORDER BY id");
    }
};

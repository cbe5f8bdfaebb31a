#include "patient/rules/chartrules.h"
#include "patient/patientres.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace
{

TEST(ChartRules, EveryCharacterOfTheIDIsJudged)
{
    const std::string valid = "_-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (int c = 0; c < 256; ++c)
    {
        const char character = static_cast<char>(c);
        for (const std::string& id :
             {std::string(1, character), std::string("A") + character, std::string(1, character) + "9"})
        {
            const bool bValid = valid.find(character) != std::string::npos;
            const pat::Finding finding = pat::CheckID(id);
            EXPECT_EQ(finding.bPassed, bValid) << "character " << c;
            EXPECT_EQ(finding.nMessage, bValid ? 0u : IDS_PATIENT_ID_INVALID) << "character " << c;
        }
    }
}

TEST(ChartRules, ALongIDFailsWithoutAMessageWhateverItsCharacters)
{
    EXPECT_TRUE(pat::CheckID(std::string(25, 'Z')).bPassed);
    for (const std::string& id : {std::string(26, 'Z'), std::string(26, 'z'), std::string(10000, '%')})
    {
        const pat::Finding finding = pat::CheckID(id);
        EXPECT_FALSE(finding.bPassed) << id.size();
        EXPECT_EQ(finding.nMessage, 0u) << id.size();
    }
}

TEST(ChartRules, DevicesAreNoIDs)
{
    for (const char* id : {"AUX", "CON", "NUL", "PRN", "COM0", "COM9", "LPT1"})
        EXPECT_TRUE(pat::IsDeviceID(id)) << id;
    for (const char* id : {"", "A", "AUX1", "CONS", "COM", "COMA", "COM10", "LPT", "LPT_", "XCOM1", "1AUX"})
        EXPECT_FALSE(pat::IsDeviceID(id)) << id;
}

// The codes are stored: other programs read them.
TEST(ChartRules, ListsNameEveryCodeOnce)
{
    std::map<std::string, int> races;
    for (const pat::Code& race : pat::Races)
        races[race.pszText] = race.nCode;
    EXPECT_EQ(races, (std::map<std::string, int>{{"<N/A>", 0},
                                                 {"Anglo American", 1},
                                                 {"Japanese", 2},
                                                 {"Chinese", 3},
                                                 {"Hispanic", 4},
                                                 {"African American", 5},
                                                 {"Asian", 6},
                                                 {"South Pacific", 7},
                                                 {"American Indian", 8},
                                                 {"Korean", 9}}));
    for (std::size_t i = 2; i < pat::Races.size(); ++i)
        EXPECT_LT(std::string(pat::Races[i - 1].pszText), pat::Races[i].pszText);
    for (std::size_t i = 0; i < pat::GenderIdentities.size(); ++i)
        EXPECT_EQ(pat::GenderIdentities[i].nCode, static_cast<int>(i));
}

TEST(ChartRules, OnlyAnExistingPatientKeepsItsID)
{
    EXPECT_TRUE(pat::IsOwnID(false, "AB-1", "AB-1"));
    EXPECT_TRUE(pat::IsOwnID(false, "AB-1", "ab-1"));
    EXPECT_FALSE(pat::IsOwnID(false, "AB-1", "AB-12"));
    EXPECT_FALSE(pat::IsOwnID(false, "AB-12", "AB-1"));
    EXPECT_FALSE(pat::IsOwnID(false, "A[", "A{")); // one bit apart, as letters of two cases are
    EXPECT_FALSE(pat::IsOwnID(true, "AB-1", "AB-1"));
    EXPECT_FALSE(pat::IsOwnID(true, "AB-1", ""));
}

} // namespace

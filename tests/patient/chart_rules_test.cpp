#include "patient/rules/chartrules.h"
#include "patient/patientres.h"

#include <gtest/gtest.h>

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
            EXPECT_EQ(pat::CheckID(id).bPassed, bValid) << "character " << c;
            EXPECT_EQ(pat::CheckID(id).nMessage, bValid ? 0u : IDS_PATIENT_ID_INVALID) << "character " << c;
        }
    }
    EXPECT_TRUE(pat::CheckID(std::string(25, 'Z')).bPassed);
    for (const std::string& tooLong : {std::string(26, 'Z'), std::string(26, 'z'), std::string(10000, '%')})
    {
        EXPECT_FALSE(pat::CheckID(tooLong).bPassed) << tooLong.size();
        EXPECT_EQ(pat::CheckID(tooLong).nMessage, 0u) << "fails without a message";
    }
}

TEST(ChartRules, DevicesAreNoIDs)
{
    for (const char* id : {"AUX", "CON", "NUL", "PRN", "COM0", "COM9", "LPT1"})
        EXPECT_TRUE(pat::IsDeviceID(id)) << id;
    for (const char* id : {"", "A", "AUX1", "CONS", "COM", "COMA", "COM10", "LPT", "LPT_", "XCOM1", "1AUX"})
        EXPECT_FALSE(pat::IsDeviceID(id)) << id;
}

// The codes are stored: other programs read them. <N/A> comes first, then the alphabet.
TEST(ChartRules, ListsNameEveryCodeOnce)
{
    std::string races;
    for (const pat::Code& race : pat::Races)
        races += std::to_string(race.nCode) + " " + race.pszText + ", ";
    EXPECT_EQ(races, "0 <N/A>, 5 African American, 8 American Indian, 1 Anglo American, 6 Asian, 3 Chinese, "
                     "4 Hispanic, 2 Japanese, 9 Korean, 7 South Pacific, ");
    for (std::size_t i = 0; i < pat::GenderIdentities.size(); ++i)
        EXPECT_EQ(pat::GenderIdentities[i].nCode, static_cast<int>(i));
}

TEST(ChartRules, OnlyAnExistingPatientKeepsItsID)
{
    for (const char* own : {"AB-1", "ab-1"})
        EXPECT_TRUE(pat::IsOwnID(false, "AB-1", own));
    for (const char* other :
         {"AB-12", "AB", "AB\r1"}) // "\r" is one bit from "-", as letters of two cases are
        EXPECT_FALSE(pat::IsOwnID(false, "AB-1", other)) << other;
    EXPECT_FALSE(pat::IsOwnID(true, "AB-1", "AB-1"));
}

} // namespace

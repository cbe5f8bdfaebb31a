#include "patient/chartrules.h"
#include "patient/patientres.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace
{

struct RequiredCase
{
    std::string id;
    std::string firstname;
    std::string lastname;
    unsigned nControl; // 0: passes
};

TEST(ChartRules, RequiredFieldsNameTheFirstEmptyOne)
{
    const RequiredCase cases[] = {
        {"A1", "Ann", "Lee", 0},
        {"", "Ann", "Lee", IDC_CHART_ID},
        {"A1", "", "Lee", IDC_CHART_FIRSTNAME},
        {"A1", "Ann", "", IDC_CHART_LASTNAME},
        {"", "", "", IDC_CHART_ID},
        {" ", " ", "\t", 0}, // not trimmed: blanks count as entered
        {"A1", "\xC4", std::string(1, '\x01'), 0},
    };
    for (const RequiredCase& c : cases)
    {
        SCOPED_TRACE(c.id + "|" + c.firstname + "|" + c.lastname);
        const pat::Finding finding = pat::CheckRequired(c.id, c.firstname, c.lastname);
        EXPECT_EQ(finding.bPassed, c.nControl == 0);
        EXPECT_EQ(finding.nControl, c.nControl);
        EXPECT_EQ(finding.nMessage, c.nControl == 0 ? 0u : IDS_PATIENT_REQUIRED);
    }
}

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

TEST(ChartRules, APhoneNumberNeedsAType)
{
    EXPECT_TRUE(pat::CheckPhone("", false, 1, IDC_CHART_PHONETYPE1).bPassed);
    EXPECT_TRUE(pat::CheckPhone("", true, 1, IDC_CHART_PHONETYPE1).bPassed);
    EXPECT_TRUE(pat::CheckPhone("555", true, 2, IDC_CHART_PHONETYPE2).bPassed);

    const pat::Finding finding = pat::CheckPhone(" ", false, 2, IDC_CHART_PHONETYPE2);
    EXPECT_FALSE(finding.bPassed);
    EXPECT_EQ(finding.nMessage, static_cast<unsigned>(IDS_PATIENT_PHONE_TYPE));
    EXPECT_EQ(finding.nControl, static_cast<unsigned>(IDC_CHART_PHONETYPE2));
    EXPECT_EQ(finding.strArgument, "2");
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

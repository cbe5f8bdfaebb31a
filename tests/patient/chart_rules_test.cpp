#include "patient/chartrules.h"
#include "patient/patientres.h"

#include <gtest/gtest.h>

#include <set>
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
        const patFinding finding = patCheckRequired(c.id, c.firstname, c.lastname);
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
            const patFinding finding = patCheckID(id);
            EXPECT_EQ(finding.bPassed, bValid) << "character " << c;
            EXPECT_EQ(finding.nMessage, bValid ? 0u : IDS_PATIENT_ID_INVALID) << "character " << c;
        }
    }
}

TEST(ChartRules, ALongIDFailsWithoutAMessageWhateverItsCharacters)
{
    EXPECT_TRUE(patCheckID(std::string(25, 'Z')).bPassed);
    for (const std::string& id : {std::string(26, 'Z'), std::string(26, 'z'), std::string(10000, '%')})
    {
        const patFinding finding = patCheckID(id);
        EXPECT_FALSE(finding.bPassed) << id.size();
        EXPECT_EQ(finding.nMessage, 0u) << id.size();
    }
}

TEST(ChartRules, APhoneNumberNeedsAType)
{
    EXPECT_TRUE(patCheckPhone("", false, 1, IDC_CHART_PHONETYPE1).bPassed);
    EXPECT_TRUE(patCheckPhone("", true, 1, IDC_CHART_PHONETYPE1).bPassed);
    EXPECT_TRUE(patCheckPhone("555", true, 2, IDC_CHART_PHONETYPE2).bPassed);

    const patFinding finding = patCheckPhone(" ", false, 2, IDC_CHART_PHONETYPE2);
    EXPECT_FALSE(finding.bPassed);
    EXPECT_EQ(finding.nMessage, static_cast<unsigned>(IDS_PATIENT_PHONE_TYPE));
    EXPECT_EQ(finding.nControl, static_cast<unsigned>(IDC_CHART_PHONETYPE2));
    EXPECT_EQ(finding.strArgument, "2");
}

TEST(ChartRules, OnlyAnExistingPatientKeepsItsID)
{
    EXPECT_TRUE(patIsOwnID(false, "AB-1", "AB-1"));
    EXPECT_TRUE(patIsOwnID(false, "AB-1", "ab-1"));
    EXPECT_FALSE(patIsOwnID(false, "AB-1", "AB-12"));
    EXPECT_FALSE(patIsOwnID(false, "AB-12", "AB-1"));
    EXPECT_FALSE(patIsOwnID(false, "A[", "A{")); // one bit apart, as letters of two cases are
    EXPECT_FALSE(patIsOwnID(true, "AB-1", "AB-1"));
    EXPECT_FALSE(patIsOwnID(true, "AB-1", ""));
}

TEST(ChartRules, CodesAreFoundInTheirLists)
{
    std::set<int> codes;
    for (std::size_t i = 0; i < patRaces.size(); ++i)
    {
        EXPECT_EQ(patFindCode(patRaces, patRaces[i].nCode), static_cast<int>(i));
        codes.insert(patRaces[i].nCode);
        if (i > 1)
        {
            EXPECT_LT(std::string(patRaces[i - 1].pszText), patRaces[i].pszText);
        }
    }
    EXPECT_EQ(codes, (std::set<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_STREQ(patRaces[static_cast<std::size_t>(patFindCode(patRaces, 7))].pszText, "South Pacific");
    for (std::size_t i = 0; i < patGenderIdentities.size(); ++i)
        EXPECT_EQ(patGenderIdentities[i].nCode, static_cast<int>(i)); // index and stored value are one
    EXPECT_EQ(patFindCode(patRaces, 10), 0);
    EXPECT_EQ(patFindCode(patGenderIdentities, -1), 0);
}

} // namespace

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

TEST(ChartRules, CodesAreFoundInTheirLists)
{
    std::set<int> codes;
    for (std::size_t i = 0; i < pat::Races.size(); ++i)
    {
        EXPECT_EQ(pat::FindCode(pat::Races, pat::Races[i].nCode), static_cast<int>(i));
        codes.insert(pat::Races[i].nCode);
        if (i > 1)
        {
            EXPECT_LT(std::string(pat::Races[i - 1].pszText), pat::Races[i].pszText);
        }
    }
    EXPECT_EQ(codes, (std::set<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_STREQ(pat::Races[static_cast<std::size_t>(pat::FindCode(pat::Races, 7))].pszText, "South Pacific");
    for (std::size_t i = 0; i < pat::GenderIdentities.size(); ++i)
        EXPECT_EQ(pat::GenderIdentities[i].nCode, static_cast<int>(i)); // index and stored value are one
    EXPECT_EQ(pat::FindCode(pat::Races, 10), 0);
    EXPECT_EQ(pat::FindCode(pat::GenderIdentities, -1), 0);
}

} // namespace

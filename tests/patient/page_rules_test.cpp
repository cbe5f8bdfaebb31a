// The rules of the sheet and of its pages without rows.

#include "patient/detailsres.h"
#include "patient/patientres.h"
#include "patient/rules/chartrules.h"
#include "patient/rules/detailrules.h"
#include "patient/rules/guardianrules.h"
#include "patient/rules/sheetrules.h"

#include <gmock/gmock.h>
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

using Field = std::string_view pat::GuardianTexts::*;

constexpr Field otherFields[] = {
    &pat::GuardianTexts::nickname, &pat::GuardianTexts::title,      &pat::GuardianTexts::notes,
    &pat::GuardianTexts::company,  &pat::GuardianTexts::street,     &pat::GuardianTexts::city,
    &pat::GuardianTexts::state,    &pat::GuardianTexts::postalCode, &pat::GuardianTexts::email,
    &pat::GuardianTexts::phone1,   &pat::GuardianTexts::phone2,
};

TEST(GuardianRules, AnyOtherFieldNeedsBothNames)
{
    EXPECT_TRUE(pat::CheckGuardian({}).bPassed);
    for (const Field field : otherFields)
    {
        pat::GuardianTexts guardian;
        guardian.*field = " ";
        EXPECT_FALSE(pat::IsGuardianEmpty(guardian));
        const pat::Finding finding = pat::CheckGuardian(guardian);
        EXPECT_FALSE(finding.bPassed);
        EXPECT_EQ(finding.nMessage, static_cast<unsigned>(IDS_GUARDIAN_NAMES));

        guardian.firstname = "Eve";
        EXPECT_EQ(pat::CheckGuardian(guardian).nControl, static_cast<unsigned>(IDC_GUARD_LASTNAME));
        guardian.lastname = "Lee";
        EXPECT_TRUE(pat::CheckGuardian(guardian).bPassed);
        guardian.firstname = {};
        EXPECT_EQ(pat::CheckGuardian(guardian).nControl, static_cast<unsigned>(IDC_GUARD_FIRSTNAME));
    }
}

TEST(DoctorRules, NamesAreJoinedAndTheFamilyNameIsNeeded)
{
    EXPECT_EQ(pat::DoctorName("Lee", "Ann"), "Lee, Ann");
    EXPECT_EQ(pat::DoctorName("", "Ann"), "Ann");
    EXPECT_TRUE(pat::CheckDoctorName("Lee", 7).bPassed);
    EXPECT_FALSE(pat::CheckDoctorName(" \t", 7).bPassed);
}

TEST(EmailCheck, AnAddressStandsOnceAndIsNotLost)
{
    const std::vector<std::string> emails{"a@b.c", "d@e.f"};
    EXPECT_TRUE(pat::CheckEmailOnce("a@b.d", emails, 2, 7).bPassed);
    EXPECT_TRUE(pat::CheckEmailOnce("A@b.c", emails, 0, 7).bPassed);
    const pat::Finding finding = pat::CheckEmailOnce("D@E.F", emails, 0, 7);
    EXPECT_EQ(finding.nMessage, static_cast<unsigned>(IDS_EMAIL_TWICE));
    EXPECT_EQ(finding.strArgument, "D@E.F");
    EXPECT_EQ(pat::JoinEmails("D@e.f", emails), (std::vector<std::string>{"D@e.f", "a@b.c"}));
    EXPECT_EQ(pat::JoinEmails("", emails), emails);
    EXPECT_TRUE(pat::CheckEmailAdded("", emails, 7).bPassed);
    EXPECT_TRUE(pat::CheckEmailAdded("d@e.f", emails, 7).bPassed);
    EXPECT_EQ(pat::CheckEmailAdded("D@e.f", emails, 7).nMessage, static_cast<unsigned>(IDS_EMAIL_UNFINISHED));
}

TEST(DoctorCheck, EmailIsEmptyOrComplete)
{
    for (const char* email : {"", "a@b", "ann.lee@practice.com", "o'hara+x@practice.example"})
        EXPECT_TRUE(pat::CheckEmail(email, 7).bPassed) << email;
    for (const char* email :
         {" ", "ann", "@", "ann@", "@practice.com", "a@b@c", "ann lee@practice.com", "a@b "})
        EXPECT_EQ(pat::CheckEmail(email, 7).nMessage, static_cast<unsigned>(IDS_DOCTOR_EMAIL_INVALID))
            << email;
}

TEST(SheetRules, EveryStepInItsOrder)
{
    pat::SheetState state;
    state.opened = {true, true, true, true, true};
    state.nPracticeManagement = 1;
    state.guardianLastname = "  ";
    EXPECT_THAT(pat::StepsOfOK(state),
                testing::ElementsAre(pat::Step::ChartFields, pat::Step::UniqueID, pat::Step::GuardianFields,
                                     pat::Step::ReferralFields, pat::Step::ReferralDates,
                                     pat::Step::InsuranceFields, pat::Step::SimilarPatient,
                                     pat::Step::BillingParty));
}

TEST(SheetRules, TheBillingPartyIsAskedForOnlyWhenNeeded)
{
    const std::tuple<int, bool, const char*, bool> cases[] = {
        {0, true, "", false},         {1, false, "Lee", true},        {1, true, "", true},
        {1, true, " Lee\r\n", false}, {1, true, " \t\r\n\v\f", true}, {-1, true, "", true},
        {1, true, "\xA0", false}}; // a no-break space is no blank in this code page's C locale
    for (const auto& [practiceManagement, guardianOpened, lastname, asked] : cases)
    {
        pat::SheetState state;
        state.bNewPatient = false;
        state.opened[pat::GuardianPage] = guardianOpened;
        state.nPracticeManagement = practiceManagement;
        state.guardianLastname = lastname;
        EXPECT_EQ(pat::StepsOfOK(state).back() == pat::Step::BillingParty, asked)
            << practiceManagement << guardianOpened << lastname;
    }
}

} // namespace

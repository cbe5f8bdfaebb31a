#include "patient/rules/guardianrules.h"
#include "patient/patientres.h"

#include <gtest/gtest.h>

namespace
{

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

} // namespace

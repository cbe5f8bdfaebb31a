#include "patient/guardianrules.h"
#include "patient/patientres.h"

#include <gtest/gtest.h>

namespace
{

using Field = std::string_view patGuardianTexts::*;

constexpr Field otherFields[] = {
    &patGuardianTexts::nickname, &patGuardianTexts::title,      &patGuardianTexts::notes,
    &patGuardianTexts::company,  &patGuardianTexts::street,     &patGuardianTexts::city,
    &patGuardianTexts::state,    &patGuardianTexts::postalCode, &patGuardianTexts::email,
    &patGuardianTexts::phone1,   &patGuardianTexts::phone2,
};

TEST(GuardianRules, AnEmptyPageIsNoGuardian)
{
    EXPECT_TRUE(patIsGuardianEmpty({}));
    EXPECT_TRUE(patCheckGuardian({}).bPassed);
}

TEST(GuardianRules, AnyOtherFieldNeedsBothNames)
{
    for (const Field field : otherFields)
    {
        patGuardianTexts guardian;
        guardian.*field = " ";
        EXPECT_FALSE(patIsGuardianEmpty(guardian));
        const patFinding finding = patCheckGuardian(guardian);
        EXPECT_FALSE(finding.bPassed);
        EXPECT_EQ(finding.nMessage, static_cast<unsigned>(IDS_GUARDIAN_NAMES));

        guardian.firstname = "Eve";
        EXPECT_EQ(patCheckGuardian(guardian).nControl, static_cast<unsigned>(IDC_GUARD_LASTNAME));
        guardian.lastname = "Lee";
        EXPECT_TRUE(patCheckGuardian(guardian).bPassed);
        guardian.firstname = {};
        EXPECT_EQ(patCheckGuardian(guardian).nControl, static_cast<unsigned>(IDC_GUARD_FIRSTNAME));
    }
}

TEST(GuardianRules, OneNameAloneIsNotEnough)
{
    patGuardianTexts guardian;
    guardian.firstname = "Eve";
    EXPECT_FALSE(patCheckGuardian(guardian).bPassed);
    guardian = {};
    guardian.lastname = "Lee";
    EXPECT_FALSE(patCheckGuardian(guardian).bPassed);
    guardian.firstname = " "; // not trimmed here
    EXPECT_TRUE(patCheckGuardian(guardian).bPassed);
}

TEST(GuardianRules, TheBillingPartyIsTrimmed)
{
    EXPECT_TRUE(patIsBillingParty("Lee"));
    EXPECT_TRUE(patIsBillingParty(" \t Lee\r\n"));
    EXPECT_FALSE(patIsBillingParty(""));
    EXPECT_FALSE(patIsBillingParty(" \t\r\n\v\f"));
    EXPECT_TRUE(patIsBillingParty("\xA0")); // a no-break space is no blank in this code page's C locale
}

} // namespace

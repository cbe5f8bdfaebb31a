#include "patient/rules/detailrules.h"
#include "patient/detailsres.h"

#include <gtest/gtest.h>

namespace
{

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

} // namespace

#include "patient/insurancerules.h"
#include "patient/patientres.h"
#include "patient/referralrules.h"

#include <gtest/gtest.h>

namespace
{

patReferral Referral(const char* doctorID, long day)
{
    return {"", doctorID, "Dr " + std::string(doctorID), day, ""};
}

TEST(ReferralRules, AnUnfinishedEntryIsNotLost)
{
    EXPECT_TRUE(patCheckReferralEntry({}).bPassed);
    EXPECT_EQ(patCheckReferralEntry({true, false}).nMessage, static_cast<unsigned>(IDS_REFER_UNFINISHED));
    EXPECT_EQ(patCheckReferralEntry({false, true}).nMessage, static_cast<unsigned>(IDS_REFER_UNFINISHED));
}

TEST(ReferralRules, DatesLieBetweenBirthAndToday)
{
    constexpr long today = 46000;
    constexpr long birth = 40000;
    struct Case
    {
        long nDay;
        long nBirthDay;
        bool bPassed;
    };
    for (const Case& c : {Case{today, birth, true}, Case{today + 1, birth, false}, Case{birth, birth, true},
                          Case{birth - 1, birth, false}, Case{birth - 1, 0, true}, Case{-1, 0, true},
                          Case{-1, -1, true}, Case{-2, -1, false}})
    {
        const patFinding finding =
            patCheckReferralDates({Referral("A", today), Referral("B", c.nDay)}, today, c.nBirthDay);
        EXPECT_EQ(finding.bPassed, c.bPassed) << c.nDay << " " << c.nBirthDay;
        EXPECT_EQ(finding.strArgument, c.bPassed ? "" : "Dr B");
    }
    EXPECT_TRUE(patCheckReferralDates({}, today, birth).bPassed);
}

TEST(ReferralRules, ADoctorRefersOnceADay)
{
    EXPECT_TRUE(patCheckReferralsTwice({Referral("A", 1), Referral("A", 2), Referral("B", 1)}).bPassed);
    const patFinding finding = patCheckReferralsTwice({Referral("A", 1), Referral("B", 1), Referral("A", 1)});
    EXPECT_EQ(finding.nMessage, static_cast<unsigned>(IDS_REFER_TWICE));
    EXPECT_EQ(finding.strArgument, "Dr A");
}

TEST(InsuranceRules, ACompanyInsuresUnderANumberOnce)
{
    const std::vector<patInsurance> insurances{{"", "", "Harbour Mutual", "Ann Lee", "17"},
                                               {"", "", "Northfield", "Ann Lee", ""}};
    struct Case
    {
        patInsurance entry;
        int nReplaced;
        unsigned nMessage;
    };
    const Case cases[] = {
        {{"", "", "", "Ann Lee", "18"}, -1, IDS_INSURE_NO_COMPANY},
        {{"", "", " \t", "Ann Lee", "18"}, -1, IDS_INSURE_NO_COMPANY},
        {{"", "", "Harbour Mutual", "Eve Lee", "18"}, -1, 0},
        {{"", "", "HARBOUR mutual", "Eve Lee", "17"}, -1, IDS_INSURE_TWICE},
        {{"", "", "Harbour Mutual", "Eve Lee", "17"}, 0, 0},
        {{"", "", "Harbour Mutual", "Eve Lee", "17"}, 1, IDS_INSURE_TWICE},
        {{"", "", "northfield", "", ""}, -1, IDS_INSURE_TWICE},
    };
    for (const Case& c : cases)
    {
        const patFinding finding = patCheckInsurance(c.entry, insurances, c.nReplaced);
        EXPECT_EQ(finding.bPassed, c.nMessage == 0) << c.entry.strCompany;
        EXPECT_EQ(finding.nMessage, c.nMessage) << c.entry.strCompany;
    }
    EXPECT_FALSE(patCheckInsuranceEntry(true).bPassed);
    EXPECT_TRUE(patCheckInsuranceEntry(false).bPassed);
}

} // namespace

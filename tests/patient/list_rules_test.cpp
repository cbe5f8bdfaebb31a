#include "patient/insurancerules.h"
#include "patient/patientres.h"
#include "patient/referralrules.h"

#include <gtest/gtest.h>

namespace
{

pat::Referral Referral(const char* doctorID, long day)
{
    return {"", doctorID, "Dr " + std::string(doctorID), day, ""};
}

TEST(ReferralRules, AnUnfinishedEntryIsNotLost)
{
    const pat::Referral selected{"row", "A", "Dr A", 7, "note"};
    struct Case
    {
        pat::Referral entry;
        bool bEmptyPasses;
        bool bSelectedPasses;
    };
    const Case cases[] = {
        {{"", "", "", 7, ""}, true, false}, // the date alone is no referral, but the row had more
        {{"", "A", "", 0, ""}, false, false},     {{"", "", "", 0, " "}, false, false},
        {{"", "A", "", 7, "note"}, false, true}, // the row as it is; what it is called does not count
        {{"", "B", "", 7, "note"}, false, false}, {{"", "A", "", 8, "note"}, false, false},
        {{"", "A", "", 7, ""}, false, false},
    };
    for (const Case& c : cases)
    {
        SCOPED_TRACE(c.entry.strDoctorID + "|" + std::to_string(c.entry.nDay) + "|" + c.entry.strNote);
        EXPECT_EQ(pat::CheckReferralEntry(c.entry, nullptr).bPassed, c.bEmptyPasses);
        EXPECT_EQ(pat::CheckReferralEntry(c.entry, &selected).bPassed, c.bSelectedPasses);
    }
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
                          Case{birth - 1, birth, false}, Case{birth - 1, 0, true}, Case{0, birth, true},
                          Case{-1, -1, true}, Case{-2, -1, false}})
    {
        const pat::Finding finding =
            pat::CheckReferralDates({Referral("A", today), Referral("B", c.nDay)}, today, c.nBirthDay);
        EXPECT_EQ(finding.bPassed, c.bPassed) << c.nDay << " " << c.nBirthDay;
        EXPECT_EQ(finding.strArgument, c.bPassed ? "" : "Dr B");
    }
    EXPECT_TRUE(pat::CheckReferralDates({}, today, birth).bPassed);
}

TEST(ReferralRules, ADoctorRefersOnceADay)
{
    EXPECT_TRUE(pat::CheckReferralsTwice({Referral("A", 1), Referral("A", 2), Referral("B", 1)}).bPassed);
    const pat::Finding finding =
        pat::CheckReferralsTwice({Referral("A", 1), Referral("B", 1), Referral("A", 1)});
    EXPECT_EQ(finding.nMessage, static_cast<unsigned>(IDS_REFER_TWICE));
    EXPECT_EQ(finding.strArgument, "Dr A");
}

TEST(InsuranceRules, AnUnfinishedEntryIsNotLost)
{
    const pat::Insurance selected{"row", "Harbour Mutual", "Ann Lee", "17", ""};
    EXPECT_TRUE(pat::CheckInsuranceEntry({}, nullptr).bPassed);
    EXPECT_FALSE(pat::CheckInsuranceEntry({}, &selected).bPassed);
    EXPECT_TRUE(pat::CheckInsuranceEntry({"", "Harbour Mutual", "Ann Lee", "17", ""}, &selected).bPassed);
    EXPECT_FALSE(pat::CheckInsuranceEntry({"", "", "", "", "G"}, nullptr).bPassed);
    EXPECT_FALSE(pat::CheckInsuranceEntry({"", "Harbour Mutual", "Ann Lee", "17", "G"}, &selected).bPassed);
}

TEST(InsuranceRules, ACompanyInsuresUnderANumberOnce)
{
    const std::vector<pat::Insurance> insurances{{"", "Harbour Mutual", "Ann Lee", "17", ""},
                                                 {"", "Northfield", "Ann Lee", "", ""}};
    struct Case
    {
        pat::Insurance entry;
        int nReplaced;
        unsigned nMessage;
    };
    const Case cases[] = {
        {{"", "", "Ann Lee", "18", ""}, -1, IDS_INSURE_NO_COMPANY},
        {{"", " \t", "Ann Lee", "18", ""}, -1, IDS_INSURE_NO_COMPANY},
        {{"", "Harbour Mutual", "Eve Lee", "18", ""}, -1, 0},
        {{"", "HARBOUR mutual", "Eve Lee", "17", ""}, -1, IDS_INSURE_TWICE},
        {{"", "Harbour Mutual", "Eve Lee", "17", ""}, 0, 0},
        {{"", "Harbour Mutual", "Eve Lee", "17", ""}, 1, IDS_INSURE_TWICE},
        {{"", "northfield", "", "", ""}, -1, IDS_INSURE_TWICE},
    };
    for (const Case& c : cases)
    {
        const pat::Finding finding = pat::CheckInsurance(c.entry, insurances, c.nReplaced);
        EXPECT_EQ(finding.bPassed, c.nMessage == 0) << c.entry.strCompany;
        EXPECT_EQ(finding.nMessage, c.nMessage) << c.entry.strCompany;
    }
}

} // namespace

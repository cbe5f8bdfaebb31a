#include "patient/rules/insurancerules.h"
#include "patient/patientres.h"
#include "patient/rules/referralrules.h"

#include <gtest/gtest.h>

namespace
{

pat::Referral Referral(const char* doctorID, long day)
{
    return {-1, doctorID, "Dr " + std::string(doctorID), day, ""};
}

TEST(ReferralRules, AnUnfinishedEntryIsNotLost)
{
    const pat::Referral selected{3, "A", "Dr A", 7, "note"};
    const struct
    {
        pat::Referral entry;
        bool bEmptyPasses;
        bool bSelectedPasses;
    } cases[] = {
        {{-1, "", "", 7, ""}, true, false}, // the date alone is no referral, but the row had more
        {{-1, "A", "", 0, ""}, false, false},     {{-1, "", "", 0, " "}, false, false},
        {{-1, "A", "", 7, "note"}, false, true}, // the row as it is; what it is called does not count
        {{-1, "B", "", 7, "note"}, false, false}, {{-1, "A", "", 8, "note"}, false, false},
        {{-1, "A", "", 7, ""}, false, false},
    };
    for (const auto& c : cases)
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
    const std::tuple<long, long, bool> cases[] = {
        {today, birth, true}, {today + 1, birth, false}, {birth, birth, true}, {birth - 1, birth, false},
        {birth - 1, 0, true}, {0, birth, true},          {-1, -1, true},       {-2, -1, false}};
    for (const auto& [day, birthDay, passed] : cases)
    {
        const pat::Finding finding =
            pat::CheckReferralDates({Referral("A", today), Referral("B", day)}, today, birthDay);
        EXPECT_EQ(finding.bPassed, passed) << day << " " << birthDay;
        EXPECT_EQ(finding.strArgument, passed ? "" : "Dr B");
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
    const pat::Insurance filled{-1, "Harbour Mutual", "Ann Lee", "17", ""};
    EXPECT_TRUE(pat::CheckInsuranceEntry({}, {}).bPassed);
    EXPECT_TRUE(pat::CheckInsuranceEntry(filled, filled).bPassed);
    for (std::string pat::Insurance::*const field : {&pat::Insurance::strCompany, &pat::Insurance::strHolder,
                                                     &pat::Insurance::strNumber, &pat::Insurance::strGroup})
    {
        pat::Insurance entry = filled;
        entry.*field += "x";
        EXPECT_EQ(pat::CheckInsuranceEntry(entry, filled).nMessage,
                  static_cast<unsigned>(IDS_INSURE_UNFINISHED));
    }
}

TEST(InsuranceRules, ACompanyInsuresUnderANumberOnce)
{
    const std::vector<pat::Insurance> insurances{{-1, "Harbour Mutual", "Ann Lee", "17", ""},
                                                 {-1, "Northfield", "Ann Lee", "", ""},
                                                 {-1, "M\xFCller ", "Ann Lee", "1", ""}};
    const std::tuple<pat::Insurance, int, unsigned> cases[] = {
        {{-1, "", "Ann Lee", "18", ""}, -1, IDS_INSURE_NO_COMPANY},
        {{-1, " \t", "Ann Lee", "18", ""}, -1, IDS_INSURE_NO_COMPANY},
        {{-1, "Harbour Mutual", "Eve Lee", "18", ""}, -1, 0},
        {{-1, "HARBOUR mutual", "Eve Lee", "17", ""}, -1, IDS_INSURE_TWICE},
        {{-1, "Harbour Mutual", "Eve Lee", "17", ""}, 0, 0},
        {{-1, "Harbour Mutual", "Eve Lee", "17", ""}, 1, IDS_INSURE_TWICE},
        {{-1, "northfield", "", "", ""}, -1, IDS_INSURE_TWICE},
        {{-1, " M\xDCLLER", "", "1", ""}, -1, IDS_INSURE_TWICE},
    };
    for (const auto& [entry, replaced, message] : cases)
    {
        const pat::Finding finding = pat::CheckInsurance(entry, insurances, replaced);
        EXPECT_EQ(finding.bPassed, message == 0) << entry.strCompany;
        EXPECT_EQ(finding.nMessage, message) << entry.strCompany;
    }
}

} // namespace

#include "host/samplepeople.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace
{

// Everything that the sheet and the database refuse must not come out of the generator.
TEST(SamplePeople, EveryPatientPassesThePracticesOwnRules)
{
    constexpr std::size_t kPatients = 3000;
    const sample::Generator generator(kPatients);
    std::set<std::string> ids;
    std::size_t longest = 0;
    for (std::size_t index = 0; index < kPatients; ++index)
    {
        const sample::Patient patient = generator.GetPatient(index);
        SCOPED_TRACE(patient.id);
        ids.insert(patient.id);
        EXPECT_EQ(std::string::npos, patient.id.find_first_not_of("_-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"));
        longest = std::max(longest, patient.id.size());
        EXPECT_FALSE(patient.given.empty());
        EXPECT_FALSE(patient.family.empty());
        EXPECT_LE(patient.modelNumber.size(), 10u);
        EXPECT_LE(patient.title.size(), 10u);
        EXPECT_LE(patient.salutation.size(), 50u);
        EXPECT_LE(patient.keywords.size(), 255u);
        EXPECT_LE(patient.nickname.size(), 30u);
        EXPECT_GE(patient.birth.year, 1900);
        EXPECT_EQ(patient.insurance >= 0, !patient.policyNumber.empty());
        EXPECT_EQ(patient.hasGuardian, !patient.guardian.family.empty());
        for (const sample::Phone& phone : patient.phones)
        {
            EXPECT_THAT(phone.number, testing::HasSubstr(" 555-01")) << "a number that somebody may have";
            EXPECT_FALSE(phone.kind.empty());
        }
        EXPECT_TRUE(
            std::is_sorted(patient.timepoints.begin(), patient.timepoints.end(),
                           [](const auto& left, const auto& right) { return left.date < right.date; }));
        for (const sample::Timepoint& timepoint : patient.timepoints)
            EXPECT_GT(timepoint.date, patient.birth);
    }
    EXPECT_EQ(kPatients, ids.size()) << "two patients share an ID";
    EXPECT_TRUE(std::all_of(ids.begin(), ids.end(), [&](const std::string& id) {
        return id.size() == longest;
    })) << "file patterns of one patient would take in another's files";
}

} // namespace

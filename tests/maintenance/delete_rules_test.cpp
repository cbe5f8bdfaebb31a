#include "app/velenums.h"
#include "maintenance/deleterules.h"
#include "maintenance/maintenanceres.h"

#include <gtest/gtest.h>

namespace
{

using maint::DeleteSubject;

// Which operations can be chosen, as "I", "T" and "P".
std::string Choices(const DeleteSubject& subject)
{
    std::string choices;
    const char letters[] = "ITP?";
    for (unsigned operation = 0; operation <= 3; ++operation)
        if (maint::CanChooseDeletion(operation, subject))
            choices += letters[operation];
    return choices;
}

TEST(DeleteRules, ChoicesFollowTimepointPatientAndPermission)
{
    const struct
    {
        int timepoint;
        int count;
        bool stored;
        bool allowed;
        const char* choices;
        unsigned first;
    } cases[] = {
        {0, 2, true, true, "ITP", DELETE_TIMEPOINT},
        {1, 2, true, false, "IT", DELETE_TIMEPOINT},
        {1, 2, false, true, "IT", DELETE_TIMEPOINT},
        {-1, 2, true, true, "P", DELETE_PATIENT},
        {-1, 2, true, false, "", DELETE_PATIENT},
        {2, 2, true, true, "P", DELETE_TIMEPOINT}, // a timepoint that is not there
        {0, 0, false, true, "", DELETE_TIMEPOINT}, // no patient
    };
    for (const auto& c : cases)
    {
        const DeleteSubject subject = {c.timepoint, c.count, c.stored, c.allowed, {}, {}, {}};
        EXPECT_EQ(Choices(subject), c.choices) << c.timepoint << " of " << c.count;
        EXPECT_EQ(maint::FirstDeletion(c.timepoint), c.first) << c.timepoint;
    }
}

TEST(DeleteRules, SaysWhatItDoesAndAsks)
{
    const DeleteSubject subject = {0, 1, true, true, "Start", "Ann Lee", "A1"};
    using maint::Message;
    EXPECT_EQ(maint::DescribeDeletion(0, subject), (Message{IDS_DELETE_IMAGES, {"Start"}}));
    EXPECT_EQ(maint::DescribeDeletion(1, subject), (Message{IDS_DELETE_TIMEPOINT, {"Start"}}));
    EXPECT_EQ(maint::DescribeDeletion(2, subject), (Message{IDS_DELETE_PATIENT, {"Ann Lee", "A1"}}));
    EXPECT_EQ(maint::DescribeDeletion(3, subject), Message());
    EXPECT_EQ(maint::AskForDeletion(0, subject), (Message{IDS_DELETE_IMAGES_ASK, {"Start"}}));
    EXPECT_EQ(maint::AskForDeletion(1, subject), (Message{IDS_DELETE_TIMEPOINT_ASK, {"Start"}}));
    EXPECT_EQ(maint::AskForDeletion(2, subject), (Message{IDS_DELETE_PATIENT_ASK, {"Ann Lee", "A1"}}));
}

} // namespace

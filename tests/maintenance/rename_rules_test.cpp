#include "app/velenums.h"
#include "maintenance/maintenanceres.h"
#include "maintenance/newtimepointrules.h"
#include "maintenance/renamerules.h"

#include <gtest/gtest.h>

namespace
{

using maint::Message;
using maint::RenameState;

class Letters : public maint::CharTable
{
public:
    std::size_t LengthOf(std::string_view /*text*/) const override
    {
        return 1;
    }
    unsigned TypeOf(std::string_view character) const override
    {
        return character < " " ? control : letter;
    }
    char CapitalOf(char byte) const override
    {
        return byte;
    }
};
const Letters letters;

const std::vector<std::string> treatments = {"{1}", "{2}", ""};

// A patient and a timepoint that nothing has been changed of.
RenameState Unchanged(RENAME_OP operation)
{
    RenameState state;
    state.operation = operation;
    state.oldNames = state.newNames = {"Lee", "Ann"};
    state.oldFullName = "Ann Lee";
    state.newFullName = "Ann Lo";
    state.hasTimepoint = true;
    state.oldTimepoint = state.newTimepoint = {"Start", "1/2/2024"};
    state.treatmentsUsed = true;
    state.treatments = {treatments, 0};
    state.currentTreatment = "{1}";
    return state;
}

TEST(RenameRules, ATreatmentIsFoundByItsExactId)
{
    EXPECT_EQ(maint::FindTreatment(treatments, "{2}"), 1);
    for (const char* other : {"", "{3}", "{", "{2} "})
        EXPECT_EQ(maint::FindTreatment(treatments, other), 2) << other;
    EXPECT_EQ(maint::FindTreatment(std::vector<std::string>{"{a}", "{A}", ""}, "{A}"), 1);
    EXPECT_EQ(maint::FindTreatment({}, "{1}"), -1);
}

TEST(RenameRules, ATreatmentIsChangedByAnotherSelection)
{
    const struct
    {
        int selected;
        const char* current;
        bool changed;
    } cases[] = {
        {0, "{1}", false}, {1, "{1}", true},   {2, "{1}", true},  {2, "", false},   {0, "", true},
        {-1, "", false},   {-1, "{1}", false}, {3, "{1}", false}, {2, "{9}", true}, // an ended treatment
    };
    for (const auto& c : cases)
        EXPECT_EQ(maint::IsTreatmentChanged({treatments, c.selected}, c.current), c.changed)
            << c.selected << " for " << c.current;
}

TEST(RenameRules, AppliesOnlyWhatIsChangedAndValid)
{
    RenameState state = Unchanged(RENAME_PATIENT);
    EXPECT_FALSE(maint::CanApply(state, letters));
    state.newTimepoint.name = "Other"; // of the other operation
    EXPECT_FALSE(maint::CanApply(state, letters));
    state.newNames.last = "lee";
    EXPECT_TRUE(maint::CanApply(state, letters));
    state.newNames.first = "";
    EXPECT_FALSE(maint::CanApply(state, letters));

    state = Unchanged(RENAME_TIMEPOINT);
    EXPECT_FALSE(maint::CanApply(state, letters));
    state.newTimepoint.name = "start";
    EXPECT_TRUE(maint::CanApply(state, letters));
    state.newTimepoint.name = "St\x01rt";
    EXPECT_FALSE(maint::CanApply(state, letters));
    state.treatments.selected = 1; // is enough by itself
    EXPECT_TRUE(maint::CanApply(state, letters));
    state.treatmentsUsed = false;
    EXPECT_FALSE(maint::CanApply(state, letters));
    state = Unchanged(RENAME_TIMEPOINT);
    state.newTimepoint.date = "1/3/2024";
    EXPECT_TRUE(maint::CanApply(state, letters));
    state.hasTimepoint = false;
    state.treatments.selected = 1;
    EXPECT_FALSE(maint::CanApply(state, letters));
}

TEST(RenameRules, SaysAndAsksWhatIsChanged)
{
    RenameState state = Unchanged(RENAME_PATIENT);
    EXPECT_EQ(maint::PreviewRename(state), (Message{IDS_RENAME_PATIENT, {"Ann Lee", "Ann Lo"}}));
    EXPECT_EQ(maint::AskForRename(state, true), (Message{IDS_RENAME_PATIENT_ASK, {"Ann Lee", "Ann Lo"}}));

    state = Unchanged(RENAME_TIMEPOINT);
    state.treatments.selected = 1;
    EXPECT_EQ(maint::PreviewRename(state), (Message{IDS_RENAME_TREATMENT, {}}));
    EXPECT_EQ(maint::AskForRename(state, true), (Message{IDS_RENAME_TREATMENT_ASK, {}}));
    state.newTimepoint.name = "%2";
    const std::vector<std::string> labels = {"\"Start\" (1/2/2024)", "\"%2\" (1/2/2024)"};
    EXPECT_EQ(maint::PreviewRename(state), (Message{IDS_RENAME_BOTH, labels}));
    EXPECT_EQ(maint::AskForRename(state, true), (Message{IDS_RENAME_BOTH_ASK, labels}));
    EXPECT_EQ(maint::AskForRename(state, false), (Message{IDS_RENAME_TIMEPOINT_ASK, labels}));
    state.treatments.selected = 0;
    EXPECT_EQ(maint::PreviewRename(state), (Message{IDS_RENAME_TIMEPOINT, labels}));
}

TEST(RenameRules, TheOnlyChoiceLeftIsMade)
{
    constexpr int P = RENAME_PATIENT;
    constexpr int T = RENAME_TIMEPOINT;
    const struct
    {
        int operation;
        bool allowed;
        bool treatments;
        bool timepoint;
        maint::RenameRadios radios;
    } cases[] = {
        {T, true, false, true, {true, true, T}},   {P, true, false, true, {true, true, P}},
        {T, true, false, false, {true, false, P}}, {P, true, true, true, {false, true, T}},
        {P, false, false, true, {false, true, T}}, {T, true, true, false, {false, false, T}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(maint::RadiosOf(c.operation, c.allowed, c.treatments, c.timepoint), c.radios)
            << c.operation << c.allowed << c.treatments << c.timepoint;
}

TEST(NewTimepointRules, StartsOnTheThirdTreatmentFromTheEndAndMovesWithinTheList)
{
    const int first[] = {-1, 0, 1, 0, 1, 97};
    const int counts[] = {0, 1, 2, 3, 4, 100};
    for (std::size_t i = 0; i < std::size(counts); ++i)
        EXPECT_EQ(maint::FirstTreatment(counts[i]), first[i]) << counts[i];
    EXPECT_EQ(maint::MovedIndex(0, -1, 3), 0);
    EXPECT_EQ(maint::MovedIndex(2, -1, 3), 1);
    EXPECT_EQ(maint::MovedIndex(2, +1, 3), 2);
    EXPECT_EQ(maint::MovedIndex(0, +1, 3), 1);
}

} // namespace

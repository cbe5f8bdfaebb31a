#include "app/velenums.h"
#include "maintenance/newtimepointrules.h"
#include "maintenance/renamerules.h"
#include "tests/maintenance/chartable.h"

#include <gtest/gtest.h>

namespace
{

using maint::RenameState;

const CodePage letters;
const std::vector<std::string> treatments = {"{1}", "{2}", ""};

// A patient and a timepoint that nothing has been changed of.
RenameState Unchanged(RENAME_OP operation)
{
    RenameState state;
    state.operation = operation;
    state.oldNames = state.newNames = {"Lee", "Ann"};
    state.hasTimepoint = true;
    state.oldTimepoint = state.newTimepoint = {"Start", "1/2/2024"};
    state.treatmentsUsed = true;
    state.treatments = {treatments, 0};
    state.currentTreatment = "{1}";
    return state;
}

TEST(RenameRules, ATreatmentIsFoundByItsExactIdAndChangedByAnotherSelection)
{
    EXPECT_EQ(maint::FindTreatment(treatments, "{2}"), 1);
    for (const char* other : {"", "{3}", "{", "{2} "})
        EXPECT_EQ(maint::FindTreatment(treatments, other), 2) << other;
    EXPECT_EQ(maint::FindTreatment(std::vector<std::string>{"{a}", "{A}", ""}, "{A}"), 1);
    EXPECT_EQ(maint::FindTreatment({}, "{1}"), -1);
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
    using S = RenameState;
    const auto choose = [](S& s) { s.treatments.selected = 1; };
    const std::tuple<const char*, RENAME_OP, std::function<void(S&)>, bool> cases[] = {
        {"nothing", RENAME_PATIENT, [](S&) {}, false},
        {"the other operation", RENAME_PATIENT, [](S& s) { s.newTimepoint.name = "Other"; }, false},
        {"a name's case", RENAME_PATIENT, [](S& s) { s.newNames.last = "lee"; }, true},
        {"no first name", RENAME_PATIENT,
         [](S& s) {
             s.newNames = {"Lo", ""};
         },
         false},
        {"no last name", RENAME_PATIENT,
         [](S& s) {
             s.newNames = {"", "Jo"};
         },
         false},
        {"nothing", RENAME_TIMEPOINT, [](S&) {}, false},
        {"the name", RENAME_TIMEPOINT, [](S& s) { s.newTimepoint.name = "start"; }, true},
        {"no name", RENAME_TIMEPOINT, [](S& s) { s.newTimepoint.name = "St\x01rt"; }, false},
        {"the day", RENAME_TIMEPOINT, [](S& s) { s.newTimepoint.date = "1/3/2024"; }, true},
        {"the treatment", RENAME_TIMEPOINT, choose, true},
        {"no name, the treatment", RENAME_TIMEPOINT,
         [&](S& s) { choose(s), s.newTimepoint.name = "St\x01rt"; }, true},
        {"a treatment, without them", RENAME_TIMEPOINT, [&](S& s) { choose(s), s.treatmentsUsed = false; },
         false},
        {"all, without a timepoint", RENAME_TIMEPOINT,
         [&](S& s) { choose(s), s.newTimepoint.name = "x", s.hasTimepoint = false; }, false},
    };
    for (const auto& [what, operation, change, applies] : cases)
    {
        RenameState state = Unchanged(operation);
        change(state);
        EXPECT_EQ(maint::CanApply(state, letters), applies) << what;
    }
}

TEST(NewTimepointRules, StartsOnTheThirdTreatmentFromTheEnd)
{
    const int first[] = {-1, 0, 1, 0, 1, 97};
    const int counts[] = {0, 1, 2, 3, 4, 100};
    for (std::size_t i = 0; i < std::size(counts); ++i)
        EXPECT_EQ(maint::FirstTreatment(counts[i]), first[i]) << counts[i];
}

} // namespace

#include "app/velenums.h"
#include "maintenance/newtimepointrules.h"
#include "maintenance/renamerules.h"
#include "tests/maintenance/chartable.h"

#include <gtest/gtest.h>

namespace
{

const CodePage letters;
const std::vector<std::string> treatments = {"{1}", "{2}", ""};

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
    constexpr RENAME_OP P = RENAME_PATIENT;
    constexpr RENAME_OP T = RENAME_TIMEPOINT;
    const struct
    {
        const char* what;
        RENAME_OP operation;
        bool applies;
        const char* last = "Lee";
        const char* first = "Ann";
        const char* name = "Start";
        const char* date = "1/2/2024";
        int treatment = 0;
        bool treatmentsUsed = true;
        bool hasTimepoint = true;
    } cases[] = {
        {.what = "nothing", .operation = P, .applies = false},
        {.what = "the other operation", .operation = P, .applies = false, .name = "Other"},
        {.what = "a name's case", .operation = P, .applies = true, .last = "lee"},
        {.what = "no first name", .operation = P, .applies = false, .last = "Lo", .first = ""},
        {.what = "no last name", .operation = P, .applies = false, .last = "", .first = "Jo"},
        {.what = "nothing", .operation = T, .applies = false},
        {.what = "the other operation", .operation = T, .applies = false, .last = "Lo"},
        {.what = "the name", .operation = T, .applies = true, .name = "start"},
        {.what = "no name", .operation = T, .applies = false, .name = "St\x01rt"},
        {.what = "the day", .operation = T, .applies = true, .date = "1/3/2024"},
        {.what = "the treatment", .operation = T, .applies = true, .treatment = 1},
        {.what = "both, no name", .operation = T, .applies = true, .name = "", .treatment = 1},
        {.what = "unused", .operation = T, .applies = false, .treatment = 1, .treatmentsUsed = false},
        {.what = "of none",
         .operation = T,
         .applies = false,
         .name = "x",
         .treatment = 1,
         .hasTimepoint = false},
    };
    for (const auto& c : cases)
    {
        maint::RenameState state;
        state.operation = c.operation;
        state.oldNames = {"Lee", "Ann"};
        state.newNames = {c.last, c.first};
        state.hasTimepoint = c.hasTimepoint;
        state.oldTimepoint = {"Start", "1/2/2024"};
        state.newTimepoint = {c.name, c.date};
        state.treatmentsUsed = c.treatmentsUsed;
        state.treatments = {treatments, c.treatment};
        state.currentTreatment = "{1}";
        EXPECT_EQ(maint::CanApply(state, letters), c.applies) << c.operation << ": " << c.what;
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

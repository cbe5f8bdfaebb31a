#include "app/velenums.h"
#include "maintenance/namerules.h"
#include "maintenance/newtimepointrules.h"
#include "maintenance/renamerules.h"

#include <gtest/gtest.h>

#include <cctype>

namespace
{

/// The characters of a code page: ASCII, two-byte letters that begin with 0x81 to 0x9F, and 0xE9 as a
/// lower-case letter with the capital 0xC9.
class CodePage : public maint::CharTable
{
public:
    std::size_t LengthOf(std::string_view text) const override
    {
        const auto lead = static_cast<unsigned char>(text.front());
        return text.size() > 1 && lead >= 0x81 && lead <= 0x9F ? 2 : 1;
    }
    unsigned TypeOf(std::string_view character) const override
    {
        const auto byte = static_cast<unsigned char>(character.front());
        if (character.size() == 2 || byte == 0xE9 || byte == 0xC9)
            return letter;
        return (std::isalpha(byte) ? letter : 0U) | (std::isdigit(byte) ? digit : 0U) |
               (std::iscntrl(byte) ? control : 0U);
    }
    char CapitalOf(char byte) const override
    {
        if (byte == '\xE9' || byte == '\x81')
            return '\xC9';
        return static_cast<char>(std::toupper(static_cast<unsigned char>(byte)));
    }
};

const CodePage table;

TEST(NameRules, CutsBetweenCharacters)
{
    const std::pair<const char*, const char*> cases[] = {
        {"abc", "abc"},
        {"abcd", "abc"},
        {"ab\x81z", "ab"},
        {"a\x81zb", "a\x81z"},
        {"ab\x81", "ab\x81"}, // half a character of its own
        {"\x81\x82\x83z", "\x81\x82"},
        {"", ""},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(maint::CutName(text, 3, table), expected);
}

TEST(NameRules, ShapesPatientNamesWhileTheyAreTyped)
{
    const std::pair<std::string, std::string> cases[] = {
        {"ann", "Ann"},
        {" \t\r\nann marie ", "Ann marie "},
        {"\xE9mile", "\xC9mile"},
        {"\x81ssa", "\x81ssa"}, // its second byte is no letter
        {"  ", ""},
        {std::string(10000, 'x'), "X" + std::string(258, 'x')},
        {" " + std::string(260, 'x'), "X" + std::string(257, 'x')}, // cut first
    };
    for (const auto& [typed, shaped] : cases)
        EXPECT_EQ(maint::ShapePatientName(typed, table), shaped);
    EXPECT_EQ(maint::CaretAfterShaping(1, 5), 1U);
    EXPECT_EQ(maint::CaretAfterShaping(6, 5), 5U);
    EXPECT_EQ(maint::CaretAfterShaping(259, 300), 300U);
}

TEST(NameRules, KnowsWhatCanBeAName)
{
    const struct
    {
        std::string name;
        bool patient;
        bool timepoint;
        bool newTimepoint;
    } cases[] = {
        {"", false, false, false},
        {"Ann", true, true, true},
        {"2nd O'Hara-Lee Jr.", true, true, true},
        {"-Ann", false, true, true},
        {" Ann", false, true, true},
        {"Ann & Bob", false, true, true},
        {"100% %1 <1> \"x\"", false, true, true},
        {"A\x01", false, false, false},
        {"A\tb", false, true, false},
        {"\x81z\xE9", true, true, true},
        {std::string(50, 'x'), true, true, true},
        {std::string(51, 'x'), true, false, true},
        {std::string(259, 'x'), true, false, true},
        {std::string(260, 'x'), false, false, true},
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(maint::IsPatientName(c.name, table), c.patient) << c.name;
        EXPECT_EQ(maint::IsTimepointName(c.name), c.timepoint) << c.name;
        EXPECT_EQ(maint::IsNewTimepointName(c.name, table), c.newTimepoint) << c.name;
    }
    EXPECT_EQ(maint::TrimTimepointName(" Phase 1 \t\r\n"), " Phase 1");
    EXPECT_EQ(maint::TrimTimepointName(" \v\f"), "");
}

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
        EXPECT_EQ(maint::CanApply(state, table), c.applies) << c.operation << ": " << c.what;
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

#include "tests/maintenance/chartable.h"

#include <gtest/gtest.h>

namespace
{

const CodePage table;

TEST(NameRules, CutsBetweenCharacters)
{
    const std::pair<const char*, const char*> cases[] = {
        {"abc", "abc"},
        {"abcd", "abc"},
        {"ab\x81z", "ab"},
        {"a\x81zb", "a\x81z"},
        {"ab\x81", "ab\x81"}, // half a character of its own
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

} // namespace

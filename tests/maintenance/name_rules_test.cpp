#include "maintenance/namerules.h"

#include <gtest/gtest.h>

#include <cctype>

namespace
{

// ASCII, with two-byte letters that begin with 0x81 to 0x9F, and 0xE9 as a lower-case letter with the capital
// 0xC9.
class Table : public maint::CharTable
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
        return byte == '\xE9' || byte == '\x81'
                   ? '\xC9'
                   : static_cast<char>(std::toupper(static_cast<unsigned char>(byte)));
    }
};
const Table table;

std::string Repeat(const char* text, int count)
{
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

TEST(NameRules, CutsBetweenCharacters)
{
    EXPECT_EQ(maint::CutName("abc", 3, table), "abc");
    EXPECT_EQ(maint::CutName("abcd", 3, table), "abc");
    EXPECT_EQ(maint::CutName("ab\x81z", 3, table), "ab");
    EXPECT_EQ(maint::CutName("a\x81zb", 3, table), "a\x81z");
    EXPECT_EQ(maint::CutName("ab\x81", 3, table), "ab\x81"); // half a character of its own
    EXPECT_EQ(maint::CutName("", 3, table), "");
}

TEST(NameRules, ShapesPatientNamesWhileTheyAreTyped)
{
    EXPECT_EQ(maint::ShapePatientName("ann", table), "Ann");
    EXPECT_EQ(maint::ShapePatientName(" \t\r\nann marie ", table), "Ann marie ");
    EXPECT_EQ(maint::ShapePatientName("\xE9mile", table), "\xC9mile");
    EXPECT_EQ(maint::ShapePatientName("\x81ssa", table), "\x81ssa"); // its second byte is no letter
    EXPECT_EQ(maint::ShapePatientName("  ", table), "");
    EXPECT_EQ(maint::ShapePatientName(Repeat("x", 10000), table), "X" + Repeat("x", 258));
    EXPECT_EQ(maint::ShapePatientName(" " + Repeat("x", 260), table), "X" + Repeat("x", 257)); // cut first
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
        {Repeat("x", 50), true, true, true},
        {Repeat("x", 51), true, false, true},
        {Repeat("x", 259), true, false, true},
        {Repeat("x", 260), false, false, true},
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

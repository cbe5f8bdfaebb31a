#include "maintenance/keywordrules.h"

#include <gtest/gtest.h>

namespace
{

using namespace maint;

TEST(KeywordList, NamedByTheWindowTextInAnyCase)
{
    const std::pair<const char*, KeywordList> cases[] = {
        {"PATIENT", KeywordList::Patient}, {"patient", KeywordList::Patient}, {"Image", KeywordList::Image},
        {"", KeywordList::None},           {"IMAGES", KeywordList::None},     {" PATIENT", KeywordList::None},
        {"PATIEN", KeywordList::None},     {"pAtIEnz", KeywordList::None},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(KeywordListFromText(text), expected) << "\"" << text << "\"";
}

TEST(KeywordMenu, EmptyKeywordUsesUpItsNumber)
{
    const std::vector<KeywordMenuItem> items = KeywordMenu({"Braces", "", "Recall", "Crown & Bridge"});
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[0].command, 25001u);
    EXPECT_EQ(items[1].command, 25003u);
    EXPECT_EQ(items[2].command, 25004u);

    // The text a command yields is the one at its position in the menu.
    EXPECT_EQ(items[KeywordMenuPosition(25001)].text, "Braces");
    EXPECT_EQ(items[KeywordMenuPosition(25003)].text, "Crown && Bridge") << "one on, after the empty keyword";
    EXPECT_EQ(KeywordMenuPosition(25004), items.size()) << "on the separator";
}

TEST(KeywordMenu, EndsBeforeTheSystemsCommands)
{
    EXPECT_EQ(KeywordMenu(std::vector<std::string>(100000, "x")).back().command, 0xEFFFu);
}

TEST(KeywordMenu, AmpersandsSurviveTheWay)
{
    for (const char* keyword : {"", "&", "&&", "&&&", "A&B", "A && B", "&A", "A&", "50% & more", "no mark"})
        EXPECT_EQ(FromMenuText(ToMenuText(keyword)), keyword);
    EXPECT_EQ(FromMenuText("&Edit"), "&Edit") << "a single mark is text";
}

} // namespace

#include "maintenance/keywordrules.h"

#include <gtest/gtest.h>

namespace
{

TEST(KeywordList, NamedByTheWindowTextInAnyCase)
{
    const std::pair<const char*, kwList> cases[] = {
        {"PATIENT", kwListPatient}, {"patient", kwListPatient}, {"IMAGE", kwListImage},
        {"Image", kwListImage},     {"", kwListNone},           {"IMAGES", kwListNone},
        {" PATIENT", kwListNone},   {"PATIEN", kwListNone},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(kwListFromText(text), expected) << "\"" << text << "\"";
}

TEST(KeywordMenu, EmptyKeywordUsesUpItsNumber)
{
    const std::vector<kwMenuItem> items = kwMenu({"Braces", "", "Recall", "Crown"});
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[0].command, 25001u);
    EXPECT_EQ(items[1].command, 25003u);
    EXPECT_EQ(items[2].command, 25004u);

    // The text a command yields is the one at its position in the menu.
    EXPECT_EQ(items[kwMenuPosition(25001)].text, "Braces");
    EXPECT_EQ(items[kwMenuPosition(25003)].text, "Crown") << "one further on, because of the empty keyword";
    EXPECT_EQ(kwMenuPosition(25004), items.size()) << "on the separator";
}

TEST(KeywordMenu, TakesLongAndManyKeywordsButNoSystemCommands)
{
    std::vector<std::string> keywords(5000, std::string(500, 'k'));
    EXPECT_EQ(kwMenu(keywords).size(), 5000u);
    EXPECT_EQ(kwMenu(keywords).back().command, 30000u);
    EXPECT_EQ(kwMenu(keywords).back().text, keywords.back());

    keywords.resize(100000, "x");
    const std::vector<kwMenuItem> items = kwMenu(keywords);
    EXPECT_EQ(items.back().command, kwCommandLast);
}

TEST(KeywordMenu, AmpersandsSurviveTheWay)
{
    for (const char* keyword : {"", "&", "&&", "&&&", "A&B", "A && B", "&A", "A&", "50% & more", "no mark"})
        EXPECT_EQ(kwFromMenuText(kwToMenuText(keyword)), keyword);
    EXPECT_EQ(kwToMenuText("Crown & Bridge"), "Crown && Bridge");
    EXPECT_EQ(kwFromMenuText("&Edit"), "&Edit") << "a single mark is text";
}

TEST(KeywordField, TakesTheKeywordOrAppendsIt)
{
    EXPECT_EQ(kwAppend("", "Recall"), "Recall");
    EXPECT_EQ(kwAppend("Braces", "Recall"), "Braces, Recall");
    EXPECT_EQ(kwAppend(" ", "%s"), " , %s");
    EXPECT_EQ(kwAppend("Braces", ""), "Braces, ");
}

} // namespace

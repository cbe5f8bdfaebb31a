#include "suite/util/inifile.h"

#include <gtest/gtest.h>

#include <climits>

namespace
{

iniCFile Parsed(std::string_view text)
{
    return iniCFile::Parse(text).value();
}

std::optional<std::string> Found(std::string_view text, std::string_view section = "S",
                                 std::string_view key = "k")
{
    return Parsed(text).Find(section, key);
}

const std::string longest(inimaxValue, 'v');

} // namespace

TEST(IniFile, ReadsWhatIsMeantAndSkipsWhatIsNot)
{
    struct Case
    {
        const char* what;
        std::string text;
        std::optional<std::string> value;
    };
    const std::optional<std::string> absent;
    for (const Case& c : {
             Case{"plain", "[S]\r\nk=v\r\n", "v"},
             Case{"no line end", "[S]\nk=v", "v"},
             Case{"blanks", "  [ S ] x\n \tk \t= v w \t\n", "v w"},
             Case{"other case", "[s]\nK=v\n", "v"},
             Case{"empty", "[S]\nk=\n", ""},
             Case{"equals in the value", "[S]\nk=a=b\n", "a=b"},
             Case{"quoted", "[S]\nk=\" v \"\n", " v "},
             Case{"quoted once", "[S]\nk=' v '\n", " v "},
             Case{"half quoted", "[S]\nk=\"v\n", "\"v"},
             Case{"one quote", "[S]\nk=\"\n", "\""},
             Case{"byte order mark", "\xEF\xBB\xBF[S]\nk=v\n", "v"},
             Case{"first counts", "[S]\nk=1\nk=2\n[S]\nk=3\n", "1"},
             Case{"section in two places", "[S]\n[T]\nk=t\n[S]\nk=v\n", "v"},
             Case{"bytes of 0x80 and above", "[S]\nk=\xE4\xFF\xAC\n", "\xE4\xFF\xAC"},
             Case{"commented out", "[S]\n;k=v\n#k=v\n", absent},
             Case{"before any section", "k=v\n", absent},
             Case{"other section", "[T]\nk=v\n", absent},
             Case{"unclosed section", "[S\nk=v\n", absent},
             Case{"no equals", "[S]\nk\n", absent},
             Case{"control character", "[S]\nk=a\x01z\n", absent},
             Case{"stray carriage return", "[S]\nk=a\rb\n", absent},
             Case{"delete character", "[S]\nk=\x7F\n", absent},
             Case{"damaged, then whole", "[S]\nk=a\x01z\nk=v\n", "v"},
             Case{"longest value", "[S]\nk=" + longest + "\n", longest},
             Case{"over-long value", "[S]\nk=x" + longest + "\n", absent},
             Case{"over-long line", "[S]\nk=v" + std::string(inimaxLine, ' ') + "\n", absent},
             Case{"nothing", "", absent},
         })
        EXPECT_EQ(Found(c.text), c.value) << c.what;
}

TEST(IniFile, IsNoSettingsFileWhenBinaryOrHuge)
{
    EXPECT_FALSE(iniCFile::Parse(std::string_view("[S]\nk=v\0\n", 9)));
    EXPECT_FALSE(iniCFile::Parse(std::string(inimaxFile + 1, '\n')));
    EXPECT_TRUE(iniCFile::Parse(std::string(inimaxFile, '\n')));
}

TEST(IniFile, ChangesOneLineAndKeepsTheRest)
{
    struct Case
    {
        const char *what, *before, *after;
    };
    for (const Case& c : {
             Case{"replaced", "; note\n[S]\n K = 1 \nrubbish\n[T]\nk=2\n",
                  "; note\n[S]\n K =new\nrubbish\n[T]\nk=2\n"},
             Case{"CR LF kept", "[S]\r\nk=1\r\n", "[S]\r\nk=new\r\n"},
             Case{"added to its section", "[S]\na=1\n\n; of T\n[T]\n", "[S]\na=1\n\n; of T\nk=new\n[T]\n"},
             Case{"before the blank lines", "[S]\na=1\n\n\n[T]\n", "[S]\na=1\nk=new\n\n\n[T]\n"},
             Case{"last line without end", "[S]\r\na=1", "[S]\r\na=1\r\nk=new\r\n"},
             Case{"new section", "[T]\na=1\n", "[T]\na=1\n\n[S]\nk=new\n"},
             Case{"its own line end", "[S]\r\nk=1\n", "[S]\r\nk=new\n"},
             Case{"empty file", "", "[S]\r\nk=new\r\n"},
             Case{"damaged line kept", "[S]\nk=\x01\n", "[S]\nk=\x01\nk=new\n"},
         })
    {
        iniCFile file = Parsed(c.before);
        EXPECT_TRUE(file.Set("S", "k", "new")) << c.what;
        EXPECT_EQ(file.Text(), c.after) << c.what;
        EXPECT_EQ(file.Find("s", "K"), "new") << c.what;
    }
}

TEST(IniFile, EveryValueItTakesIsReadBackExactly)
{
    for (const std::string& value :
         {std::string(), std::string(" "), std::string("  a  "), std::string("\"a\""), std::string("'"),
          std::string("''"), std::string("\""), std::string("a;b#c=d[e]"), std::string("\t"),
          std::string("\xA0\xE4"), longest})
    {
        iniCFile file = Parsed("[S]\nk=old\n");
        ASSERT_TRUE(file.Set("S", "k", value)) << value;
        ASSERT_TRUE(file.Set("New", "k", value)) << value;
        EXPECT_EQ(Parsed(file.Text()).Find("S", "k"), value);
        EXPECT_EQ(Parsed(file.Text()).Find("New", "k"), value);
    }
}

TEST(IniFile, RefusesWhatItCouldNotReadBack)
{
    struct Case
    {
        std::string section, key, value;
    };
    for (const Case& c :
         {Case{"S", "k", "a\nb"}, Case{"S", "k", "a\r"}, Case{"S", "k", std::string("a\0b", 3)},
          Case{"S", "k", "x" + longest}, Case{"S", "k\n[T]\nx", "v"}, Case{"S", "a=b", "v"},
          Case{"S", ";k", "v"}, Case{"S", "[k]", "v"}, Case{"S", " k", "v"}, Case{"S", "", "v"},
          Case{"", "k", "v"}, Case{"S]", "k", "v"}, Case{" S", "k", "v"}, Case{"S\n[T", "k", "v"}})
    {
        iniCFile file = Parsed("[T]\nx=1\n");
        EXPECT_FALSE(file.Set(c.section, c.key, c.value)) << c.section << '|' << c.key << '|' << c.value;
        EXPECT_EQ(file.Text(), "[T]\nx=1\n");
    }
    iniCFile full = Parsed(std::string(inimaxFile - 4, '\n'));
    EXPECT_FALSE(full.Set("S", "k", "v"));
}

TEST(IniFile, RemovesEveryLineOfAKey)
{
    iniCFile file = Parsed("[S]\nk=1\na=2\nK=3\n[T]\nk=4\n[s]\nk=5\n");
    file.Remove("S", "k");
    EXPECT_EQ(file.Text(), "[S]\na=2\n[T]\nk=4\n[s]\n");
    EXPECT_FALSE(file.Find("S", "k"));
}

TEST(IniInt, TakesWholeNumbersOnly)
{
    const std::pair<const char*, int> numbers[] = {
        {"7", 7},     {" -12 ", -12},          {"+3", 3},     {"007", 7},
        {"0x1F", 31}, {"2147483647", INT_MAX}, {"1 ; on", 1}, {"-2147483648", INT_MIN}};
    for (const auto& [text, value] : numbers)
        EXPECT_EQ(iniParseInt(text), value) << text;
    for (const char* text : {"2147483648", "-2147483649", "99999999999999999999", "", "-", "0x", "abc", "1.5",
                             "1 2", "--1", "0x-1"})
        EXPECT_FALSE(iniParseInt(text)) << text;
}

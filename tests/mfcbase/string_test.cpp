#include "tests/mfcbase/thrown.h"

#include <gtest/gtest.h>

using mfctest::Thrown;

namespace
{

std::string Text(const CString& text)
{
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

} // namespace

TEST(CString, IsMadeFromNarrowWideAndMissingText)
{
    EXPECT_EQ(Text(CString(static_cast<LPCSTR>(nullptr))), "");
    EXPECT_EQ(Text(CString("abcdef", 3)), "abc");
    EXPECT_EQ(Text(CString('x', 3)), "xxx");
    EXPECT_EQ(Text(CString(L"M\u00FCller \u20AC \u4E2D")), "M\xFCller \x80 ?");
    EXPECT_EQ(Thrown([] { CString("x", -1); }), "CInvalidArgException");
    EXPECT_EQ(Thrown([] { CString(static_cast<LPCSTR>(nullptr), 2); }), "CInvalidArgException");
}

TEST(CString, CutsPartsToWhatIsThere)
{
    const CString text("Veltrix");
    EXPECT_EQ(Text(text.Left(3)), "Vel");
    EXPECT_EQ(Text(text.Left(-1)), "");
    EXPECT_EQ(Text(text.Left(99)), "Veltrix");
    EXPECT_EQ(Text(text.Right(99)), "Veltrix");
    EXPECT_EQ(Text(text.Mid(-2, 2)), "Ve");
    EXPECT_EQ(Text(text.Mid(5, INT_MAX)), "ix");
    EXPECT_EQ(Text(text.SpanIncluding("leV")), "Vel");
    EXPECT_EQ(Text(text.SpanExcluding("rt")), "Vel");
}

TEST(CString, GuardsItsIndexes)
{
    CString text("ab");
    EXPECT_EQ(text[2], '\0');
    for (const int index : {-1, 3})
    {
        EXPECT_EQ(Thrown([&] { text.GetAt(index); }), "CInvalidArgException");
    }
}

TEST(CString, FindsAndReplaces)
{
    CString text("a,b,,c");
    EXPECT_EQ(text.Find(','), 1);
    EXPECT_EQ(text.Find(",,"), 3);
    EXPECT_EQ(text.Find(',', 99), -1);
    EXPECT_EQ(text.Find(',', -1), -1);
    EXPECT_EQ(text.ReverseFind(','), 4);
    EXPECT_EQ(text.FindOneOf("cb"), 2);

    EXPECT_EQ(text.Replace(",", ", "), 3);
    EXPECT_EQ(Text(text), "a, b, , c");
    EXPECT_EQ(text.Replace("", "x"), 0);
    EXPECT_EQ(text.Replace(", ", nullptr), 3);
    EXPECT_EQ(Text(text), "abc");
    text = "aaa";
    EXPECT_EQ(text.Replace("a", text), 3); // an argument inside the text itself
    EXPECT_EQ(Text(text), "aaaaaaaaa");

    text = "abcde";
    text.Delete(1, 3);
    EXPECT_EQ(Text(text), "ae");
    EXPECT_EQ(text.Delete(7), 2);
    EXPECT_EQ(text.Delete(1, 99), 1);
}

TEST(CString, Trims)
{
    EXPECT_EQ(Text(CString(" \t\r\n x y \n").TrimLeft()), "x y \n");
    EXPECT_EQ(Text(CString(" \t\r\n x y \n").TrimRight()), " \t\r\n x y");
    EXPECT_EQ(Text(CString("  ").TrimLeft() + CString("  ").TrimRight()), "");
    EXPECT_EQ(Text(CString(" \xA0x\xA0 ").Trim()), "\xA0x\xA0"); // a hard blank is text
}

TEST(CString, TokenizesUntilNothingIsLeft)
{
    const CString text(",,a,b;;c,");
    std::string tokens;
    int at = 0;
    for (CString token = text.Tokenize(",;", at); at != -1; token = text.Tokenize(",;", at))
    {
        tokens += Text(token) + '|';
    }
    EXPECT_EQ(tokens, "a|b|c|");
}

TEST(CString, ComparesBytesAndIgnoresCaseBySystemRules)
{
    EXPECT_LT(CString("a").Compare("b"), 0);
    EXPECT_GT(CString("\xE4").Compare("z"), 0);
    EXPECT_EQ(CString("STRA\xDF" "E \xC4\xD6").CompareNoCase("stra\xDF" "e \xE4\xF6"), 0);
    EXPECT_LT(CString("ab").CompareNoCase("ABC"), 0);
    EXPECT_NE(CString("_").CompareNoCase("A"), 0);
    EXPECT_EQ(Text(CString("a\xE4\xDF").MakeUpper()), "A\xC4\xDF");
}

TEST(CString, FormatsAnyLength)
{
    CString text;
    text.Format("%s|%05d|%.2f|%lld", "a", 42, 1.005, 9000000000LL);
    EXPECT_EQ(Text(text), "a|00042|1.00|9000000000");
    const CString big('x', 10000);
    text.Format("%s!", big.GetString());
    EXPECT_EQ(text.GetLength(), 10001);
    text = "abc";
    text.Format("%s-%s", text.GetString(), text.GetString()); // its own text as argument
    EXPECT_EQ(Text(text), "abc-abc");
}

TEST(CString, HandsOutItsBuffer)
{
    CString text("abc");
    lstrcpyA(text.GetBuffer(100), "0123456789");
    text.ReleaseBuffer();
    EXPECT_EQ(Text(text), "0123456789");
    text.GetBuffer(50);
    text.ReleaseBuffer(2);
    EXPECT_EQ(Text(text), "01");
}

TEST(CString, LoadsResourcesInTheSystemCodePage)
{
    CString text;
    for (const UINT id : {901U, 999U}) // the second is none: the text is left alone
    {
        EXPECT_EQ(text.LoadString(GetModuleHandleA(nullptr), id), id == 901U);
        EXPECT_EQ(Text(text), "\xC4rger 100 %1 and %2");
    }
}

TEST(CString, ReadsEnvironmentVariablesOfAnyLength)
{
    const std::string big(3000, 'v');
    SetEnvironmentVariableA("VELTEST_TEXT", big.c_str());
    CString text;
    EXPECT_TRUE(text.GetEnvironmentVariable("VELTEST_TEXT"));
    EXPECT_EQ(Text(text), big);
    SetEnvironmentVariableA("VELTEST_TEXT", nullptr);
    EXPECT_FALSE(text.GetEnvironmentVariable("VELTEST_TEXT"));
}

TEST(FormatStrings, ReplacesMarkersOnce)
{
    CString text;
    const LPCTSTR parts[] = {"%2", "two"};
    AfxFormatStrings(text, "%2 and %1, 100%, %3 %%1", parts, 2);
    EXPECT_EQ(Text(text), "two and %2, 100%, %3 %%2");
    AfxFormatString1(text, "%1%1", nullptr);
    EXPECT_EQ(Text(text), "");
}

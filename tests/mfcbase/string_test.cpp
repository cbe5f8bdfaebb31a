#include "tests/mfcbase/thrown.h"

#include <gtest/gtest.h>

using mfctest::Thrown;

namespace
{

std::string Text(const CString& text)
{
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

// The resources are this program's, whatever the framework's own module state holds.
CString Resource(UINT id)
{
    CString text;
    text.LoadString(GetModuleHandleA(nullptr), id);
    return text;
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
    EXPECT_EQ(Text(text.Right(4)), "trix");
    EXPECT_EQ(Text(text.Right(99)), "Veltrix");
    EXPECT_EQ(Text(text.Mid(3, 2)), "tr");
    EXPECT_EQ(Text(text.Mid(-2, 2)), "Ve");
    EXPECT_EQ(Text(text.Mid(5, INT_MAX)), "ix");
    EXPECT_EQ(Text(text.Mid(99)), "");
    EXPECT_EQ(Text(text.SpanIncluding("leV")), "Vel");
    EXPECT_EQ(Text(text.SpanExcluding("rt")), "Vel");
}

TEST(CString, GuardsItsIndexes)
{
    CString text("ab");
    EXPECT_EQ(text[2], '\0');
    EXPECT_EQ(Thrown([&] { text.GetAt(3); }), "CInvalidArgException");
    EXPECT_EQ(Thrown([&] { text.GetAt(-1); }), "CInvalidArgException");
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
    EXPECT_EQ(text.FindOneOf("xyz"), -1);

    EXPECT_EQ(text.Replace(",", ", "), 3);
    EXPECT_EQ(Text(text), "a, b, , c");
    EXPECT_EQ(text.Replace("", "x"), 0);
    EXPECT_EQ(text.Replace(", ", nullptr), 3);
    EXPECT_EQ(Text(text), "abc");
    text = "aaa";
    EXPECT_EQ(text.Replace("a", text), 3); // an argument inside the text itself
    EXPECT_EQ(Text(text), "aaaaaaaaa");

    text = "abcde";
    EXPECT_EQ(text.Delete(1, 3), 2);
    EXPECT_EQ(text.Delete(1, 99), 1);
    EXPECT_EQ(text.Delete(7), 1);
    EXPECT_EQ(Text(text), "a");
}

TEST(CString, Trims)
{
    struct Case
    {
        const char* text;
        const char* left;
        const char* right;
    };
    for (const Case& c : {Case{" \t\r\n x y \n", "x y \n", " \t\r\n x y"}, Case{"  ", "", ""}, Case{"", "", ""}})
    {
        EXPECT_EQ(Text(CString(c.text).TrimLeft()), c.left);
        EXPECT_EQ(Text(CString(c.text).TrimRight()), c.right);
    }
    EXPECT_EQ(Text(CString("\xA0x\xA0").Trim()), "\xA0x\xA0"); // a hard blank is text
    EXPECT_EQ(Text(CString("<[x]>").Trim("<>[]")), "x");
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
    EXPECT_EQ(Text(CString("A\xC4").MakeLower()), "a\xE4");
    EXPECT_TRUE(CString("x") == "x" && "x" == CString("x") && CString("x") != CString("X"));
    EXPECT_TRUE(CString("a") < "b" && "a" < CString("b") && CString("b") >= CString("a"));
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
    text.AppendFormat("(%d)", text.GetLength());
    EXPECT_EQ(Text(text), "abc-abc(7)");
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
    EXPECT_EQ(Text(Resource(901)), "\xC4rger 100 %1 and %2");
    CString text("kept");
    EXPECT_FALSE(text.LoadString(GetModuleHandleA(nullptr), 999));
    EXPECT_EQ(Text(text), "kept");
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

TEST(ExtractSubString, AnswersThePartsBetweenSeparators)
{
    CString part;
    const char* const full = "a\n\nc";
    for (const auto& [index, expected] : {std::pair(0, "a"), std::pair(1, ""), std::pair(2, "c")})
    {
        EXPECT_TRUE(AfxExtractSubString(part, full, index));
        EXPECT_EQ(Text(part), expected);
    }
    EXPECT_FALSE(AfxExtractSubString(part, full, 3));
    EXPECT_FALSE(AfxExtractSubString(part, full, -1));
    EXPECT_FALSE(AfxExtractSubString(part, nullptr, 0));
    EXPECT_TRUE(AfxExtractSubString(part, "x;y", 1, ';'));
    EXPECT_EQ(Text(part), "y");
}

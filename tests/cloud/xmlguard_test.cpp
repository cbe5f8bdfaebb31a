// Documents from outside, and text on its way into and out of them.
#include "cloud/protocol/replybody.h"
#include "cloud/xml/xmlguard.h"

#include <gtest/gtest.h>

#include <array>

using namespace cloud;

namespace
{
std::string Repeat(const std::string& text, std::size_t count)
{
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

std::u16string Decode(std::string_view document)
{
    std::array<char16_t, 256> latin{};
    for (std::size_t i = 0; i < latin.size(); ++i)
        latin.at(i) = static_cast<char16_t>(i);
    latin[0x80] = 0x20AC;
    return DecodeXml(document, latin.data());
}
} // namespace

TEST(CloudXml, TakesDocumentsWithinTheLimits)
{
    using L = XmlLimits;
    struct Case
    {
        const char* what;
        std::string document;
        bool acceptable;
    };
    const Case cases[] = {
        {"plain", "<?xml version='1.0'?><!-- <!DOCTYPE x> --><a b='>' c=\"<'\">t<![CDATA[<!DOCTYPE]]></a>",
         true},
        {"nothing", "", true},
        {"cut short", "<a b='", true},
        {"type", "<?xml version='1.0'?><!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>", false},
        {"type in lower case", "<!doctype a><a/>", false},
        {"type behind a quote in text", "<a>\"</a><!DOCTYPE a>", false},
        {"type behind a comment that ends at once", "<!--><!DOCTYPE a>-->",
         true}, // the comment ends at "-->"
        {"deep", Repeat("<a>", L::Depth) + Repeat("</a>", L::Depth), true},
        {"too deep", Repeat("<a>", L::Depth + 1), false},
        {"side by side", Repeat("<a/><b></b>", 100), true},
        {"elements", "<r>" + Repeat("<a/>", L::Elements - 1), true},
        {"too many elements", Repeat("<a/>", L::Elements + 1), false},
        {"attributes", "<a" + Repeat(" b=''", L::Attributes) + "/>", true},
        {"too many attributes", "<a" + Repeat(" b=''", L::Attributes + 1) + "/>", false},
        {"text", "<a>" + std::string(L::TextBytes, 't') + "</a>", true},
        {"too much text", "<a>" + std::string(L::TextBytes + 1, 't') + "</a>", false},
        {"too long a value", "<a b='" + std::string(L::TextBytes + 1, 't') + "'/>", false},
        {"too long a comment", "<!--" + std::string(L::TextBytes + 1, 't') + "-->", false},
        {"too long", std::string(L::Bytes + 1, ' '), false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(IsXmlAcceptable(c.document), c.acceptable) << c.what;
}

TEST(CloudXml, DecodesWhatTheServiceAndTheSystemWrite)
{
    EXPECT_EQ(Decode("\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?><a>Zo\xC3\xAB \xE2\x82\xAC "
                     "\xF0\x9F\x98\x80</a>"),
              u"<a>Zo\u00EB \u20AC \U0001F600</a>");
    EXPECT_EQ(Decode("<?xml-stylesheet?>x"), u"<?xml-stylesheet?>x");
    EXPECT_EQ(Decode("<?xml version='1.0'"), u"");
    for (const char* invalid : {"\xEB", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80",
                                "\xF4\x90\x80\x80", "\xC3(", "\xF5\x80\x80\x80"})
    {
        const std::u16string text = Decode(std::string("a\x80") + invalid);
        EXPECT_EQ(text.substr(0, 2), u"a\u20AC");
        EXPECT_EQ(text.size(), 2 + std::string(invalid).size()) << "each byte is a character";
    }
}

TEST(CloudXml, EscapesIntoAscii)
{
    EXPECT_EQ(EscapeXml(u"O'Neil & \"Co\" <a> \u00EB\u20AC\U0001F600\r\n\t\x7F"),
              "O'Neil &amp; &quot;Co&quot; &lt;a&gt; &#235;&#8364;&#128512;&#13;&#10;&#9;&#127;");
    EXPECT_TRUE(IsXmlText(u"\t\r\n \u0080\uFFFD\U0001F600"));
    for (const std::u16string& text :
         {std::u16string(u"\x01"), std::u16string(1, u'\0'), std::u16string(u"\x1F"),
          std::u16string(1, char16_t(0xD800)), std::u16string(1, char16_t(0xDC00)),
          std::u16string{char16_t(0xD800), u'a'}, std::u16string(1, char16_t(0xFFFF))})
        EXPECT_FALSE(IsXmlText(text));
}

TEST(CloudReplyBody, JoinsLinesHoweverTheyArrive)
{
    const std::string whole = "one\r\ntwo\nthree\r\r\n\rfour\r";
    for (std::size_t size = 1; size <= whole.size(); ++size)
    {
        ReplyBody body;
        for (std::size_t at = 0; at < whole.size(); at += size)
            EXPECT_TRUE(body.Append(std::string_view(whole).substr(at, size)));
        EXPECT_EQ(body.Received(), whole.size());
        EXPECT_EQ(body.Take(), "onetwothree\r\rfour") << size;
    }
    ReplyBody body;
    EXPECT_TRUE(body.Append(std::string(ReplyBody::MaxBytes, 'a')));
    EXPECT_FALSE(body.Append("a"));
}

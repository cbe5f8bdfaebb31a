#include "cloud/xml/xmlguard.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace cloud
{
namespace
{
/// Reads a document's markup from one end to the other.
class MarkupReader
{
public:
    explicit MarkupReader(std::string_view document) : m_rest(document)
    {
    }

    bool Run()
    {
        while (!m_rest.empty())
        {
            const std::size_t text = std::min(m_rest.find('<'), m_rest.size());
            if (text > XmlLimits::TextBytes)
                return false;
            m_rest.remove_prefix(text);
            if (!m_rest.empty() && !ReadMarkup())
                return false;
        }
        return true;
    }

private:
    bool ReadMarkup()
    {
        if (m_rest.starts_with("<!--"))
            return SkipPast("-->", 4);
        if (m_rest.starts_with("<![CDATA["))
            return SkipPast("]]>", 9);
        if (m_rest.starts_with("<?"))
            return SkipPast("?>", 2);
        if (m_rest.starts_with("<!"))
            return false;
        return m_rest.starts_with("</") ? ReadEnd() : ReadElement();
    }

    /// What has no end is the parser's to complain about: nothing of it is left to read.
    bool SkipPast(std::string_view end, std::size_t from)
    {
        const std::size_t found = m_rest.find(end, from);
        if (std::min(found, m_rest.size()) > XmlLimits::TextBytes)
            return false;
        m_rest = found == std::string_view::npos ? std::string_view() : m_rest.substr(found + end.size());
        return true;
    }

    bool ReadEnd()
    {
        m_depth -= m_depth > 0 ? 1 : 0;
        return SkipPast(">", 2);
    }

    bool ReadElement()
    {
        if (++m_elements > XmlLimits::Elements || ++m_depth > XmlLimits::Depth)
            return false;
        std::size_t attributes = 0;
        std::size_t at = 1;
        for (;;)
        {
            at = m_rest.find_first_of("\"'>", at);
            if (at == std::string_view::npos)
            {
                m_rest = {};
                return true;
            }
            if (m_rest[at] == '>')
                break;
            const std::size_t end = m_rest.find(m_rest[at], at + 1);
            if (++attributes > XmlLimits::Attributes ||
                std::min(end, m_rest.size()) - at > XmlLimits::TextBytes)
                return false;
            at = end == std::string_view::npos ? end : end + 1;
        }
        if (m_rest[at - 1] == '/')
            --m_depth;
        m_rest.remove_prefix(at + 1);
        return true;
    }

    std::string_view m_rest;
    std::size_t m_depth = 0;
    std::size_t m_elements = 0;
};

void Append(std::u16string& text, char32_t character)
{
    if (character < 0x10000)
    {
        text += static_cast<char16_t>(character);
        return;
    }
    text += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
    text += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
}

/// Nothing when the bytes are no UTF-8.
std::optional<std::u16string> FromUtf8(std::string_view bytes)
{
    std::u16string text;
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        if (lead < 0x80)
        {
            text += static_cast<char16_t>(lead);
            continue;
        }
        const int more = lead >= 0xC2 && lead < 0xE0   ? 1
                         : lead >= 0xE0 && lead < 0xF0 ? 2
                         : lead >= 0xF0 && lead < 0xF5 ? 3
                                                       : 0;
        if (more == 0 || bytes.size() - i <= static_cast<std::size_t>(more))
            return std::nullopt;
        char32_t character = lead & (0x3F >> more);
        for (int k = 0; k < more; ++k)
        {
            const auto next = static_cast<unsigned char>(bytes[++i]);
            if ((next & 0xC0) != 0x80)
                return std::nullopt;
            character = (character << 6) | (next & 0x3F);
        }
        const char32_t least = more == 1 ? 0x80 : more == 2 ? 0x800 : 0x10000;
        if (character < least || character > 0x10FFFF || (character >= 0xD800 && character < 0xE000))
            return std::nullopt;
        Append(text, character);
    }
    return text;
}

bool IsLead(char16_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsTrail(char16_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}
} // namespace

bool IsXmlAcceptable(std::string_view document)
{
    return document.size() <= XmlLimits::Bytes && MarkupReader(document).Run();
}

std::u16string DecodeXml(std::string_view document, const char16_t* codePage)
{
    if (document.starts_with("\xEF\xBB\xBF"))
        document.remove_prefix(3);
    if (document.starts_with("<?xml") && document.size() > 5 &&
        std::string_view(" \t\r\n").find(document[5]) != std::string_view::npos)
    {
        const std::size_t end = document.find("?>");
        document.remove_prefix(end == std::string_view::npos ? document.size() : end + 2);
    }
    if (auto text = FromUtf8(document))
        return std::move(*text);
    std::u16string text;
    for (const char byte : document)
        text += codePage[static_cast<unsigned char>(byte)];
    return text;
}

bool IsXmlText(std::u16string_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const char16_t unit = text[i];
        const bool paired = IsLead(unit) && i + 1 < text.size() && IsTrail(text[i + 1]);
        if (paired)
            ++i;
        else if (IsLead(unit) || IsTrail(unit) || unit >= 0xFFFE ||
                 (unit < 0x20 && unit != '\t' && unit != '\n' && unit != '\r'))
            return false;
    }
    return true;
}

std::string EscapeXml(std::u16string_view text)
{
    std::string escaped;
    escaped.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        char32_t character = text[i];
        if (IsLead(text[i]) && i + 1 < text.size())
            character = 0x10000 + ((character - 0xD800) << 10) + (text[++i] - 0xDC00U);
        switch (character)
        {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            if (character >= 0x20 && character < 0x7F)
                escaped += static_cast<char>(character);
            else
                escaped += "&#" + std::to_string(static_cast<std::uint32_t>(character)) + ";";
        }
    }
    return escaped;
}
} // namespace cloud

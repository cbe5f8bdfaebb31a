#include "suite/util/inifile.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>

namespace
{
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view blanks = " \t";

std::string_view Trim(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
    {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool HasControls(std::string_view text)
{
    return std::ranges::any_of(text,
                               [](unsigned char ch) { return (ch < 0x20 && ch != '\t') || ch == 0x7F; });
}

std::string Folded(std::string_view text)
{
    std::string folded(text);
    std::ranges::transform(folded, folded.begin(), [](char ch) {
        return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
    });
    return folded;
}

std::string IndexKey(std::string_view section, std::string_view key)
{
    // No name holds a line feed.
    return Folded(section) + '\n' + Folded(key);
}

struct Line
{
    enum class Kind
    {
        other,
        section,
        setting
    };
    Kind kind = Kind::other;
    std::string_view name;
    std::string_view value;
    std::size_t valueAt = 0; // in the raw line
};

std::string_view WithoutEnd(std::string_view raw)
{
    if (raw.ends_with('\n'))
    {
        raw.remove_suffix(1);
    }
    if (raw.ends_with('\r'))
    {
        raw.remove_suffix(1);
    }
    return raw;
}

Line Understand(std::string_view raw)
{
    Line line;
    std::string_view text = WithoutEnd(raw);
    if (text.length() > inimaxLine || HasControls(text))
    {
        return line;
    }
    if (text.starts_with(byteOrderMark))
    {
        text.remove_prefix(byteOrderMark.length());
    }
    text = Trim(text);
    if (text.empty() || text[0] == ';' || text[0] == '#')
    {
        return line;
    }
    if (text[0] == '[')
    {
        const std::size_t end = text.find(']');
        const std::string_view name = Trim(text.substr(1, end == std::string_view::npos ? 0 : end - 1));
        if (end != std::string_view::npos && !name.empty())
        {
            line.kind = Line::Kind::section;
            line.name = name;
        }
        return line;
    }
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos || equals == 0)
    {
        return line;
    }
    std::string_view value = Trim(text.substr(equals + 1));
    if (value.length() >= 2 && (value[0] == '"' || value[0] == '\'') && value.back() == value[0])
    {
        value = value.substr(1, value.length() - 2);
    }
    if (value.length() > inimaxValue)
    {
        return line;
    }
    line.kind = Line::Kind::setting;
    line.name = Trim(text.substr(0, equals));
    line.value = value;
    line.valueAt = raw.find('=') + 1;
    return line;
}

// Blanks at the ends, and quotes that would be taken for the pair around a value, need a pair around them.
std::string Quoted(std::string_view value)
{
    const bool quote = !value.empty() && (Trim(value) != value || value[0] == '"' || value[0] == '\'');
    return quote ? '"' + std::string(value) + '"' : std::string(value);
}
} // namespace

std::optional<iniCFile> iniCFile::Parse(std::string_view text)
{
    if (text.length() > inimaxFile || text.find('\0') != std::string_view::npos)
    {
        return std::nullopt;
    }
    iniCFile file;
    while (!text.empty())
    {
        const std::size_t end = std::min(text.find('\n'), text.length() - 1) + 1;
        file.m_lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    file.Index();
    return file;
}

void iniCFile::Index()
{
    m_values.clear();
    std::string section;
    for (std::size_t at = 0; at < m_lines.size(); ++at)
    {
        const Line line = Understand(m_lines[at]);
        if (line.kind == Line::Kind::section)
        {
            section = line.name;
        }
        else if (line.kind == Line::Kind::setting && !section.empty())
        {
            m_values.try_emplace(IndexKey(section, line.name), at);
        }
    }
}

std::optional<std::string> iniCFile::Find(std::string_view section, std::string_view key) const
{
    const auto found = m_values.find(IndexKey(section, key));
    if (found == m_values.end())
    {
        return std::nullopt;
    }
    return std::string(Understand(m_lines[found->second]).value);
}

std::string iniCFile::LineEnd() const
{
    return !m_lines.empty() && m_lines[0].ends_with('\n') && !m_lines[0].ends_with("\r\n") ? "\n" : "\r\n";
}

void iniCFile::EndLastLine()
{
    if (!m_lines.empty() && !m_lines.back().ends_with('\n'))
    {
        m_lines.back() += LineEnd();
    }
}

bool iniCFile::Set(std::string_view section, std::string_view key, std::string_view value)
{
    iniCFile changed(*this);
    const std::string end = LineEnd();
    const std::string setting = std::string(key) + '=' + Quoted(value) + end;
    const auto found = m_values.find(IndexKey(section, key));
    if (found != m_values.end())
    {
        // The key keeps its spelling, the line its end.
        std::string& raw = changed.m_lines[found->second];
        const std::string ownEnd = raw.substr(WithoutEnd(raw).length());
        raw = raw.substr(0, Understand(raw).valueAt) + Quoted(value) + (ownEnd.empty() ? end : ownEnd);
    }
    else
    {
        const auto isSection = [&](const std::string& raw) {
            const Line line = Understand(raw);
            return line.kind == Line::Kind::section && Folded(line.name) == Folded(section);
        };
        const auto isAnySection = [](const std::string& raw) {
            return Understand(raw).kind == Line::Kind::section;
        };
        auto header = std::ranges::find_if(changed.m_lines, isSection);
        if (header == changed.m_lines.end())
        {
            changed.EndLastLine();
            if (!changed.m_lines.empty() && !Trim(WithoutEnd(changed.m_lines.back())).empty())
            {
                changed.m_lines.push_back(end);
            }
            changed.m_lines.push_back('[' + std::string(section) + ']' + end);
            changed.m_lines.push_back(setting);
        }
        else
        {
            // Behind the section's last line that says something.
            auto place = std::find_if(header + 1, changed.m_lines.end(), isAnySection);
            while (Trim(WithoutEnd(*(place - 1))).empty())
            {
                --place;
            }
            if (place == changed.m_lines.end())
            {
                changed.EndLastLine();
            }
            changed.m_lines.insert(place, setting);
        }
    }

    // Read back as the next reader will, whatever the names and the value hold.
    const auto reread = Parse(changed.Text());
    if (!reread || reread->Find(section, key) != std::optional<std::string>(value))
    {
        return false;
    }
    *this = *reread;
    return true;
}

void iniCFile::Remove(std::string_view section, std::string_view key)
{
    const std::string wanted = IndexKey(section, key);
    std::string current;
    std::erase_if(m_lines, [&](const std::string& raw) {
        const Line line = Understand(raw);
        if (line.kind == Line::Kind::section)
        {
            current = line.name;
        }
        return line.kind == Line::Kind::setting && !current.empty() && IndexKey(current, line.name) == wanted;
    });
    Index();
}

std::string iniCFile::Text() const
{
    std::string text;
    for (const std::string& line : m_lines)
    {
        text += line;
    }
    return text;
}

std::optional<int> iniParseInt(std::string_view text)
{
    text = Trim(text.substr(0, text.find(';')));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
    {
        text.remove_prefix(1);
    }
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X"))
    {
        text.remove_prefix(2);
        base = 16;
    }
    std::uint64_t magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.length(), magnitude, base);
    if (error != std::errc() || end != text.data() + text.length())
    {
        return std::nullopt;
    }
    const std::uint64_t limit =
        static_cast<std::uint64_t>(std::numeric_limits<int>::max()) + (negative ? 1 : 0);
    if (magnitude > limit)
    {
        return std::nullopt;
    }
    const auto value = static_cast<std::int64_t>(magnitude);
    return static_cast<int>(negative ? -value : value);
}

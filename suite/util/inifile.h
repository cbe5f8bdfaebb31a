// An INI file's text: read without trust, changed without touching what is not understood. Plain C++.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// Bytes. What is longer counts as damaged.
constexpr std::size_t inimaxFile = std::size_t{1024} * 1024;
constexpr std::size_t inimaxLine = std::size_t{8} * 1024;
constexpr std::size_t inimaxValue = 4096;

/// The lines of a file in memory. A line is a section "[name]", a setting "key=value" or anything else, which
/// is kept and ignored: comments (";" or "#"), blank lines, lines over inimaxLine, settings whose value is
/// over inimaxValue, lines with control characters other than the tab. Names ignore the case of ASCII
/// letters; of equal names the first counts. Blanks around names and values do not belong to them, nor does a
/// pair of quotes around a value.
class iniCFile
{
public:
    /// Nothing when the text is no settings file: over inimaxFile, or with zero bytes in it.
    static std::optional<iniCFile> Parse(std::string_view text);

    iniCFile() = default; // without lines

    std::optional<std::string> Find(std::string_view section, std::string_view key) const;

    /// Sets or adds a setting; a new one goes to the end of its section, a new section to the end of the
    /// file. False, with nothing changed, when Find would not answer exactly this value afterwards (control
    /// characters or lengths that are not read, a key that holds "=").
    bool Set(std::string_view section, std::string_view key, std::string_view value);
    /// Takes every line that sets the key away.
    void Remove(std::string_view section, std::string_view key);

    /// The file's text, line ends as they were; new lines end as the first one does, else with CR LF.
    std::string Text() const;

private:
    void Index();
    std::string LineEnd() const;
    void EndLastLine();

    std::vector<std::string> m_lines;                      // with their line ends
    std::unordered_map<std::string, std::size_t> m_values; // line by folded section and key
};

/// A whole number: blanks, a sign, decimal digits or "0x" and hexadecimal ones, and nothing behind it but
/// blanks or a comment. Nothing when the text is no such number or it does not fit.
std::optional<int> iniParseInt(std::string_view text);

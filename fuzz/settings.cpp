// A settings file of any content: reading it never fails, and a change either refuses or reads back exactly
// and leaves every other line alone. The input is the file, with a section, a key and a value in its first
// three lines.

#include "fuzz/check.h"
#include "suite/util/inifile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace
{

std::string_view TakeLine(std::string_view& text)
{
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.length() : end + 1);
    return line;
}

// True when what is gone from the text lies within one line.
bool ChangesOneLine(std::string_view before, std::string_view after)
{
    const auto [firstBefore, firstAfter] = std::ranges::mismatch(before, after);
    before.remove_prefix(static_cast<std::size_t>(firstBefore - before.begin()));
    after.remove_prefix(static_cast<std::size_t>(firstAfter - after.begin()));
    while (!before.empty() && !after.empty() && before.back() == after.back())
    {
        before.remove_suffix(1);
        after.remove_suffix(1);
    }
    return before.find('\n') == std::string_view::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string_view section = TakeLine(text);
    const std::string_view key = TakeLine(text);
    const std::string_view value = TakeLine(text);
    iniParseInt(value);

    auto file = iniCFile::Parse(text);
    if (!file)
        return 0;
    Check(file->Text() == text);
    const auto found = file->Find(section, key);
    Check(!found || found->length() <= inimaxValue);

    if (!file->Set(section, key, value))
    {
        Check(file->Text() == text);
        return 0;
    }
    Check(file->Find(section, key) == value);
    const auto reread = iniCFile::Parse(file->Text());
    Check(reread && reread->Find(section, key) == value);
    Check(ChangesOneLine(text, file->Text()));
    if (found)
    {
        Check(file->Set(section, key, *found));
        Check(file->Find(section, key) == found);
    }
    file->Remove(section, key);
    Check(!file->Find(section, key));
    return 0;
}

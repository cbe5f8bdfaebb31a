#include "archive/files/pathsafety.h"

#include "archive/files/filenames.h"

#include <algorithm>
#include <array>

namespace arc
{
namespace
{
constexpr std::string_view Separators = "\\/";

bool IsForbidden(char character)
{
    constexpr std::string_view forbidden = "<>:\"|?*";
    return static_cast<unsigned char>(character) < 0x20 ||
           forbidden.find(character) != std::string_view::npos;
}

// "1" to "9", and the superscript digits that Windows takes for 1, 2 and 3: in code page 1252 and in UTF-8.
bool IsDeviceDigit(std::string_view text)
{
    if (text.size() == 2 && text[0] == '\xC2')
    {
        text.remove_prefix(1);
        return text == "\xB9" || text == "\xB2" || text == "\xB3";
    }
    return text.size() == 1 &&
           ((text[0] >= '0' && text[0] <= '9') || text == "\xB9" || text == "\xB2" || text == "\xB3");
}

// A component that Windows would keep as it stands: not empty, no dots or blanks at its end (which it drops,
// so that
// "..", ". ." and "a.pf." all mean something else), no device.
bool IsSafeComponent(std::string_view component)
{
    return !component.empty() && component.size() <= MaxComponentLength && component.back() != '.' &&
           component.back() != ' ' && std::none_of(component.begin(), component.end(), IsForbidden) &&
           !IsDeviceName(component);
}
} // namespace

std::optional<SafeName> SafeRelativePath(std::string_view stored, std::size_t folderLength)
{
    SafeName safe;
    if (!stored.empty() && Separators.find(stored.back()) != std::string_view::npos)
    {
        safe.folder = true;
        stored.remove_suffix(1);
    }
    // Splitting never drops a component: a separator at the start, or two in a row, leave an empty one, which
    // is refused. So rooted, network and "\\?\" forms need no rule of their own.
    while (true)
    {
        const std::size_t end = stored.find_first_of(Separators);
        const std::string_view component = stored.substr(0, end);
        if (!IsSafeComponent(component))
        {
            return std::nullopt;
        }
        safe.path.append(component);
        if (end == std::string_view::npos)
        {
            break;
        }
        safe.path += '\\';
        stored.remove_prefix(end + 1);
    }
    if (folderLength + 1 + safe.path.size() > MaxPathLength)
    {
        return std::nullopt;
    }
    return safe;
}

std::optional<std::string> SafeFileName(std::string_view stored, std::size_t folderLength)
{
    if (stored.find_first_of(Separators) != std::string_view::npos)
    {
        return std::nullopt;
    }
    auto safe = SafeRelativePath(stored, folderLength);
    if (!safe)
    {
        return std::nullopt;
    }
    return std::move(safe->path);
}

bool IsDeviceName(std::string_view name)
{
    // Windows looks at what stands before the first dot or colon, without the blanks at its end.
    std::string_view stem = name.substr(0, name.find_first_of(".:"));
    while (!stem.empty() && stem.back() == ' ')
    {
        stem.remove_suffix(1);
    }
    constexpr std::array<std::string_view, 7> whole = {"CON",    "PRN",     "AUX",   "NUL",
                                                       "CONIN$", "CONOUT$", "CLOCK$"};
    if (std::any_of(whole.begin(), whole.end(),
                    [&](std::string_view device) { return EqualNoCase(stem, device); }))
    {
        return true;
    }
    const std::string_view port = stem.substr(0, 3);
    return (EqualNoCase(port, "COM") || EqualNoCase(port, "LPT")) && IsDeviceDigit(stem.substr(port.size()));
}

bool LiesBelow(std::string_view fullPath, std::string_view fullFolder)
{
    while (!fullFolder.empty() && Separators.find(fullFolder.back()) != std::string_view::npos)
    {
        fullFolder.remove_suffix(1);
    }
    return !fullFolder.empty() && fullPath.size() > fullFolder.size() + 1 &&
           fullPath[fullFolder.size()] == '\\' &&
           EqualNoCase(fullPath.substr(0, fullFolder.size()), fullFolder);
}

std::string SameFileKey(std::string_view safePath)
{
    return FoldCase(safePath);
}
} // namespace arc

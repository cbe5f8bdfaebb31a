#include "archive/files/filenames.h"

#include <cctype>
#include <cstdio>

namespace arc
{
namespace
{
// Decimal digits, padded with zeros on the left to the width.
std::string Padded(int number, std::size_t width)
{
    std::string digits = std::to_string(number);
    if (digits.size() < width)
    {
        digits.insert(0, width - digits.size(), '0');
    }
    return digits;
}

bool IsSeparator(char character)
{
    return character == '\\' || character == '/';
}
} // namespace

ArchiveKind KindOfArchive(std::string_view path)
{
    std::string lower;
    lower.reserve(path.size());
    for (const char character : path)
    {
        lower += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    }
    const struct
    {
        const char* part;
        ArchiveKind kind;
    } kinds[] = {{".kar", ArchiveKind::VolumeFile},
                 {"current.dat", ArchiveKind::Diskettes},
                 {".pf", ArchiveKind::PatientFile}};
    for (const auto& kind : kinds)
    {
        if (lower.find(kind.part) != std::string::npos)
        {
            return kind.kind;
        }
    }
    return ArchiveKind::None;
}

bool IsZippedArchive(std::string_view path)
{
    return EqualNoCase(ExtensionOf(path), ".kaz");
}

std::string PatientFileName(std::string_view id)
{
    return std::string(id).append(PatientFileExtension);
}

std::string TimepointDigits(int index)
{
    return Padded(index, 2);
}

std::string TimepointBaseName(std::string_view id, int index)
{
    return std::string(id).append(TimepointDigits(index));
}

std::string ImageFileName(std::string_view base, int group, char type)
{
    std::string name(base);
    name += ".I";
    name += static_cast<char>('0' + group);
    name += type;
    return name;
}

std::string ImageCompanionName(std::string_view imageName)
{
    std::string name(imageName);
    const std::size_t dot = name.rfind('.');
    if (dot != std::string::npos && dot + 1 < name.size() && FoldCase(name[dot + 1]) == 'I')
    {
        name[dot + 1] = 'V';
    }
    return name;
}

std::string TimepointDataName(std::string_view id, int index, std::string_view extension)
{
    return TimepointBaseName(id, index).append(extension);
}

std::string AlternateImageName(std::string_view imageName)
{
    constexpr std::size_t length = 4;
    if (imageName.size() < length || !EqualNoCase(imageName.substr(imageName.size() - length), ".I40"))
    {
        return {};
    }
    return std::string(imageName.substr(0, imageName.size() - length)) + ".C01";
}

std::vector<std::string> ArchivePatterns(std::string_view id)
{
    std::vector<std::string> patterns;
    for (const pat::FileRule& rule : pat::FileRules())
    {
        if (!rule.searched.empty())
        {
            patterns.push_back(std::string(id).append(rule.searched));
        }
    }
    return patterns;
}

std::string ArchivePatternArgument(std::string_view id)
{
    std::string argument;
    for (const std::string& pattern : ArchivePatterns(id))
    {
        if (!argument.empty())
        {
            argument += ' ';
        }
        argument += '"' + pattern + '"';
    }
    return argument;
}

std::vector<std::string> SplitPatternArgument(std::string_view argument)
{
    std::vector<std::string> items;
    constexpr std::string_view separators = " \"";
    std::size_t start = argument.find_first_not_of(separators);
    while (start != std::string_view::npos)
    {
        const std::size_t end = argument.find_first_of(separators, start);
        items.emplace_back(argument.substr(start, end - start));
        start = argument.find_first_not_of(separators, end);
    }
    return items;
}

std::string VolumeNumberText(int number)
{
    return Padded(number, 3);
}

std::string VolumeFileName(std::string_view folder, std::string_view id, int number)
{
    std::string name(id);
    name += '.';
    name += VolumeNumberText(number);
    return JoinPath(folder, name);
}

std::string VolumeSearchPattern(char drive, std::string_view id)
{
    return std::string(1, drive) + ":\\" + std::string(id) + ".0*";
}

std::string WorkingZipName(std::string_view folder, std::string_view id)
{
    return JoinPath(folder, std::string(id) + ".ZIP");
}

std::string DatabaseRecordName(std::string_view folder, std::string_view id)
{
    return JoinPath(folder, std::string(id) + ".ACV");
}

std::string JoinPath(std::string_view folder, std::string_view name)
{
    std::string path(folder);
    if (!path.empty() && !IsSeparator(path.back()))
    {
        path += '\\';
    }
    return path.append(name);
}

std::string_view FileNameOf(std::string_view path)
{
    const std::size_t end = path.find_last_of("\\/:");
    return end == std::string_view::npos ? path : path.substr(end + 1);
}

std::string_view FolderOf(std::string_view path)
{
    const std::size_t end = path.find_last_of("\\/:");
    if (end == std::string_view::npos)
    {
        return {};
    }
    const bool keep = path[end] == ':' || end == 0 || path[end - 1] == ':';
    return path.substr(0, keep ? end + 1 : end);
}

std::string_view ExtensionOf(std::string_view path)
{
    const std::string_view name = FileNameOf(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string_view{} : name.substr(dot);
}

std::string WithExtension(std::string_view path, std::string_view extension)
{
    std::string changed(path.substr(0, path.size() - ExtensionOf(path).size()));
    changed += '.';
    return changed.append(extension);
}

bool HasDriveLetter(std::string_view path)
{
    return path.size() >= 2 && path[1] == ':' && FoldCase(path[0]) >= 'A' && FoldCase(path[0]) <= 'Z';
}

bool IsDisketteDrive(std::string_view path)
{
    return HasDriveLetter(path) && FoldCase(path[0]) == 'A';
}

bool MatchesWildcard(std::string_view name, std::string_view pattern)
{
    // Greedy with one point to come back to: behind the last star, with one character more for it.
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t star = std::string_view::npos;
    std::size_t starAt = 0;
    while (at < name.size())
    {
        if (in < pattern.size() && pattern[in] == '*')
        {
            star = in++;
            starAt = at;
        }
        else if (in < pattern.size() && (pattern[in] == '?' || FoldCase(pattern[in]) == FoldCase(name[at])))
        {
            ++in;
            ++at;
        }
        else if (star != std::string_view::npos)
        {
            in = star + 1;
            at = ++starAt;
        }
        else
        {
            return false;
        }
    }
    return pattern.find_first_not_of('*', in) == std::string_view::npos;
}
} // namespace arc

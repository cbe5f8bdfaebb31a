#include "suite/patients/files/filefamily.h"

#include <algorithm>
#include <array>

namespace pat
{
namespace
{
constexpr std::size_t TimepointDigits = 2;

// The first row that fits decides.
constexpr std::array<FileRule, 17> Rules{{
    {FileKind::PatientFile, ".PF", ".PF"},
    {FileKind::Image, "##.I??", "??.i??"},
    {FileKind::Companion, "##.V??", "??.v??"},
    {FileKind::TimepointData, "##.M", "??.m"},
    {FileKind::FurtherImage, "##.I??.???", "??.i??.???"},
    {FileKind::Extra, "$##$*", "$*"},
    {FileKind::Extra, "$*", ""},
    {FileKind::DataImage, "##.*.I??", "??.d?.i??"},
    {FileKind::Morph, "%.2DMORPH", "*.2dmorph"},
    {FileKind::AlternateImage, "##.C01", ""},
    {FileKind::TimepointData, "##.DF0", ""},
    {FileKind::TimepointData, "##.DF1", ""},
    {FileKind::TimepointData, "##.DF2", ""},
    {FileKind::TimepointData, "##.DF3", ""},
    {FileKind::KeptPatientFile, ".ORIGINALPF", ""},
    {FileKind::UnfinishedPatientFile, ".PF~*", ""},
    {FileKind::DatabaseRecord, ".ACV", ""},
}};

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool FitsPlain(std::string_view text, std::string_view rule)
{
    return std::equal(text.begin(), text.end(), rule.begin(), rule.end(), [](char character, char wanted) {
        return wanted == '?' || (wanted == '#' ? IsDigit(character) : FoldCase(character) == wanted);
    });
}

// A rule holds at most one run.
bool Fits(std::string_view rest, std::string_view rule)
{
    const std::size_t run = rule.find_first_of("*%");
    if (run == std::string_view::npos)
    {
        return FitsPlain(rest, rule);
    }
    const std::string_view end = rule.substr(run + 1);
    return rest.size() >= run + end.size() && FitsPlain(rest.substr(0, run), rule.substr(0, run)) &&
           FitsPlain(rest.substr(rest.size() - end.size()), end) &&
           (rule[run] == '*' || rest.find('$') == std::string_view::npos);
}

// Where the timepoint's number stands behind the ID; npos when there is none.
std::size_t NumberPosition(std::string_view rest, const FileRule& rule)
{
    const std::size_t digits = rule.rest.find('#');
    if (digits != std::string_view::npos || rule.kind != FileKind::Morph)
    {
        return digits;
    }
    const bool isNumber =
        rest.size() > TimepointDigits && IsDigit(rest[0]) && IsDigit(rest[1]) && !IsDigit(rest[2]);
    return isNumber ? 0 : std::string_view::npos;
}

struct Found
{
    const FileRule* rule;
    std::size_t number; // position of the timepoint's digits behind the ID; npos for none
};

std::optional<Found> Find(std::string_view name, std::string_view id)
{
    if (id.empty() || name.size() <= id.size() || !EqualNoCase(name.substr(0, id.size()), id))
    {
        return std::nullopt;
    }
    const std::string_view rest = name.substr(id.size());
    const auto rule =
        std::find_if(Rules.begin(), Rules.end(), [&](const FileRule& r) { return Fits(rest, r.rest); });
    if (rule == Rules.end())
    {
        return std::nullopt;
    }
    return Found{&*rule, NumberPosition(rest, *rule)};
}
} // namespace

std::span<const FileRule> FileRules()
{
    return Rules;
}

std::optional<FileIdentity> IdentifyFile(std::string_view name, std::string_view id)
{
    const auto found = Find(name, id);
    if (!found)
    {
        return std::nullopt;
    }
    FileIdentity identity{found->rule->kind, -1};
    if (found->number != std::string_view::npos)
    {
        const std::string_view digits = name.substr(id.size() + found->number);
        identity.timepoint = (digits[0] - '0') * 10 + (digits[1] - '0');
    }
    return identity;
}

std::vector<std::string_view> PossibleOwners(std::string_view name)
{
    std::vector<std::string_view> owners;
    // No ID holds "$": the first one ends it.
    for (std::size_t length = std::min({name.size(), name.find('$'), MaxIdLength}); length > 0; --length)
    {
        if (Find(name, name.substr(0, length)))
        {
            owners.push_back(name.substr(0, length));
        }
    }
    return owners;
}

bool MayBe(std::string_view name, FileKind kind)
{
    const std::vector<std::string_view> owners = PossibleOwners(name);
    return std::any_of(owners.begin(), owners.end(),
                       [&](std::string_view owner) { return IdentifyFile(name, owner)->kind == kind; });
}

std::string MovedFileName(std::string_view name, std::string_view id, std::string_view newId,
                          int newTimepoint)
{
    const auto found = Find(name, id);
    if (!found)
    {
        return {};
    }
    std::string rest(name.substr(id.size()));
    if (newTimepoint >= 0 && newTimepoint < 100 && found->number != std::string_view::npos)
    {
        rest[found->number] = static_cast<char>('0' + newTimepoint / 10);
        rest[found->number + 1] = static_cast<char>('0' + newTimepoint % 10);
    }
    return std::string(newId) + rest;
}

char FoldCase(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    if (byte >= 'a' && byte <= 'z')
    {
        return static_cast<char>(byte - 0x20);
    }
    if (byte >= 0xE0 && byte != 0xF7)
    {
        return static_cast<char>(byte == 0xFF ? 0x9F : byte - 0x20);
    }
    if (byte == 0x9A || byte == 0x9C || byte == 0x9E)
    {
        return static_cast<char>(byte - 0x10);
    }
    return character;
}

std::string FoldCase(std::string_view text)
{
    std::string folded(text);
    for (char& character : folded)
    {
        character = FoldCase(character);
    }
    return folded;
}

bool EqualNoCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char l, char r) { return FoldCase(l) == FoldCase(r); });
}
} // namespace pat

#include "archive/files/mergenames.h"

#include "archive/files/filenames.h"

#include <utility>

namespace arc
{
namespace
{
constexpr std::size_t NumberDigits = 2;

bool BeginsWith(std::string_view name, std::string_view beginning)
{
    return name.size() >= beginning.size() && EqualNoCase(name.substr(0, beginning.size()), beginning);
}
} // namespace

PatientFileKind KindOfFile(std::string_view name, std::string_view id)
{
    const std::string_view extension = ExtensionOf(name);
    if (EqualNoCase(extension, PatientFileExtension) || EqualNoCase(extension, ".ACV"))
        return PatientFileKind::Record;
    if (!BeginsWith(name, id))
        return PatientFileKind::PerhapsForeign;
    // Behind the ID come a timepoint's number and a dot, or the "$" of its extras; all else may be a longer ID.
    const std::string_view rest = name.substr(id.size());
    const bool isTimepointFile = rest.size() > NumberDigits && rest[NumberDigits] == '.' &&
                                 rest.substr(0, NumberDigits).find_first_not_of("0123456789") == std::string_view::npos;
    const bool isExtra = !rest.empty() && rest.front() == '$';
    return isTimepointFile || isExtra ? PatientFileKind::Own : PatientFileKind::PerhapsForeign;
}

MergeNames::MergeNames(std::string archivedId, std::string targetId)
    : m_archivedId(std::move(archivedId)), m_targetId(std::move(targetId))
{
}

void MergeNames::Add(int archivedNumber, int newNumber)
{
    m_numbers[TimepointDigits(archivedNumber)] = TimepointDigits(newNumber);
}

std::string MergeNames::Of(std::string_view name) const
{
    if (KindOfFile(name, m_archivedId) == PatientFileKind::Record || !BeginsWith(name, m_archivedId))
        return {};
    std::string_view rest = name.substr(m_archivedId.size());
    std::string lead;
    if (!rest.empty() && rest.front() == '$')
    {
        lead = "$";
        rest.remove_prefix(1);
    }
    const auto found = m_numbers.find(rest.substr(0, NumberDigits));
    // A further character of the name would make it another timepoint's or another patient's.
    const bool ended = rest.size() > NumberDigits && (rest[NumberDigits] == '.' || rest[NumberDigits] == '$');
    if (found == m_numbers.end() || !ended)
        return {};
    return m_targetId + lead + found->second + std::string(rest.substr(NumberDigits));
}
} // namespace arc

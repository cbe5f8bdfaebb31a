#include "archive/dialogs/archivechoices.h"

#include <algorithm>
#include <array>
#include <utility>

namespace arc
{
namespace
{
constexpr std::array<std::pair<ArchiveRadio, ARCHIVE_OP>, 5> Operations{{
    {ArchiveRadio::GetFromArchive, ARCHIVE_OP_LOAD},
    {ArchiveRadio::SaveToArchive, ARCHIVE_OP_SAVE},
    {ArchiveRadio::MergeTimepoints, ARCHIVE_OP_MERGE},
    {ArchiveRadio::GetFromInternet, ARCHIVE_OP_DOWNLOAD},
    {ArchiveRadio::SaveToInternet, ARCHIVE_OP_UPLOAD},
}};

ArchiveRadio Preselected(ARCHIVE_OP operation, const ArchiveOffer& offer)
{
    const bool hasPreselection =
        operation == ARCHIVE_OP_LOAD || operation == ARCHIVE_OP_SAVE || operation == ARCHIVE_OP_MERGE;
    if (!hasPreselection)
        return ArchiveRadio::None;
    const ArchiveRadio radio = RadioOfOperation(operation);
    return offer.IsEnabled(radio) ? radio : ArchiveRadio::GetFromArchive;
}
} // namespace

std::optional<ARCHIVE_OP> OperationOfRadio(ArchiveRadio radio)
{
    const auto found = std::find_if(Operations.begin(), Operations.end(),
                                    [radio](const auto& entry) { return entry.first == radio; });
    if (found == Operations.end())
        return std::nullopt;
    return found->second;
}

ArchiveRadio RadioOfOperation(ARCHIVE_OP operation)
{
    const auto found = std::find_if(Operations.begin(), Operations.end(),
                                    [operation](const auto& entry) { return entry.second == operation; });
    return found == Operations.end() ? ArchiveRadio::None : found->first;
}

bool ArchiveOffer::IsEnabled(ArchiveRadio radio) const
{
    switch (radio)
    {
    case ArchiveRadio::GetFromArchive:
        return getFromArchive;
    case ArchiveRadio::SaveToArchive:
        return saveToArchive;
    case ArchiveRadio::MergeTimepoints:
        return mergeTimepoints;
    case ArchiveRadio::GetFromInternet:
        return getFromInternet;
    case ArchiveRadio::SaveToInternet:
        return saveToInternet;
    case ArchiveRadio::None:
        break;
    }
    return false;
}

ArchiveOffer OfferFor(const ArchiveSituation& situation)
{
    const int allow = situation.allowPatientChanges;
    ArchiveOffer offer;
    offer.getFromArchive = offer.getFromInternet =
        allow == 1 || allow == 3 || situation.practiceManagement || situation.viewerEdition;
    offer.saveToArchive = offer.saveToInternet = offer.includeViewer = situation.patientValid;
    offer.mergeTimepoints =
        situation.patientValid && allow != 0 && !situation.viewerEdition && situation.selectedPatients == 1;
    offer.selected = Preselected(situation.operation, offer);
    return offer;
}
} // namespace arc

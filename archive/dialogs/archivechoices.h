// What the archive dialog offers, preselects and refuses, apart from its window.
#pragma once

#include "app/velenums.h"

#include <optional>

namespace arc
{
/// Buttons of the archive dialog's radio group, by their index in it.
enum class ArchiveRadio
{
    None = -1, ///< nothing is selected yet
    GetFromArchive = 0,
    SaveToArchive = 1,
    MergeTimepoints = 2,
    GetFromInternet = 3,
    SaveToInternet = 4
};

/// The operation that a button stands for; the two internet buttons stand in the opposite order to their
/// codes. Nothing for ArchiveRadio::None.
std::optional<ARCHIVE_OP> OperationOfRadio(ArchiveRadio radio);
ArchiveRadio RadioOfOperation(ARCHIVE_OP operation);

/// What the dialog was opened on.
struct ArchiveSituation
{
    ARCHIVE_OP operation = ARCHIVE_OP_LOAD;
    bool patientValid = false; ///< a patient is given and stored in the database
    int selectedPatients = 0;
    int allowPatientChanges = 1; ///< the setting of this name
    bool practiceManagement = false;
    bool viewerEdition = false;
};

struct ArchiveOffer
{
    bool getFromArchive = false;
    bool saveToArchive = false;
    bool mergeTimepoints = false;
    bool getFromInternet = false;
    bool saveToInternet = false;
    bool includeViewer = false;
    ArchiveRadio selected = ArchiveRadio::None;

    bool IsEnabled(ArchiveRadio radio) const;
};

/// Loading, saving and merging preselect their own button, or "get from archive" where that is disabled; the
/// two internet operations preselect nothing.
ArchiveOffer OfferFor(const ArchiveSituation& situation);
} // namespace arc

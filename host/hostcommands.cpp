#include "host/hostcommands.h"

#include "host/hostres.h"

#include <algorithm>
#include <array>

namespace
{

// clang-format off
constexpr std::array<hostSCommand, 23> kCommands = {{
    // id                    export                       needs               icon                     group
    {ID_PRACTICE_OPEN,       nullptr,                     hostNeed::nothing,  hostIcon::none,          false},
    {ID_PRACTICE_REFRESH,    nullptr,                     hostNeed::practice, hostIcon::none,          false},
    {ID_PRACTICE_MANAGEMENT, nullptr,                     hostNeed::practice, hostIcon::none,          false},
    {ID_PATIENT_NEW,         "NewPatientDlg",             hostNeed::practice, hostIcon::newPatient,    false},
    {ID_PATIENT_NEWFROM,     "NewPatientDlgWithData",     hostNeed::practice, hostIcon::newFromStudy,  false},
    {ID_PATIENT_CHANGE,      "ChangePatientDlg",          hostNeed::patient,  hostIcon::changePatient, false},
    {ID_PATIENT_RENAME,      "RenameDlg",                 hostNeed::patient,  hostIcon::renamePatient, false},
    {ID_PATIENT_DELETE,      "DeleteDlg",                 hostNeed::patient,  hostIcon::deletePatient, false},
    {ID_PATIENT_IMPORT,      "ImportPatientDiagnostics",  hostNeed::patient,  hostIcon::none,          false},
    {ID_TIMEPOINT_NEW,       "NewTimepointDlg",           hostNeed::patient,  hostIcon::newTimepoint,  true},
    {ID_ARCHIVE_SAVE,        "ArchiveDlg",                hostNeed::patients, hostIcon::saveArchive,   true},
    {ID_ARCHIVE_LOAD,        "ArchiveDlg",                hostNeed::practice, hostIcon::loadArchive,   false},
    {ID_ARCHIVE_MERGE,       "ArchiveDlg",                hostNeed::patient,  hostIcon::none,          false},
    {ID_ARCHIVE_UPLOAD,      "ArchiveDlg",                hostNeed::patients, hostIcon::none,          false},
    {ID_ARCHIVE_DOWNLOAD,    "ArchiveDlg",                hostNeed::practice, hostIcon::none,          false},
    {ID_ARCHIVE_ALLOW,       "SetArchivingAllowed",       hostNeed::practice, hostIcon::none,          false},
    {ID_KEYWORDS_PATIENT,    "EditKeywords",              hostNeed::practice, hostIcon::keywords,      true},
    {ID_KEYWORDS_IMAGE,      "EditKeywords",              hostNeed::practice, hostIcon::none,          false},
    {ID_VIEW_AUDITLOG,       nullptr,                     hostNeed::nothing,  hostIcon::auditLog,      true},
    {ID_VIEW_TOOLS,          nullptr,                     hostNeed::nothing,  hostIcon::none,          false},
    {ID_VIEW_STATUS,         nullptr,                     hostNeed::nothing,  hostIcon::none,          false},
    {ID_HELP_MODULE,         nullptr,                     hostNeed::practice, hostIcon::none,          false},
    {ID_HELP_ABOUT,          nullptr,                     hostNeed::nothing,  hostIcon::none,          false},
}};
// clang-format on

} // namespace

std::span<const hostSCommand> hostGetCommands()
{
    return kCommands;
}

const hostSCommand* hostFindCommand(int id)
{
    const auto* found =
        std::find_if(kCommands.begin(), kCommands.end(), [&](const hostSCommand& command) { return command.id == id; });
    return found == kCommands.end() ? nullptr : found;
}

bool hostIsOffered(const hostSCommand& command, bool practiceOpen, std::size_t selectedPatients)
{
    switch (command.need)
    {
    case hostNeed::nothing:
        return true;
    case hostNeed::practice:
        return practiceOpen;
    case hostNeed::patient:
        return practiceOpen && selectedPatients == 1;
    case hostNeed::patients:
        return practiceOpen && selectedPatients > 0;
    }
    return false;
}

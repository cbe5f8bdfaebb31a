#pragma once

// A patient's ".PF" file: header line and timepoints as text, for programs that read no database; inside the
// library only.
//
// The file follows the record: a saved patient's ID is noted within its transaction and the file written from
// what is stored when that is committed. What a crash, a full disk or a file in use prevents is done when the
// database is next opened.

#include "suite/patients/files/patimagetypes.h"
#include "suite/patients/store/patdefs.h"
#include "suite/util/veldate.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a ".PF" file says.
struct patSPatientFile
{
    struct Timepoint
    {
        int nNumber = 0;
        CString strName;
        velCDate date;
        std::array<DWORD, patCImageTypes::GROUP_COUNT> bits{};
    };
    CString strLast, strFirst, strID;
    std::vector<Timepoint> timepoints;
};

/// The header line (family name, given name, ID, each at most 25 characters and ended by byte 1, then a line
/// feed) and a line per timepoint; and the way back, nothing when the text is none of a patient.
std::string patPatientFileText(const patSPatientFile& patient);
std::optional<patSPatientFile> patReadPatientFileText(std::string_view text);

/// Writes the ".PF" file into a folder, the working folder when null or empty; nothing when there is none.
/// The file there is replaced as a whole. Throws dbErrIO, dbErrDiskFull.
void patWritePatientFile(const patSPatientFile& patient, LPCTSTR pszFolder);

/// Throws dbErrIO when the working folder is set but not there.
void patRequireWorkingFolder();

/// Has the ".PF" file of an ID written, or removed where no patient has the ID, when the open transaction is
/// committed. Steps: "patientFile.noted", "patientFile.committed", "patientFile.written", "patientFile.done".
void patFollowAtCommit(LPCTSTR pszID);

/// Has it written, or removed, now; outside of transactions. False when that fails, and is left to the next
/// opening.
bool patFollowNow(LPCTSTR pszID);

/// Does what is left of it from earlier. Throws nothing.
void patFinishPatientFiles() noexcept;

/// Removes the texts that processes of this computer were about to put in place when they ended. For the
/// opening of a database: nothing of this process may be under way.
void patRemoveAbandonedTexts() noexcept;

#pragma once

#include "suite/patients/records/dbpatient.h"

/// Reads a patient's ".PF" file: names, ID and timepoints; everything else of the patient is made empty.
/// FALSE, with the patient unchanged, when the file cannot be read or is none.
VELPAT_API BOOL patReadPatientFile(LPCTSTR pszPath, dbCPatient& patient);

/// Brings the ".PF" file of an ID in the working folder in line with what is stored. On the database's
/// thread, outside of transactions. FALSE when that fails; the next opening of the database then does it.
VELPAT_API BOOL patRenewPatientFile(LPCTSTR pszID);

/// While it lives, the working folder holds a ".PF" file of the earlier format in place of the patient's own,
/// which waits under the extension "ORIGINALPF". An end of the process meanwhile is made good when the
/// database is next opened. What is stored of the patient meanwhile is in its own file only when that is then
/// renewed. Any thread. Throws dbErrIO, dbErrDiskFull, with the patient's own file in its place.
class VELPAT_API patCEarlierFile
{
public:
    explicit patCEarlierFile(const dbCPatient& patient);
    ~patCEarlierFile();
    patCEarlierFile(const patCEarlierFile&) = delete;
    patCEarlierFile& operator=(const patCEarlierFile&) = delete;

    /// Puts back what processes that ended left behind in the working folder, and renews it. Throws nothing.
    static void RestoreAbandoned() noexcept;

private:
    void Restore() noexcept;

    CString m_strFile, m_strOriginal;
    HANDLE m_hOriginal =
        INVALID_HANDLE_VALUE; ///< open while the file is away: tells others that it is wanted
};

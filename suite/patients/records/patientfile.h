#pragma once

#include "suite/patients/records/dbpatient.h"

/// Reads a patient's ".PF" file: names, ID and timepoints; everything else of the patient is made empty.
/// FALSE, with the patient unchanged, when the file cannot be read or is none.
VELPAT_API BOOL patReadPatientFile(LPCTSTR pszPath, dbCPatient& patient);

/// While it lives, the working folder holds a ".PF" file of the earlier format in place of the patient's own,
/// which waits under the extension "ORIGINALPF". An end of the process meanwhile is made good when the
/// database is next opened. Throws dbErrIO, dbErrDiskFull, with the patient's own file in its place.
class VELPAT_API patCEarlierFile
{
public:
    explicit patCEarlierFile(const dbCPatient& patient);
    ~patCEarlierFile();
    patCEarlierFile(const patCEarlierFile&) = delete;
    patCEarlierFile& operator=(const patCEarlierFile&) = delete;

    /// Puts back what processes that ended left behind in the working folder. Throws nothing.
    static void RestoreAbandoned() noexcept;

private:
    void Restore() noexcept;

    CString m_strFile, m_strOriginal;
    HANDLE m_hOriginal =
        INVALID_HANDLE_VALUE; ///< open while the file is away: tells others that it is wanted
};

#pragma once

#include "suite/patients/files/filestate.h"
#include "suite/patients/store/dblist.h"

/// A patient's file as the service's catalogue knows it.
struct dbSCatalogFile
{
    CString strName; ///< without folder; begins with the patient's ID
    CString strCatalogGUID;
    CString strHash; ///< of the content that is meant (patCFileHasher); empty while it is not known
};

/// What the catalogue says of a patient's files. An entry stays as long as its file: it goes along with a new
/// ID, and goes with the file when the timepoint, its images or the patient are removed.
class VELPAT_API dbCCatalogFiles : public dbTList<dbSCatalogFile>
{
public:
    /// Reads a patient's entries by name. Returns how many.
    int LoadByPatID(LPCTSTR pszPatientGUID);
    /// Inserts or replaces the entry of a file at once. dbErrNotFound for an unknown patient, dbErrInvalid
    /// for a name that is none of the patient's files.
    static void Store(LPCTSTR pszPatientGUID, const dbSCatalogFile& file);
    /// Forgets files that are removed, within the transaction that removes them.
    static void Forget(LPCTSTR pszPatientGUID, const patFileStates& files);
};

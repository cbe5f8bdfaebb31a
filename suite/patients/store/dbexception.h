#pragma once

#include "suite/patients/store/patdefs.h"

/// What went wrong in a call of the patient-database library. Stable numbers: they are logged and reported.
enum dbError
{
    dbErrNone = 0,
    dbErrNotOpen = 1,           ///< no database is open
    dbErrMissing = 2,           ///< the database file does not exist
    dbErrExists = 3,            ///< Create found a file of that name
    dbErrLocked = 4,            ///< another user kept the database busy for longer than the timeout
    dbErrReadOnly = 5,          ///< the file or its folder cannot be written
    dbErrCorrupt = 6,           ///< the file is damaged or is no database at all
    dbErrNotPatients = 7,       ///< a database, but not one of patients
    dbErrNewerVersion = 8,      ///< written by a newer version of the program
    dbErrDuplicateID = 9,       ///< the patient ID (in any letter case) is taken
    dbErrChangedElsewhere = 10, ///< the record was changed or deleted by someone else since it was loaded
    dbErrText = 11,             ///< text with characters that cannot be converted
    dbErrDiskFull = 12,         ///< no space left
    dbErrIO = 13,               ///< the file or a patient file could not be read or written
    dbErrInUse = 14,            ///< the record is still used by others and cannot be deleted
    dbErrNotFound = 15,         ///< a record that must exist does not
    dbErrInvalid = 16, ///< an argument that cannot be stored (empty ID, over-long text, bad reference)
    dbErrInternal = 17,     ///< anything else; the detail tells
    dbErrDuplicateGUID = 18, ///< another record has the GUID
    dbErrFilesPending = 19,  ///< files under this ID still wait to be renamed or removed
    dbErrPatientInUse = 20,  ///< another user has locked the patient; the detail is the user's name
    dbErrReservedID = 21,    ///< an ID under which Windows makes no files (CON, AUX, ...)
    dbErrNetwork = 22        ///< the file lies on another computer and is in use in a way that only that allows
};

/// Thrown by pointer, as the framework's exceptions are: catch, report, Delete.
class VELPAT_API dbCException : public CException
{
    DECLARE_DYNAMIC(dbCException)

public:
    dbCException(dbError nError, LPCTSTR pszDetail);

    dbError GetError() const
    {
        return m_nError;
    }

    /// What the database engine or the file system said, or what the error is about; may be empty.
    const CString& GetDetail() const
    {
        return m_strDetail;
    }

    /// The sentence for the user, from the string table, followed by the detail.
    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;

    [[noreturn]] static void Throw(dbError nError, LPCTSTR pszDetail = nullptr);

private:
    dbError m_nError;
    CString m_strDetail;
};

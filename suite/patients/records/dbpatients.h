#pragma once

#include "suite/patients/files/filestate.h"
#include "suite/patients/records/dbpatient.h"

/// Answers of the lock calls.
enum patLockResult
{
    patLockFree = 0,        ///< nobody else holds the patient (LockPatient: it is now locked by this process)
    patLockInUse = 1994,    ///< another user holds it
    patLockPassable = 1995, ///< other users only look at it; it may be passed but not owned
    patLockFailed = 1996    ///< the database could not be asked
};

enum patLockMode
{
    patLockExclusive = 0, ///< to change, archive or delete the patient
    patLockShared = 1     ///< to look at it; any number of holders
};

/// The open patient database: what concerns patients by ID.
class VELPAT_API patCPatients
{
public:
    virtual ~patCPatients() = default;

    /// Whether a birth date can be stored: an empty date, or one from 1 January 1850 to today. With
    /// `bShowMessage` a refused date is told to the user in a message box.
    static BOOL IsDOBValid(const velCDate& date, BOOL bShowMessage);

    /// Who holds the patient, asked for this process: its own locks count as free. A holder on this computer
    /// whose process has ended is recognised and removed. `pstrHolder` receives the user's name for 1994 and
    /// 1995.
    virtual int IsLocked(LPCTSTR pszID, CString* pstrHolder = nullptr);

    /// Locks the patient for this process; locks of one process count and need as many Unlocks. Nothing is
    /// locked unless the answer is 0. A patient need not exist (an ID about to be loaded can be locked).
    virtual int LockPatient(LPCTSTR pszID, int nMode = patLockExclusive, CString* pstrHolder = nullptr);

    /// Gives one lock of this process back. FALSE when it held none; another's lock is never touched.
    virtual BOOL Unlock(LPCTSTR pszID);

    /// Removes whatever locks the patient, whoever holds them: for a user who knows that the holder's
    /// computer is off.
    static void BreakLock(LPCTSTR pszID);
};

/// One line of a patient list.
struct dbSPatientListRow
{
    CString strGUID, strID, strLastname, strFirstname;
    velCDate dateBirth;
    CString strSortKey; ///< where the row stands in the order; GetPage continues behind it
};

/// What the search text of a patient list is compared with.
enum dbPatientSearch
{
    dbSearchName = 0, ///< beginning of the family name; "lee, an" also narrows by the given name
    dbSearchID = 1    ///< beginning of the patient ID
};

/// The patients of the current database. The database is the process's: every instance sees the same.
class VELPAT_API dbCPatients : public patCPatients
{
public:
    /// Opens an existing database and makes it the process's current one; an open one is closed first. Never
    /// creates a file or writes over one. An older database is brought to the present version. Throws with a
    /// code of dbErrMissing, dbErrLocked, dbErrReadOnly, dbErrCorrupt, dbErrNotPatients, dbErrNewerVersion,
    /// dbErrIO; the database that was open before then stays open.
    static void Open(LPCTSTR pszPath);
    /// Creates a new database and opens it; dbErrExists when there is a file of that name.
    static void Create(LPCTSTR pszPath);
    static void Close();
    static BOOL IsOpen();
    static CString GetPath();

    /// Changes whenever anyone has changed the database, so that a view knows when to read again.
    static __int64 GetChangeCounter();

    static BOOL IsGUID(LPCTSTR psz);

    /// TRUE when no patient has this ID in any letter case, and no files of one that had it are waiting to be
    /// renamed or removed.
    virtual BOOL IsIDFree(LPCTSTR pszID);
    /// TRUE when a patient with this given name, family name (any letter case, blanks at the ends ignored)
    /// and birth date exists; an empty date finds only patients without one. `pstrGUID` receives the first
    /// match's GUID.
    virtual BOOL FindSimilar(LPCTSTR pszFirst, LPCTSTR pszLast, const velCDate& dateBirth,
                             CString* pstrGUID = nullptr);

    /// GUID of the patient that the cloud service knows by this ID, FALSE when there is none.
    BOOL FindVeltrixID(LPCTSTR pszVeltrixID, CString& strGUID);

    /// Appends up to `nMax` rows in the order of family name, given name and birth date (of the ID for
    /// dbSearchID) that begin with `pszSearch` (any letter case) and stand behind `pAfter`, if given. Returns
    /// how many.
    int GetPage(dbPatientSearch nBy, LPCTSTR pszSearch, const dbSPatientListRow* pAfter, int nMax,
                dbTList<dbSPatientListRow>& rows);
    int GetCount(dbPatientSearch nBy = dbSearchName, LPCTSTR pszSearch = "");

    /// Database id of the timepoint at a position of the patient's list. 0 on success, nonzero when there is
    /// none.
    static int Get_tpID(LPCTSTR pszPatientID, int nIndex, CString& strTpID);

    /// Stores a patient read by Serialize as a new patient, with office, status and doctors matched by GUID
    /// or name (missing doctors are added, an unknown office or status is left empty). FALSE, nothing stored,
    /// when its ID or GUID is taken; other failures throw. The patient's files are the caller's; the ".PF" is
    /// written.
    BOOL AddFromArchive(dbCPatient& patient);

    /// Removes a patient with everything stored about it and its files in the working folder: all of them, or
    /// exactly those of `pFiles` that still have the size and time given there. The removal is lasting once
    /// the record is gone; the ID stays taken until the last file is, and a file in use goes when the
    /// database is next opened. Throws with code dbErrNotFound when there is no such patient,
    /// dbErrFilesPending while earlier work on its files is not finished, dbErrIO when the folder cannot be
    /// read. Within a dbCTransaction it is part of it.
    void DeletePatient(LPCTSTR pszIDOrGUID, const patFileStates* pFiles = nullptr);
};

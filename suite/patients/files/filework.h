#pragma once

// Renaming and removing files of the working folder together with the records that speak of them; inside the
// library only.
//
// Which files are concerned is noted in the database within the transaction that changes the records. The
// commit of that transaction decides: afterwards the files follow, by this process at once, or, where it ended
// or a file was in use, by whoever next opens the database. Before it nothing has happened to any file.

#include "suite/patients/files/filestate.h"

#include <memory>

/// One such piece of work: made (Begin), noted in the transaction, then done with its commit or forgotten with
/// its rollback. Used on the database's thread. Steps: "begin", "noted", "committed", "file" and "done" behind
/// "rename.", "removePatient." or "removeFiles.".
class patCFileWork : public std::enable_shared_from_this<patCFileWork>
{
public:
    enum Kind : int
    {
        Rename = 1,
        RemovePatient = 2,
        RemoveFiles = 3
    };

    /// All of a patient's files but the ".PF" are to carry another ID. Outside of a transaction, if possible:
    /// looks at every file. Throws dbErrIO with the path when a file is in use or a new name is taken,
    /// dbErrFilesPending when earlier work on either ID is not finished.
    static std::shared_ptr<patCFileWork> BeginRename(LPCTSTR pszOldID, LPCTSTR pszNewID);
    /// These files are to go, each only while it is as it was listed.
    static std::shared_ptr<patCFileWork> BeginRemoval(Kind kind, LPCTSTR pszID, patFileStates files);

    /// Notes the work within the open transaction, with which it is committed or rolled back.
    void Note();

    /// Whether files under an ID still wait to be renamed or removed; and the exception that says so.
    static bool IsPending(LPCTSTR pszID);
    static void RequireNonePending(LPCTSTR pszID);

    /// Does what is left from processes that have ended and from files that were in use. Throws nothing.
    static void FinishAll() noexcept;

private:
    patCFileWork(Kind kind, LPCTSTR pszID, LPCTSTR pszNewID, patFileStates files);
    void Commit() noexcept;

    Kind m_kind;
    CString m_strID, m_strNewID, m_strFolder;
    patFileStates m_files;
    std::unique_ptr<class patCLifeToken> m_pToken;
    __int64 m_nRow = 0;

public:
    ~patCFileWork();
};

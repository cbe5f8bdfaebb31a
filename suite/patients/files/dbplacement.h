#pragma once

#include "suite/patients/store/patdefs.h"

#include <memory>
#include <string>
#include <vector>

/// Puts files into the working folder together with the records that speak of them: the files stay exactly
/// when the transaction in which Keep was called is committed. Otherwise they are removed again, by the
/// destructor, or when the database is next opened should the process end before. Order of use: Add, Place,
/// then a dbCTransaction with the records and Keep. A file that is there already is never touched.
class VELPAT_API dbCFilePlacement
{
public:
    dbCFilePlacement();
    ~dbCFilePlacement();
    dbCFilePlacement(const dbCFilePlacement&) = delete;
    dbCFilePlacement& operator=(const dbCFilePlacement&) = delete;

    /// A file to copy into the working folder under a plain name.
    void Add(LPCTSTR pszSource, LPCTSTR pszName);

    /// Copies all files and has them on the disk. Outside of any transaction. Throws dbErrExists with the
    /// name when one is there already or is being renamed, removed or placed by somebody; dbErrDiskFull,
    /// dbErrIO, and the database's own; nothing is left behind then.
    void Place();

    /// The files belong to the open transaction from now on.
    void Keep();

    /// Removes the files of placements whose process ended before its transaction. Throws nothing.
    static void RemoveAbandoned() noexcept;

private:
    struct File
    {
        std::string source, name;
    };

    void Undo() noexcept;

    std::vector<File> m_files;
    std::vector<std::string> m_placed; ///< paths that this object made
    CString m_strFolder;
    std::unique_ptr<class patCLifeToken> m_pToken; ///< names the placement in the database and in the folder
    bool m_bCommitted = false;
};

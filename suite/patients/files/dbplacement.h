#pragma once

#include "suite/patients/store/patdefs.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Puts files into the working folder together with the records that speak of them: the files stay exactly
/// when the transaction in which Keep was called is committed. Otherwise they are removed again, by the
/// destructor, or when the database is next opened should the process end before. Order of use: Add, Check,
/// Note, Carry, then a dbCTransaction with the records and Keep. A file that is there already is never
/// touched. Check and Carry ask the database nothing and may be called on another thread than the rest, which
/// waits.
class VELPAT_API dbCFilePlacement
{
public:
    dbCFilePlacement();
    ~dbCFilePlacement();
    dbCFilePlacement(const dbCFilePlacement&) = delete;
    dbCFilePlacement& operator=(const dbCFilePlacement&) = delete;

    /// A file for the working folder, under a plain name. With bTake the source is this object's from Carry
    /// on: on the folder's own volume it is moved, with the access rights that the folder hands down, and
    /// goes with the placement when that is undone. Otherwise, and from another volume, it is copied.
    void Add(LPCTSTR pszSource, LPCTSTR pszName, bool bTake = false);

    /// Looks at the folder: throws dbErrExists with the name of a file that is there already; dbErrIO. What a
    /// dead process has left must have been removed before (RemoveAbandoned).
    void Check();

    /// Notes the files' names in the database, once they have been checked. Outside of any transaction.
    /// Throws dbErrExists with a name that is being renamed, removed or placed by somebody; dbErrIO, and the
    /// database's own.
    void Note();

    /// Told how much is in its place, in percent, and the name of the file under way, before each file and
    /// several times while a large one is copied. False stops.
    using Progress = std::function<bool(int nPercent, const std::string& name)>;
    /// Brings all files into the folder and has them on the disk. False when it was stopped. Throws
    /// dbErrExists, dbErrDiskFull and dbErrIO. Unless it answers true nothing stays in the folder.
    bool Carry(const Progress& progress);

    /// All three, with RemoveAbandoned before them.
    void Place();

    /// The files belong to the open transaction from now on.
    void Keep();

    /// Removes the files of placements whose process ended before its transaction. Throws nothing.
    static void RemoveAbandoned() noexcept;

private:
    struct File
    {
        std::string source, name;
        bool bTake = false;
        __int64 nBytes = 0;
    };

    bool CarryAll(const Progress& progress);
    void RemovePlaced() noexcept;
    void Undo() noexcept;
    using Handle = std::unique_ptr<void, struct patCHandleCloser>;
    using Copied = std::function<bool(DWORD dwBytes)>; ///< false stops
    Handle CarryOne(const File& file, class patCHandedDownRights& rights, const Copied& copied);
    Handle Take(const File& file, const std::string& path, patCHandedDownRights& rights);

    std::vector<File> m_files;
    std::vector<std::string> m_placed; ///< paths that this object made
    CString m_strFolder;
    std::unique_ptr<class patCLifeToken> m_pToken; ///< names the placement in the database and in the folder
    bool m_bCommitted = false;
};

#pragma once

#include "suite/patients/store/patdefs.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Puts files into the working folder together with the records that speak of them: the files stay exactly
/// when the transaction in which Keep was called is committed. Otherwise they are removed again, by the
/// destructor, or when the database is next opened should the process end before. Order of use: Add, Note,
/// Carry, then a dbCTransaction with the records and Keep. A file that is there already is never touched.
/// Carry may be called on another thread than the rest, which waits for it.
class VELPAT_API dbCFilePlacement
{
public:
    dbCFilePlacement();
    ~dbCFilePlacement();
    dbCFilePlacement(const dbCFilePlacement&) = delete;
    dbCFilePlacement& operator=(const dbCFilePlacement&) = delete;

    /// A file to copy into the working folder under a plain name. Copied also where it could be moved: a moved
    /// file would keep the access rights of the folder that it came from.
    void Add(LPCTSTR pszSource, LPCTSTR pszName);
    size_t GetCount() const
    {
        return m_files.size();
    }

    /// Notes the files' names in the database. Outside of any transaction. Throws dbErrExists with the name
    /// when one is there already or is being renamed, removed or placed by somebody; dbErrIO, and the
    /// database's own.
    void Note();

    /// Told how many files are in their places, and the name of the next. False stops.
    using Progress = std::function<bool(size_t nDone, const std::string& name)>;
    /// Copies all files into the folder and has them on the disk. Asks the database nothing. False when it
    /// was stopped. Throws dbErrExists, dbErrDiskFull and dbErrIO. What was placed goes with this object.
    bool Carry(const Progress& progress);

    /// Note and Carry.
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
    using Handle = std::unique_ptr<void, struct patCHandleCloser>;
    using Unflushed = std::vector<Handle>;
    Handle CarryOne(const File& file);
    void Flush(Unflushed& copies);

    std::vector<File> m_files;
    std::vector<std::string> m_placed; ///< paths that this object made
    CString m_strFolder;
    std::unique_ptr<class patCLifeToken> m_pToken; ///< names the placement in the database and in the folder
    bool m_bCommitted = false;
};

#include "suite/patients/files/filework.h"

#include "suite/patients/files/dbplacement.h"
#include "suite/patients/files/filefamily.h"
#include "suite/patients/files/filehandle.h"
#include "suite/patients/files/lifetoken.h"
#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbsteps.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/util/velpath.h"

namespace
{
/// A piece of work as the database has it.
struct Work
{
    __int64 nRow = 0;
    patCFileWork::Kind kind = patCFileWork::Rename;
    CString strID, strNewID;
    patFileStates files;
};

void Step(patCFileWork::Kind kind, const char* pszStep)
{
    const char* pszKind = kind == patCFileWork::Rename          ? "rename."
                          : kind == patCFileWork::RemovePatient ? "removePatient."
                                                                : "removeFiles.";
    dbStep((std::string(pszKind) + pszStep).c_str());
}

/// Whether the longest ID of those that the name begins with is this patient's.
bool IsOwner(const std::string& name, LPCTSTR pszID)
{
    const size_t nLength = strlen(pszID);
    dbCStatement query("SELECT 1 FROM patients WHERE patientID = ?");
    for (const std::string_view owner : pat::PossibleOwners(name))
    {
        if (owner.size() <= nLength)
            return true;
        query.Bind(std::string(owner).c_str());
        const bool bOther = query.Step();
        query.Reset();
        if (bOther)
            return false;
    }
    return true;
}

bool IsIn(patFileSet set, int nTimepoint, const pat::FileIdentity& file)
{
    switch (set)
    {
    case patFileSet::Patient:
        return true;
    case patFileSet::Timepoint:
        return file.timepoint == nTimepoint;
    case patFileSet::TimepointImages:
        return file.timepoint == nTimepoint &&
               (file.kind == pat::FileKind::Image || file.kind == pat::FileKind::Companion ||
                file.kind == pat::FileKind::FurtherImage || file.kind == pat::FileKind::AlternateImage ||
                file.kind == pat::FileKind::DataImage);
    }
    return false;
}

__int64 Joined(DWORD dwHigh, DWORD dwLow)
{
    return static_cast<__int64>(static_cast<unsigned __int64>(dwHigh) << 32 | dwLow);
}

/// Asks the file itself: a folder's entry of a file that somebody writes may lag behind.
bool GetState(const CString& strFolder, const std::string& name, patSFileState& state)
{
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExA(strFolder + name.c_str(), GetFileExInfoStandard, &data))
        return false;
    state = {name, Joined(data.nFileSizeHigh, data.nFileSizeLow),
             Joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime)};
    return true;
}

/// Whether nobody else keeps the file from being renamed or removed.
bool IsFree(LPCTSTR pszPath)
{
    return patOpenFile(pszPath, DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                       OPEN_EXISTING) != nullptr;
}

CString NewName(const std::string& name, LPCTSTR pszOldID, LPCTSTR pszNewID)
{
    return pat::MovedFileName(name, pszOldID, pszNewID).c_str();
}

/// True when the file has its new name, or is no longer there to have one. Nothing is written over.
bool RenameFile(const CString& strFolder, const Work& work, const std::string& name)
{
    const CString strFrom = strFolder + name.c_str();
    return MoveFileExA(strFrom, strFolder + NewName(name, work.strID, work.strNewID),
                       MOVEFILE_WRITE_THROUGH) ||
           patIsGone(strFrom);
}

/// True when the file is gone, or is not the one that was listed.
bool RemoveFile(const CString& strFolder, const patSFileState& file)
{
    const CString strPath = strFolder + file.name.c_str();
    patSFileState now;
    if (!GetState(strFolder, file.name, now))
        return patIsGone(strPath);
    if (now != file)
        return true;
    if (const DWORD dwAttributes = GetFileAttributesA(strPath); dwAttributes & FILE_ATTRIBUTE_READONLY)
        SetFileAttributesA(strPath, dwAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    return DeleteFileA(strPath) || patIsGone(strPath);
}

bool Do(const CString& strFolder, const Work& work)
{
    if (!velFolderExists(strFolder))
        return false;
    bool bAll = true;
    for (const patSFileState& file : work.files)
    {
        const bool bDone = work.kind == patCFileWork::Rename ? RenameFile(strFolder, work, file.name)
                                                             : RemoveFile(strFolder, file);
        bAll = bDone && bAll;
        Step(work.kind, "file");
    }
    return bAll;
}

/// Ends a claim: the work is done, or left to whoever comes next.
void Close(__int64 nRow, const std::string& token, bool bDone)
{
    const dbCRelaxedCommits relaxed;
    dbCStatement(bDone ? std::string_view("DELETE FROM fileWork WHERE id = ? AND claim = ?")
                       : std::string_view("UPDATE fileWork SET claim = '' WHERE id = ? AND claim = ?"))
        .Bind(nRow)
        .Bind(token.c_str())
        .Run();
}

void NoteFiles(__int64 nRow, const patFileStates& files)
{
    dbCStatement insert("INSERT INTO fileWorkNames (work, name, size, written) VALUES (?, ?, ?, ?)");
    for (const patSFileState& file : files)
        insert.Bind(nRow).Bind(file.name.c_str()).Bind(file.nSize).Bind(file.nWritten).Run();
}

void RemovePatientFile(patFileStates& files, LPCTSTR pszID)
{
    std::erase_if(files, [&](const patSFileState& file) {
        const auto identity = pat::IdentifyFile(file.name, pszID);
        return identity && (identity->kind == pat::FileKind::PatientFile ||
                            identity->kind == pat::FileKind::UnfinishedPatientFile);
    });
}

/// Takes a piece of work for this process; false when it is done or somebody is at it.
bool Claim(__int64 nRow, const CString& strFolder, const std::string& token, Work& work)
{
    dbCTransaction transaction;
    dbCStatement query("SELECT kind, patientID, newID, claim, listed FROM fileWork WHERE id = ?");
    query.Bind(nRow);
    if (!query.Step())
        return false;
    work = {nRow, static_cast<patCFileWork::Kind>(query.Int(0)), query.Text(1), query.Text(2), {}};
    const CString strClaim = query.Text(3);
    const bool bListed = query.Int(4) != 0;
    query.Reset();
    if (!strClaim.IsEmpty() && patCLifeToken::IsAlive(strFolder, strClaim))
        return false;
    if (!bListed)
    {
        // Left by a version that did not note the names.
        patFileStates files = patListFiles(work.strID);
        if (work.kind == patCFileWork::Rename)
            RemovePatientFile(files, work.strID);
        NoteFiles(nRow, files);
    }
    dbCStatement("UPDATE fileWork SET claim = ?, listed = 1 WHERE id = ?")
        .Bind(token.c_str())
        .Bind(nRow)
        .Run();
    dbCStatement names("SELECT name, size, written FROM fileWorkNames WHERE work = ?");
    names.Bind(nRow);
    while (names.Step())
        work.files.push_back({names.Text(0).GetString(), names.Int64(1), names.Int64(2)});
    transaction.Commit();
    return true;
}

void FinishWork()
{
    const CString strFolder = velGetDataPath();
    if (strFolder.IsEmpty() || !velFolderExists(strFolder))
        return;
    std::vector<__int64> rows;
    {
        dbCStatement query("SELECT id FROM fileWork ORDER BY id");
        while (query.Step())
            rows.push_back(query.Int64(0));
    }
    if (rows.empty())
        return;
    patCLifeToken token;
    token.Create(strFolder);
    for (const __int64 nRow : rows)
    {
        Work work;
        if (Claim(nRow, strFolder, token.GetName(), work))
            Close(nRow, token.GetName(), Do(strFolder, work));
    }
}
} // namespace

patFileStates patListFiles(LPCTSTR pszID, patFileSet set, int nTimepoint)
{
    patFileStates files;
    const CString strFolder = velGetDataPath();
    if (strFolder.IsEmpty())
        return files;
    if (!velFolderExists(strFolder))
        dbCException::Throw(dbErrIO, strFolder);
    WIN32_FIND_DATAA data;
    const HANDLE hFind = FindFirstFileA(strFolder + pszID + "*", &data);
    if (hFind == INVALID_HANDLE_VALUE)
    {
        const DWORD dwError = GetLastError();
        if (dwError != ERROR_FILE_NOT_FOUND && dwError != ERROR_NO_MORE_FILES)
            dbCException::Throw(dbErrIO, strFolder);
        return files;
    }
    const std::unique_ptr<void, decltype(&FindClose)> find(hFind, FindClose);
    do
    {
        const auto identity = pat::IdentifyFile(data.cFileName, pszID);
        patSFileState state;
        if (!(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) && identity &&
            IsIn(set, nTimepoint, *identity) && IsOwner(data.cFileName, pszID) &&
            GetState(strFolder, data.cFileName, state))
            files.push_back(state);
    } while (FindNextFileA(hFind, &data));
    if (GetLastError() != ERROR_NO_MORE_FILES)
        dbCException::Throw(dbErrIO, strFolder);
    return files;
}

patCFileWork::patCFileWork(Kind kind, LPCTSTR pszID, LPCTSTR pszNewID, patFileStates files)
    : m_kind(kind), m_strID(pszID), m_strNewID(pszNewID), m_strFolder(velGetDataPath()),
      m_files(std::move(files)), m_pToken(std::make_unique<patCLifeToken>())
{
    RequireNonePending(m_strID);
    if (!m_files.empty())
        m_pToken->Create(m_strFolder);
    Step(m_kind, "begin");
}

patCFileWork::~patCFileWork() = default;

std::shared_ptr<patCFileWork> patCFileWork::BeginRename(LPCTSTR pszOldID, LPCTSTR pszNewID)
{
    RequireNonePending(pszNewID);
    dbCFilePlacement::RemoveAbandoned(); // who died placing files is not waited for
    patFileStates files = patListFiles(pszOldID);
    RemovePatientFile(files, pszOldID);
    // Only the letter case differs: on Windows these are the same files, and nothing is in the way.
    const bool bSameFiles = CString(pszOldID).CompareNoCase(pszNewID) == 0;
    const CString strFolder = velGetDataPath();
    for (const patSFileState& file : files)
    {
        const CString strFrom = strFolder + file.name.c_str();
        const CString strTo = strFolder + NewName(file.name, pszOldID, pszNewID);
        if (!IsFree(strFrom))
            dbCException::Throw(dbErrIO, strFrom);
        if (!bSameFiles && !patIsGone(strTo))
            dbCException::Throw(dbErrIO, strTo);
    }
    return std::shared_ptr<patCFileWork>(new patCFileWork(Rename, pszOldID, pszNewID, std::move(files)));
}

std::shared_ptr<patCFileWork> patCFileWork::BeginRemoval(Kind kind, LPCTSTR pszID, patFileStates files)
{
    dbCFilePlacement::RemoveAbandoned();
    return std::shared_ptr<patCFileWork>(new patCFileWork(kind, pszID, "", std::move(files)));
}

void patCFileWork::Note()
{
    // Another seat may have noted something since.
    RequireNonePending(m_strID);
    if (m_kind == Rename)
        RequireNonePending(m_strNewID);
    if (m_files.empty())
        return;
    // A name that somebody is placing a file under is that file's until its patient is stored, or it is gone again.
    dbCStatement placed("SELECT 1 FROM placedFiles WHERE name = ? COLLATE NOCASE");
    for (const patSFileState& file : m_files)
    {
        for (const CString& strName :
             {CString(file.name.c_str()), m_kind == Rename ? NewName(file.name, m_strID, m_strNewID) : CString()})
        {
            placed.Bind(strName);
            if (placed.Step())
                dbCException::Throw(dbErrFilesPending, m_strID);
            placed.Reset();
        }
    }
    dbCStatement(
        "INSERT INTO fileWork (kind, patientID, newID, claim, listed) VALUES (?, ?, ?, ?, 1)")
        .Bind(static_cast<int>(m_kind))
        .Bind(m_strID)
        .Bind(m_strNewID)
        .Bind(m_pToken->GetName().c_str())
        .Run();
    m_nRow = dbCSession::Current().GetLastRow();
    NoteFiles(m_nRow, m_files);
    dbCTransaction::AtEnd(nullptr, [self = shared_from_this()] { self->Commit(); });
    Step(m_kind, "noted");
}

void patCFileWork::Commit() noexcept
try
{
    Step(m_kind, "committed");
    Close(m_nRow, m_pToken->GetName(), Do(m_strFolder, {m_nRow, m_kind, m_strID, m_strNewID, m_files}));
    Step(m_kind, "done");
}
catch (CException* e)
{
    e->Delete(); // the next opening finishes it
}
catch (...)
{
}

bool patCFileWork::IsPending(LPCTSTR pszID)
{
    dbCStatement query("SELECT 1 FROM fileWork WHERE patientID = ? OR newID = ?");
    query.Bind(pszID).Bind(pszID);
    return query.Step();
}

void patCFileWork::RequireNonePending(LPCTSTR pszID)
{
    if (!IsPending(pszID))
        return;
    // What was only in use for a moment need not be waited for until the next opening.
    if (!dbCTransaction::IsActive())
        FinishAll();
    if (IsPending(pszID))
        dbCException::Throw(dbErrFilesPending, pszID);
}

void patCFileWork::FinishAll() noexcept
try
{
    FinishWork();
}
catch (CException* e)
{
    e->Delete();
}
catch (...)
{
}

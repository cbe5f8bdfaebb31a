#include "suite/patients/files/dbplacement.h"

#include "suite/patients/files/filefamily.h"
#include "suite/patients/files/filehandle.h"
#include "suite/patients/files/flusher.h"
#include "suite/patients/files/handeddownrights.h"
#include "suite/patients/files/lifetoken.h"
#include "suite/patients/files/patimagetypes.h"
#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbsteps.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/util/velpath.h"

#include <algorithm>
#include <array>
#include <optional>

namespace
{
constexpr DWORD COPY_BUFFER = 128 * 1024; // on the stack: copying asks for no memory

/// Copies into a file that was just made. The error code, 0 when everything was taken, ERROR_CANCELLED when
/// it was stopped.
DWORD CopyContents(HANDLE hFrom, HANDLE hTo, const std::function<bool(DWORD dwBytes)>& copied)
{
    char buffer[COPY_BUFFER];
    for (;;)
    {
        DWORD dwRead = 0, dwWritten = 0;
        if (!ReadFile(hFrom, buffer, COPY_BUFFER, &dwRead, nullptr))
            return GetLastError();
        if (dwRead == 0)
            return 0;
        if (!WriteFile(hTo, buffer, dwRead, &dwWritten, nullptr))
            return GetLastError();
        if (dwWritten != dwRead)
            return ERROR_DISK_FULL;
        if (!copied(dwRead))
            return ERROR_CANCELLED;
    }
}

/// Gives an open file another path on its volume where nothing is.
bool Rename(HANDLE hFile, const std::string& path)
{
    union {
        FILE_RENAME_INFO info;
        char bytes[sizeof(FILE_RENAME_INFO) + MAX_PATH * sizeof(WCHAR)];
    } rename{};
    const int nLength = MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, rename.info.FileName, MAX_PATH);
    if (nLength == 0)
        return false;
    rename.info.FileNameLength = static_cast<DWORD>(static_cast<size_t>(nLength - 1) * sizeof(WCHAR));
    return SetFileInformationByHandle(hFile, FileRenameInfo, &rename, sizeof(rename)) != FALSE;
}

/// Whether only who encrypted the file can read it, wherever it is moved.
bool IsEncrypted(const std::string& path)
{
    const DWORD dwAttributes = GetFileAttributesA(path.c_str());
    return dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_ENCRYPTED) != 0;
}

/// The timepoint that a stored patient has under the file's ID and number, with its image words.
struct Timepoint
{
    pat::FileIdentity file;
    std::string rest; ///< the file's name behind the ID
    std::array<DWORD, patCImageTypes::GROUP_COUNT> bits{};
};

std::optional<Timepoint> FindTimepoint(const std::string& name)
{
    dbCStatement query("SELECT t.bits0, t.bits1, t.bits2, t.bits3, t.bits4, t.bits5, t.bits6, t.bits7"
                       " FROM patients p JOIN timepoints t ON t.patient = p.person"
                       " WHERE p.patientID = ? AND t.number = ?");
    for (const std::string_view owner : pat::PossibleOwners(name))
    {
        const auto file = pat::IdentifyFile(name, owner);
        query.Bind(std::string(owner).c_str()).Bind(file->timepoint);
        if (query.Step())
        {
            Timepoint found{*file, name.substr(owner.size()), {}};
            for (size_t nGroup = 0; nGroup < found.bits.size(); ++nGroup)
                found.bits[nGroup] = static_cast<DWORD>(query.Int64(static_cast<int>(nGroup)));
            return found;
        }
        query.Reset();
    }
    return std::nullopt;
}

/// Whether a record that is there speaks of such a file: then it is that record's, whoever made it.
bool IsRecorded(const std::string& name)
{
    const auto timepoint = FindTimepoint(name);
    if (!timepoint)
        return false;
    const pat::FileKind kind = timepoint->file.kind;
    if (kind != pat::FileKind::Image && kind != pat::FileKind::Companion &&
        kind != pat::FileKind::FurtherImage)
        return true;
    // "tt.Igt": group and type of the image.
    const int nGroup = timepoint->rest[4] - '0';
    const int nType = patCImageTypes::FindType(nGroup, timepoint->rest[5]);
    return nType >= 0 && (timepoint->bits[static_cast<size_t>(nGroup)] >> nType & 1) != 0;
}

/// Removes a file that no record speaks of; false when it is still there.
bool RemoveUnrecorded(const CString& strFolder, const CString& strName)
{
    const CString strPath = strFolder + strName;
    return patIsGone(strPath) || IsRecorded(strName.GetString()) || DeleteFileA(strPath);
}
} // namespace

dbCFilePlacement::dbCFilePlacement()
    : m_strFolder(velGetDataPath()), m_pToken(std::make_unique<patCLifeToken>())
{
}

dbCFilePlacement::~dbCFilePlacement()
{
    if (!m_bCommitted)
        Undo();
}

void dbCFilePlacement::Add(LPCTSTR pszSource, LPCTSTR pszName, bool bTake)
{
    m_files.push_back({pszSource, pszName, bTake});
}

void dbCFilePlacement::Place()
{
    // What somebody began and never finished must neither stand in the way nor be taken for ours later.
    RemoveAbandoned();
    Check();
    Note();
    Carry([](int, const std::string&) { return true; });
}

void dbCFilePlacement::Check()
{
    if (m_strFolder.IsEmpty())
        dbCException::Throw(dbErrIO, m_strFolder);
    for (File& file : m_files)
    {
        if (!patIsGone(m_strFolder + file.name.c_str()))
            dbCException::Throw(dbErrExists, file.name.c_str());
        WIN32_FILE_ATTRIBUTE_DATA data{};
        if (!GetFileAttributesExA(file.source.c_str(), GetFileExInfoStandard, &data))
            patThrowFileError(GetLastError(), file.source.c_str());
        file.nBytes = static_cast<__int64>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
    }
}

void dbCFilePlacement::Note()
{
    m_pToken->Create(m_strFolder);
    // Noted for good before the first file is made.
    dbCTransaction transaction;
    dbCStatement noted("SELECT 1 FROM placedFiles WHERE name = ? COLLATE NOCASE AND token <> ?");
    dbCStatement moving("SELECT 1 FROM fileWorkNames n JOIN fileWork w ON w.id = n.work"
                        " WHERE n.name = ? OR w.newID || substr(n.name, length(w.patientID) + 1) = ?");
    dbCStatement note("INSERT INTO placedFiles (token, name) VALUES (?, ?)");
    for (const File& file : m_files)
    {
        noted.Bind(file.name.c_str()).Bind(m_pToken->GetName().c_str());
        if (noted.Step())
            dbCException::Throw(dbErrExists, file.name.c_str());
        noted.Reset();
        // A name that is still to be given to, or taken from, another file.
        moving.Bind(file.name.c_str()).Bind(file.name.c_str());
        if (moving.Step())
            dbCException::Throw(dbErrExists, file.name.c_str());
        moving.Reset();
        note.Bind(m_pToken->GetName().c_str()).Bind(file.name.c_str()).Run();
    }
    transaction.Commit();
}

bool dbCFilePlacement::Carry(const Progress& progress)
try
{
    const bool bCarried = CarryAll(progress);
    if (!bCarried)
        RemovePlaced();
    return bCarried;
}
catch (...)
{
    RemovePlaced();
    throw;
}

bool dbCFilePlacement::CarryAll(const Progress& progress)
{
    __int64 nTotal = 0, nDone = 0;
    for (const File& file : m_files)
        nTotal += file.nBytes;
    m_placed.reserve(m_files.size()); // what was made is remembered without fail
    patCHandedDownRights rights;
    patCFlusher flusher;
    for (const File& file : m_files)
    {
        __int64 nOfFile = 0;
        const auto report = [&] {
            const __int64 nNow = nDone + std::min(nOfFile, file.nBytes); // it may grow under our hands
            return progress(nTotal != 0 ? static_cast<int>(nNow * 100 / nTotal) : 0, file.name);
        };
        const auto copied = [&](DWORD dwBytes) {
            nOfFile += dwBytes;
            return report();
        };
        if (!report())
            return false;
        Handle placed = CarryOne(file, rights, copied);
        if (!placed)
            return false;
        flusher.Add(std::move(placed), m_placed.back());
        nDone += file.nBytes;
    }
    dbStep("place.copied");
    flusher.Finish();
    return true;
}

/// Answers the file in its place, still open, so that nobody comes between writing and flushing; null when it
/// was stopped.
patCHandle dbCFilePlacement::CarryOne(const File& file, patCHandedDownRights& rights, const Copied& copied)
{
    std::string path = m_strFolder.GetString() + file.name;
    if (file.bTake)
    {
        if (patCHandle taken = Take(file, path, rights))
            return taken;
    }
    const patCHandle from = patOpenFile(file.source.c_str(), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN);
    if (!from)
        patThrowFileError(GetLastError(), file.source.c_str());
    patCHandle to = patOpenFile(path.c_str(), GENERIC_WRITE, 0, CREATE_NEW);
    if (!to)
    {
        const DWORD dwError = GetLastError();
        const bool bExists = dwError == ERROR_FILE_EXISTS;
        patThrowFileError(dwError, bExists ? file.name.c_str() : path.c_str());
    }
    m_placed.push_back(std::move(path));
    dbStep("place.made");
    const DWORD dwError = CopyContents(from.get(), to.get(), copied);
    if (dwError == ERROR_CANCELLED)
        return nullptr;
    if (dwError != 0)
        patThrowFileError(dwError, m_placed.back().c_str());
    FILETIME written;
    if (GetFileTime(from.get(), nullptr, nullptr, &written))
        SetFileTime(to.get(), nullptr, nullptr, &written);
    return to;
}

/// Moves the source to its place; null, with nothing moved, when it has to be copied.
patCHandle dbCFilePlacement::Take(const File& file, const std::string& path, patCHandedDownRights& rights)
{
    constexpr DWORD dwAccess = GENERIC_READ | GENERIC_WRITE | DELETE | READ_CONTROL | WRITE_DAC;
    patCHandle taken = patOpenFile(file.source.c_str(), dwAccess, 0, OPEN_EXISTING);
    if (!taken || IsEncrypted(file.source) || !Rename(taken.get(), path))
        return nullptr;
    m_placed.push_back(path);
    dbStep("place.made");
    if (rights.Give(taken.get(), path))
        return taken;
    if (!Rename(taken.get(), file.source))
        patThrowFileError(ERROR_ACCESS_DENIED, path.c_str());
    m_placed.pop_back();
    return nullptr;
}

void dbCFilePlacement::Keep()
{
    dbCStatement("DELETE FROM placedFiles WHERE token = ?").Bind(m_pToken->GetName().c_str()).Run();
    dbCTransaction::AtEnd(nullptr, [this] { m_bCommitted = true; });
}

/// Leaves in the list what cannot be removed.
void dbCFilePlacement::RemovePlaced() noexcept
{
    std::erase_if(m_placed, [](const std::string& path) { return DeleteFileA(path.c_str()) != FALSE; });
}

void dbCFilePlacement::Undo() noexcept
{
    RemovePlaced();
    // What cannot be removed now is removed when the database is next opened.
    if (!m_placed.empty() || !m_pToken->IsCreated())
        return;
    try
    {
        dbCStatement("DELETE FROM placedFiles WHERE token = ?").Bind(m_pToken->GetName().c_str()).Run();
    }
    catch (CException* e)
    {
        e->Delete(); // the next Open does it
    }
}

void dbCFilePlacement::RemoveAbandoned() noexcept
try
{
    const CString strFolder = velGetDataPath();
    if (strFolder.IsEmpty() || !velFolderExists(strFolder))
        return;
    std::vector<CString> tokens;
    {
        dbCStatement query("SELECT DISTINCT token FROM placedFiles");
        while (query.Step())
            tokens.push_back(query.Text(0));
    }
    for (const CString& strToken : tokens)
    {
        if (patCLifeToken::IsAlive(strFolder, strToken))
            continue;
        std::vector<CString> names;
        dbCTransaction transaction;
        dbCStatement query("SELECT name FROM placedFiles WHERE token = ?");
        query.Bind(strToken);
        while (query.Step())
            names.push_back(query.Text(0));
        query.Reset();
        // Once the rows are gone the files are the practice's own: remove them first.
        bool bAll = true;
        for (const CString& strName : names)
            bAll = RemoveUnrecorded(strFolder, strName) && bAll;
        if (!bAll)
            continue;
        dbCStatement("DELETE FROM placedFiles WHERE token = ?").Bind(strToken).Run();
        transaction.Commit();
    }
}
catch (CException* e)
{
    e->Delete();
}
catch (...)
{
}

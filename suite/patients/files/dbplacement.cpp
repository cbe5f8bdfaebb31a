#include "suite/patients/files/dbplacement.h"

#include "suite/patients/files/filefamily.h"
#include "suite/patients/files/filehandle.h"
#include "suite/patients/files/lifetoken.h"
#include "suite/patients/files/patimagetypes.h"
#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbsteps.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/util/velpath.h"

#include <array>
#include <optional>

namespace
{
constexpr DWORD COPY_BUFFER = 256 * 1024;
constexpr size_t OPEN_AT_ONCE = 64; // copies that wait for being flushed

/// Copies into a file that was just made. The error code, 0 when everything was taken.
DWORD CopyContents(HANDLE hFrom, HANDLE hTo)
{
    std::vector<char> buffer(COPY_BUFFER);
    for (;;)
    {
        DWORD dwRead = 0, dwWritten = 0;
        if (!ReadFile(hFrom, buffer.data(), COPY_BUFFER, &dwRead, nullptr))
            return GetLastError();
        if (dwRead == 0)
            return 0;
        if (!WriteFile(hTo, buffer.data(), dwRead, &dwWritten, nullptr))
            return GetLastError();
        if (dwWritten != dwRead)
            return ERROR_DISK_FULL;
    }
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
    if (kind != pat::FileKind::Image && kind != pat::FileKind::Companion && kind != pat::FileKind::FurtherImage)
        return true;
    // "tt.Igt": group and type of the image.
    const int nGroup = timepoint->rest[4] - '0';
    const int nType = patCImageTypes::FindType(nGroup, timepoint->rest[5]);
    return nType >= 0 && (timepoint->bits[static_cast<size_t>(nGroup)] >> nType & 1) != 0;
}

/// Removes a file that no record speaks of; false when it is still there.
bool RemovePlaced(const CString& strFolder, const CString& strName)
{
    const CString strPath = strFolder + strName;
    return !velFileExists(strPath) || IsRecorded(strName.GetString()) || DeleteFileA(strPath);
}
} // namespace

dbCFilePlacement::dbCFilePlacement() : m_strFolder(velGetDataPath()), m_pToken(std::make_unique<patCLifeToken>())
{
}

dbCFilePlacement::~dbCFilePlacement()
{
    if (!m_bCommitted)
        Undo();
}

void dbCFilePlacement::Add(LPCTSTR pszSource, LPCTSTR pszName)
{
    m_files.push_back({pszSource, pszName});
}

void dbCFilePlacement::Place()
{
    Note();
    Carry([](size_t, const std::string&) { return true; });
}

void dbCFilePlacement::Note()
{
    if (m_strFolder.IsEmpty())
        dbCException::Throw(dbErrIO, m_strFolder);
    // What somebody began and never finished must neither stand in the way nor be taken for ours later.
    RemoveAbandoned();
    for (const File& file : m_files)
        if (!patIsGone(m_strFolder + file.name.c_str()))
            dbCException::Throw(dbErrExists, file.name.c_str());

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
{
    m_placed.reserve(m_files.size()); // what was made is remembered without fail
    Unflushed copies;
    copies.reserve(OPEN_AT_ONCE);
    for (size_t i = 0; i < m_files.size(); ++i)
    {
        if (!progress(i, m_files[i].name))
            return false;
        copies.push_back(CarryOne(m_files[i]));
        if (copies.size() == OPEN_AT_ONCE || i + 1 == m_files.size())
        {
            dbStep("place.copied");
            Flush(copies);
        }
    }
    return true;
}

/// Answers the copy, still open, so that nobody comes between writing and flushing.
patCHandle dbCFilePlacement::CarryOne(const File& file)
{
    std::string path = m_strFolder.GetString() + file.name;
    const patCHandle from = patOpenFile(file.source.c_str(), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN);
    if (!from)
        patThrowFileError(GetLastError(), file.source.c_str());
    patCHandle to = patOpenFile(path.c_str(), GENERIC_WRITE, 0, CREATE_NEW);
    if (!to)
        patThrowFileError(GetLastError(), path.c_str());
    m_placed.push_back(std::move(path));
    dbStep("place.made");
    if (const DWORD dwError = CopyContents(from.get(), to.get()))
        patThrowFileError(dwError, m_placed.back().c_str());
    FILETIME written;
    if (GetFileTime(from.get(), nullptr, nullptr, &written))
        SetFileTime(to.get(), nullptr, nullptr, &written);
    return to;
}

/// Has the copies made last on the disk, which has written most of them by itself, and closes them.
void dbCFilePlacement::Flush(Unflushed& copies)
{
    const size_t nFirst = m_placed.size() - copies.size();
    for (size_t i = 0; i < copies.size(); ++i)
    {
        if (!FlushFileBuffers(copies[i].get()))
            patThrowFileError(GetLastError(), m_placed[nFirst + i].c_str());
    }
    copies.clear();
}

void dbCFilePlacement::Keep()
{
    dbCStatement("DELETE FROM placedFiles WHERE token = ?").Bind(m_pToken->GetName().c_str()).Run();
    dbCTransaction::AtEnd(nullptr, [this] { m_bCommitted = true; });
}

void dbCFilePlacement::Undo() noexcept
{
    bool bAll = true;
    for (const std::string& path : m_placed)
        bAll = DeleteFileA(path.c_str()) && bAll;
    // What cannot be removed now is removed when the database is next opened.
    if (!bAll || !m_pToken->IsCreated())
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
            bAll = RemovePlaced(strFolder, strName) && bAll;
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

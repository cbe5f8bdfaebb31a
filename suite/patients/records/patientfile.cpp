#include "suite/patients/records/patientfile.h"

#include "suite/patients/files/filehandle.h"
#include "suite/patients/files/patientfiles.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/store/dbexception.h"
#include "suite/util/velpath.h"

namespace
{
constexpr ULONGLONG MAX_FILE = 1 << 20; ///< bytes; a patient with 100 timepoints needs far less

std::string ReadText(LPCTSTR pszPath)
{
    CFile file(pszPath, CFile::modeRead | CFile::shareDenyWrite);
    if (file.GetLength() > MAX_FILE)
        return {};
    std::string text(static_cast<size_t>(file.GetLength()), '\0');
    text.resize(file.Read(text.data(), static_cast<UINT>(text.size())));
    return text;
}

/// False while the process that moved the file away lives.
bool PutBack(const CString& strOriginal, const CString& strFile)
{
    return MoveFileExA(strOriginal, strFile, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
}
} // namespace

BOOL patRenewPatientFile(LPCTSTR pszID)
{
    return patFollowNow(pszID);
}

BOOL patReadPatientFile(LPCTSTR pszPath, dbCPatient& patient)
{
    try
    {
        const auto file = patReadPatientFileText(ReadText(pszPath));
        if (!file)
            return FALSE;
        dbCPatient read;
        read.SetLastname(file->strLast);
        read.SetFirstname(file->strFirst);
        read.SetID(file->strID, FALSE);
        for (const patSPatientFile::Timepoint& row : file->timepoints)
        {
            dbCTimepoint timepoint;
            timepoint.SetNumber(file->strID, row.nNumber);
            timepoint.SetName(row.strName);
            timepoint.SetDate(row.date);
            for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
                timepoint.SetImageBits(nGroup, row.bits[static_cast<size_t>(nGroup)]);
            read.GetTimepoints().Add(timepoint);
        }
        patient = read;
        return TRUE;
    }
    catch (CException* e)
    {
        e->Delete();
        return FALSE;
    }
}

patCEarlierFile::patCEarlierFile(const dbCPatient& patient)
{
    const CString strFolder = velGetDataPath();
    m_strFile = strFolder + patient.GetID() + ".PF";
    m_strOriginal = strFolder + patient.GetID() + ".ORIGINALPF";
    PutBack(m_strOriginal, m_strFile); // left by a process that ended
    const bool bHasOwn = !patIsGone(m_strFile);
    if (bHasOwn && !MoveFileA(m_strFile, m_strOriginal))
        dbCException::Throw(dbErrIO, m_strFile);
    m_hOriginal =
        CreateFileA(m_strOriginal, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (bHasOwn && m_hOriginal == INVALID_HANDLE_VALUE)
    {
        // Not under our hand: it goes back, unless somebody has put it back already.
        MoveFileA(m_strOriginal, m_strFile);
        dbCException::Throw(dbErrIO, m_strFile);
    }
    try
    {
        patient.WritePatientFile(strFolder);
    }
    catch (...)
    {
        Restore();
        throw;
    }
}

patCEarlierFile::~patCEarlierFile()
{
    Restore();
}

void patCEarlierFile::Restore() noexcept
{
    if (m_hOriginal == INVALID_HANDLE_VALUE)
    {
        DeleteFileA(m_strFile); // there was none before
        return;
    }
    CloseHandle(m_hOriginal);
    PutBack(m_strOriginal, m_strFile);
}

void patCEarlierFile::RestoreAbandoned() noexcept
try
{
    const CString strFolder = velGetDataPath();
    if (strFolder.IsEmpty())
        return;
    CStringArray names;
    velFindFiles(strFolder + "*.ORIGINALPF", names);
    for (INT_PTR i = 0; i < names.GetSize(); ++i)
    {
        strFilename file(strFolder + names[i]);
        file.SetExt("PF");
        if (PutBack(strFolder + names[i], file.GetFull()) && !dbCPatients().IsIDFree(file.GetName()))
            patFollowNow(file.GetName());
    }
}
catch (CException* e)
{
    e->Delete();
}
catch (...)
{
}

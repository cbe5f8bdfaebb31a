#include "maintenance/diagnosticsimport.h"

#include "maintenance/diagnosticsrules.h"
#include "maintenance/maintenanceres.h"
#include "suite/patients/records/dbpatient.h"
#include "suite/patients/records/veltrixlogin.h"
#include "suite/patients/store/dbtransaction.h"

#include <exception>

namespace
{
constexpr const char* CATEGORY = "Clinical";
constexpr UINT ARCHIVE_BUFFER = 4096; // bytes

bool ReadSerialized(LPCTSTR pszPath, int nFormat, dbCPatient& patient)
{
    CFile file;
    if (!file.Open(pszPath, CFile::modeRead | CFile::shareDenyWrite))
        return false;
    try
    {
        CArchive archive(&file, CArchive::load, ARCHIVE_BUFFER);
        patient.Initialize();
        patient.Serialize(archive, nFormat);
        return true;
    }
    catch (CException* e)
    {
        e->Delete();
        return false;
    }
}

std::vector<maint::DiagnosticItem> ItemsOf(const std::string& group)
{
    const dbCDiagnosticGroup definition(group.c_str(), CATEGORY);
    std::vector<maint::DiagnosticItem> items;
    items.reserve(static_cast<std::size_t>(definition.GetItemCount()));
    for (int i = 0; i < definition.GetItemCount(); ++i)
        items.push_back(
            {definition.GetItem(i).GetItemCode().GetString(), definition.GetItem(i).GetdtID().GetString()});
    return items;
}

bool EqualCodes(const std::string& one, const std::string& other)
{
    return CString(one.c_str()).CompareNoCase(other.c_str()) == 0;
}

void Import(const char* pszPatientFile, const char* pszPatientGUID)
{
    dbCPatient archived;
    if (pszPatientFile == nullptr || !maint::ReadInAnyFormat([&](int nFormat) {
            return ReadSerialized(pszPatientFile, nFormat, archived);
        }))
        return;

    std::vector<maint::DiagnosticEntry> entries;
    for (const dbCDiagnosticInfo& info : archived.GetArchiveDiagnostics())
        entries.push_back({info.GetGroupTitle().GetString(), info.GetItemCode().GetString()});
    if (entries.empty())
        return;

    dbCTransaction transaction;
    dbCPatientDiagnostics diagnostics(pszPatientGUID, 0, CATEGORY);
    const COleDateTime start = COleDateTime::GetCurrentTime();
    for (const maint::DiagnosticRecord& record : maint::PlanDiagnosticRecords(entries, ItemsOf, EqualCodes))
    {
        const dbCDiagnosticInfo& info = archived.GetArchiveDiagnostics()[record.position];
        diagnostics.AddDiagnosticRecord(record.dtID.c_str(), info.GetTP(), info, record.position,
                                        start + COleDateTimeSpan(0, 0, 0, record.seconds));
    }
    transaction.Commit();
}

void NoteFailure(const char* pszPatientGUID, const CString& strReason)
{
    CString strText;
    AfxFormatString1(strText, IDS_DIAGNOSTICS_NOT_IMPORTED, strReason);
    CVeltrixLogin().AddPatientModifiedEvent(pszPatientGUID, strText);
}

/// Runs `work`; true with the reason when it threw. Nothing gets past it.
template <typename Work> bool Fails(Work work, CString& strReason) noexcept
{
    try
    {
        try
        {
            work();
            return false;
        }
        catch (CException* e)
        {
            e->GetErrorMessage(strReason.GetBuffer(1024), 1024);
            strReason.ReleaseBuffer();
            e->Delete();
        }
        catch (const std::exception& e)
        {
            strReason = e.what();
        }
    }
    catch (...)
    {
        // No memory even for the reason.
    }
    return true;
}
} // namespace

bool velImportDiagnostics(const char* pszPatientFile, const char* pszPatientGUID) noexcept
{
    CString strReason, strIgnored;
    BOOL bKnown = FALSE;
    if (Fails([&] { bKnown = dbCAcPatientsContainer::IsPatientGUIDInUse(pszPatientGUID); }, strIgnored) ||
        !bKnown)
        return false;
    // Where the reason cannot be recorded either, nobody is left to tell.
    if (Fails([&] { Import(pszPatientFile, pszPatientGUID); }, strReason))
        Fails([&] { NoteFailure(pszPatientGUID, strReason); }, strIgnored);
    return true;
}

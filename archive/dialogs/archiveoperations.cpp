// The operations of the archive dialog: what is asked, and in which order the patients go through the
// manager.
#include "archive/dialogs/archivedlg.h"

#include "app/appres.h"
#include "app/velapp.h"
#include "archive/res/archivedlgres.h"
#include "archive/operations/archiveheader.h"
#include "archive/res/archiveres.h"
#include "archive/status/archiveworker.h"
#include "archive/dialogs/choosefile.h"
#include "archive/work/discbundle.h"
#include "archive/files/filenames.h"
#include "archive/operations/otherformats.h"
#include "archive/work/resultcodes.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

bool CDlgArchive::RunSave()
{
    const std::vector<CString> ids = SelectedIDs();
    if (ids.empty())
        return false;
    const bool bSeveral = ids.size() > 1;

    arcSSave save;
    save.bSeveralPatients = bSeveral;
    save.bKeepOthersOut = m_bKeepOthersOut;
    save.bAskToRemove = !bSeveral;
    if (bSeveral)
        save.bRemove =
            AfxMessageBox(IDS_ARC_MULTIPLE_SAVE_ASK, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;

    const auto target = arcChooseTarget(this, ids.front());
    if (!target)
        return false;
    save.nFormat = target->nFormat;
    const CString strFolder = strFilename(target->strPath).GetPath();
    // The earlier format has its patient file's name, whatever name was typed.
    const bool bNamedByID = bSeveral || save.nFormat == arcFormatEarlier;

    bool bBegun = false;
    bool bReplaceAll = false;
    for (const CString& strID : ids)
    {
        save.strID = strID;
        save.strArchivePath = bNamedByID ? arcArchivePath(strFolder, strID, save.nFormat) : target->strPath;
        const CString strExisting = arcExistingArchive(strID, save.nFormat, save.strArchivePath);
        if (!bReplaceAll && !strExisting.IsEmpty())
        {
            const arcReplace answer = arcAskReplace(this, strExisting, bSeveral);
            if (answer == arcReplace::Cancel)
                break;
            if (answer == arcReplace::No)
                continue;
            bReplaceAll = answer == arcReplace::YesToAll;
        }
        bool bAbort = false;
        bBegun = SaveOne(save, bSeveral, bAbort) || bBegun;
        if (bAbort || m_manager.IsHostClosing())
            break;
    }
    return bBegun;
}

/// Saves one patient, again as often as the user asks for it. Answers whether the work was begun.
bool CDlgArchive::SaveOne(const arcSSave& save, bool bSeveral, bool& bAbort)
{
    bool bBegun = false;
    for (;;)
    {
        m_nResultCode = m_manager.StartSave(save);
        if (m_nResultCode == arc::ResultDone)
        {
            bBegun = true;
            m_manager.WaitUntilIdle();
            m_nResultCode = m_manager.GetResult();
            m_strResult = save.strArchivePath;
        }
        if (m_nResultCode == arc::ResultDone)
            MakeDisc(save);
        if (m_nResultCode == arc::ResultDone || !bSeveral || m_manager.IsHostClosing())
            return bBegun;

        const int nAnswer = AfxMessageBox(IDS_ARC_SAVE_RETRY, MB_ABORTRETRYIGNORE | MB_ICONEXCLAMATION);
        if (nAnswer == IDRETRY)
            continue;
        bAbort = nAnswer == IDABORT;
        return bBegun;
    }
}

/// Makes the folder of a saved archive a self-starting disc if that was chosen.
void CDlgArchive::MakeDisc(const arcSSave& save)
{
    if (!m_bIncludeViewer || save.nFormat != arcFormatZipped)
        return;
    const CWaitCursor wait;
    const std::string programs = velGetIniString(IDS_SECTION_ENVIRONMENT, "SYS", "c:\\veltrix").GetString();
    const std::string folder = strFilename(save.strArchivePath).GetPath().GetString();
    arcMeanwhile(
        [&] { arc::MakeDiscBundle(arc::WindowsFileSystem(), programs, folder, save.strID.GetString()); });
}

bool CDlgArchive::RunLoad()
{
    std::vector<CString> paths = GivenArchives();
    if (paths.empty())
        paths = arcChooseArchives(this, true);
    if (paths.empty())
        return false;

    const bool bSeveral = paths.size() > 1;
    bool bDelete = false;
    if (bSeveral)
    {
        for (const CString& strPath : paths)
        {
            if (!arc::IsZippedArchive(strPath.GetString()))
            {
                AfxMessageBox(IDS_ARC_MULTIPLE_OLD, MB_OK | MB_ICONEXCLAMATION);
                return false;
            }
        }
        bDelete =
            AfxMessageBox(IDS_ARC_MULTIPLE_LOAD_ASK, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;
    }

    for (const CString& strPath : paths)
    {
        bool bStop = false;
        // An archive of which something was left behind is still needed.
        if (LoadOne(strPath, bSeveral, bStop) && bDelete && !m_manager.LeftSomethingBehind() &&
            !::DeleteFile(strPath))
            AfxMessageBox(velFormatTemplate(IDS_ARC_ARCHIVE_NOT_REMOVED, strPath),
                          MB_OK | MB_ICONEXCLAMATION);
        if (bStop || m_manager.IsHostClosing())
            break;
    }
    return true;
}

/// Answers whether the archive was loaded; bStop when the user wants no more after a failure.
bool CDlgArchive::LoadOne(const CString& strPath, bool bSeveral, bool& bStop)
{
    arcSLoad load;
    load.strArchivePath = strPath;
    m_strResult = strPath;
    if (bSeveral && !velFileExists(strPath))
    {
        const CString strName = strFilename(strPath).GetName();
        AfxMessageBox(velFormatTemplate(IDS_ARC_ZIP_MISSING, strName, strName), MB_OK | MB_ICONEXCLAMATION);
        m_nResultCode = arc::ResultLoadFailed;
    }
    else
    {
        m_nResultCode = m_manager.StartLoad(load);
        if (m_nResultCode == arc::ResultDone)
        {
            m_manager.WaitUntilIdle();
            m_nResultCode = m_manager.GetResult();
        }
    }
    if (m_nResultCode == arc::ResultDone)
        return true;
    if (m_manager.IsHostClosing() || (!bSeveral && m_nResultCode == arc::ResultCancelled))
        return false; // there is nobody to be told, or who ended it knows
    if (!bSeveral)
        AfxMessageBox(IDS_ARC_LOAD_FAILED, MB_OK | MB_ICONEXCLAMATION);
    else
        bStop = AfxMessageBox(IDS_ARC_LOAD_CONTINUE, MB_OKCANCEL | MB_ICONEXCLAMATION) != IDOK;
    return false;
}

bool CDlgArchive::RunMerge()
{
    std::vector<CString> paths = GivenArchives();
    if (paths.empty())
        paths = arcChooseArchives(this, false);
    if (paths.empty())
        return false;

    const CString& strPath = paths.front();
    if (!arc::IsZippedArchive(strPath.GetString()) || !velFileExists(strPath))
    {
        AfxMessageBox(IDS_ARC_MERGE_OLD, MB_OK | MB_ICONEXCLAMATION);
        return true;
    }
    if (!ConfirmMerge(strPath))
        return false;

    arcSLoad load;
    load.strArchivePath = strPath;
    load.strMergeID = m_call.pPatient->GetID();
    m_strResult = strPath;
    m_nResultCode = m_manager.StartLoad(load);
    if (m_nResultCode != arc::ResultDone)
        return false;
    m_manager.WaitUntilIdle();
    m_nResultCode = m_manager.GetResult();
    return true;
}

/// Whether the archive's patient is the selected one, or the user wants to merge all the same.
bool CDlgArchive::ConfirmMerge(const CString& strPath)
{
    std::optional<arc::HeaderLine> header;
    arcMeanwhile([&] { header = arcReadArchiveHeader(strPath); });
    if (!header)
    {
        AfxMessageBox(IDS_ARC_NO_HEADER, MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    const dbCPatient& patient = *m_call.pPatient;
    const arc::HeaderLine selected{patient.GetLastname().GetString(), patient.GetFirstname().GetString(),
                                   patient.GetID().GetString()};
    if (arc::SamePatient(selected, *header))
        return true;

    CString strText, strCaption;
    strText.Format(IDS_ARC_MISMATCH, selected.id.c_str(), selected.firstName.c_str(),
                   selected.lastName.c_str(), header->id.c_str(), header->firstName.c_str(),
                   header->lastName.c_str());
    strCaption.LoadString(IDS_ARC_MISMATCH_CAPTION);
    return MessageBox(strText, strCaption, MB_YESNO | MB_ICONEXCLAMATION) == IDYES;
}

std::vector<CString> CDlgArchive::GivenArchives() const
{
    std::vector<CString> paths;
    for (INT_PTR i = 0; i < m_call.pGivenArchives->GetSize(); ++i)
        paths.push_back(m_call.pGivenArchives->GetAt(i));
    // A single one that does not open is asked for; of several each is told by itself.
    CFile file;
    if (paths.size() == 1 && !file.Open(paths.front(), CFile::modeRead | CFile::shareDenyNone))
        paths.clear();
    return paths;
}

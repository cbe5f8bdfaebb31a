#include "archive/dialogs/choosefile.h"

#include "app/appres.h"
#include "archive/res/archivedlgres.h"
#include "archive/dialogs/archiveoverwritedlg.h"
#include "archive/res/archiveres.h"
#include "archive/files/filenames.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"

#include <afxdlgs.h>

#include <array>

namespace
{
constexpr LPCTSTR FolderKey = "ArchiveFilePath";
constexpr LPCTSTR DefaultFolder = "A:";
constexpr std::array<LPCTSTR, 3> Extensions = {"kaz", "kar", "PF"}; // by arcFormat
constexpr int SeveralFilesBuffer = 64 * 1024;

CString ArchiveFolder()
{
    return velGetIniString(IDS_SECTION_DEFAULTS, FolderKey, DefaultFolder);
}

CString LoadText(UINT nID)
{
    CString strText;
    strText.LoadString(nID);
    return strText;
}

bool HasDrive(const CString& strPath)
{
    if (arc::HasDriveLetter(strPath.GetString()))
        return true;
    AfxMessageBox(IDS_ARC_NO_UNC, MB_OK | MB_ICONEXCLAMATION);
    return false;
}

// The dialog appends the default extension whatever the file type is: an extension of another format makes
// way, any other belongs to the name.
CString WithFormatExtension(const CString& strPath, arcFormat nFormat)
{
    const std::string typed(arc::ExtensionOf(strPath.GetString()));
    for (const LPCTSTR pszExtension : Extensions)
    {
        if (arc::EqualNoCase(typed, std::string(".") + pszExtension))
            return arc::WithExtension(strPath.GetString(), Extensions[nFormat]).c_str();
    }
    return strPath + "." + Extensions[nFormat];
}

bool ConfirmEarlierFormat()
{
    CString strText;
    strText.Format(IDS_ARC_EARLIER_ASK, LoadText(IDS_ARC_EARLIER_NAME).GetString());
    return AfxMessageBox(strText, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;
}
} // namespace

std::optional<arcSTarget> arcChooseTarget(CWnd* pParent, LPCTSTR pszID)
{
    const CString strFolder = velWithBackslash(ArchiveFolder());
    CFileDialog dialog(FALSE, Extensions[arcFormatZipped], pszID,
                       OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_NOCHANGEDIR, LoadText(IDS_ARC_FILTER_SAVE),
                       pParent);
    const CString strTitle = LoadText(IDS_ARC_SAVE_TITLE);
    dialog.m_ofn.lpstrTitle = strTitle;
    dialog.m_ofn.lpstrInitialDir = strFolder;
    if (dialog.DoModal() != IDOK)
        return std::nullopt;

    arcSTarget target;
    const DWORD nFilter = dialog.m_ofn.nFilterIndex; // from 1
    target.nFormat = static_cast<arcFormat>(nFilter >= 1 && nFilter <= Extensions.size() ? nFilter - 1 : 0);
    target.strPath = dialog.GetPathName();
    if (!HasDrive(target.strPath))
        return std::nullopt;
    target.strPath = WithFormatExtension(target.strPath, target.nFormat);
    if (target.nFormat == arcFormatEarlier && !ConfirmEarlierFormat())
        return std::nullopt;
    velSetIniString(IDS_SECTION_DEFAULTS, FolderKey, strFilename(target.strPath).GetPath());
    return target;
}

std::vector<CString> arcChooseArchives(CWnd* pParent, bool bSeveral)
{
    DWORD dwFlags = OFN_HIDEREADONLY | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_NOCHANGEDIR;
    if (bSeveral)
        dwFlags |= OFN_ALLOWMULTISELECT;
    CFileDialog dialog(TRUE, Extensions[arcFormatZipped], nullptr, dwFlags, LoadText(IDS_ARC_FILTER_LOAD),
                       pParent);
    const CString strTitle = LoadText(IDS_ARC_CHOOSE_TITLE);
    const CString strFolder = velWithBackslash(ArchiveFolder());
    std::vector<char> names(SeveralFilesBuffer);
    dialog.m_ofn.lpstrTitle = strTitle;
    dialog.m_ofn.lpstrInitialDir = strFolder;
    dialog.m_ofn.lpstrFile = names.data();
    dialog.m_ofn.nMaxFile = static_cast<DWORD>(names.size());

    std::vector<CString> paths;
    if (dialog.DoModal() != IDOK)
        return paths;
    for (POSITION position = dialog.GetStartPosition(); position != nullptr;)
    {
        paths.push_back(dialog.GetNextPathName(position));
        if (!HasDrive(paths.back()))
            return {};
    }
    return paths;
}

CString arcArchivePath(LPCTSTR pszFolder, LPCTSTR pszID, arcFormat nFormat)
{
    const std::string name = std::string(pszID) + "." + Extensions[nFormat];
    return arc::JoinPath(pszFolder, name).c_str();
}

arcReplace arcAskReplace(CWnd* pParent, LPCTSTR pszPath, bool bSeveral)
{
    CDlgArchiveOverwrite dialog(pParent, pszPath, bSeveral);
    switch (dialog.DoModal())
    {
    case IDYES:
        return arcReplace::Yes;
    case IDC_ARC_OVERWRITE_ALL:
        return arcReplace::YesToAll;
    case IDNO:
        return arcReplace::No;
    default:
        return arcReplace::Cancel;
    }
}

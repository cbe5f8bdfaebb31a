// The common file dialog.
#include "suite/mfc/afxdlgs.h"

#include <commdlg.h>

IMPLEMENT_DYNAMIC(CCommonDialog, CDialog)
IMPLEMENT_DYNAMIC(CFileDialog, CCommonDialog)

CCommonDialog::CCommonDialog(CWnd* pParentWnd)
{
    m_pParentWnd = pParentWnd;
}

CFileDialog::CFileDialog(BOOL bOpenFileDialog, LPCTSTR lpszDefExt, LPCTSTR lpszFileName, DWORD dwFlags,
                         LPCTSTR lpszFilter, CWnd* pParentWnd, DWORD, BOOL)
    : CCommonDialog(pParentWnd), m_ofn(), m_bOpenFileDialog(bOpenFileDialog)
{
    m_ofn.lStructSize = sizeof(m_ofn);
    m_ofn.Flags = dwFlags | OFN_EXPLORER | OFN_ENABLESIZING;
    m_ofn.lpstrDefExt = lpszDefExt;
    m_ofn.nFilterIndex = 1;
    m_fileName.resize(MAX_PATH);
    if (lpszFileName != nullptr)
        ::lstrcpyn(m_fileName.data(), lpszFileName, MAX_PATH);
    m_ofn.lpstrFile = m_fileName.data();
    m_ofn.nMaxFile = MAX_PATH;
    if (lpszFilter != nullptr)
    {
        m_strFilter = lpszFilter;
        m_strFilter.Replace('|', '\0');
        m_ofn.lpstrFilter = m_strFilter;
    }
}

INT_PTR CFileDialog::DoModal()
{
    HWND hWndTop = nullptr;
    CWnd* const pOwner = CWnd::GetSafeOwner(m_pParentWnd, &hWndTop);
    m_ofn.hwndOwner = pOwner != nullptr ? pOwner->GetSafeHwnd() : nullptr;
    const BOOL bChosen = m_bOpenFileDialog ? ::GetOpenFileName(&m_ofn) : ::GetSaveFileName(&m_ofn);
    if (hWndTop != nullptr)
        ::EnableWindow(hWndTop, TRUE);
    return bChosen ? IDOK : IDCANCEL;
}

CString CFileDialog::GetPathName() const
{
    if ((m_ofn.Flags & OFN_ALLOWMULTISELECT) == 0)
        return m_ofn.lpstrFile;
    POSITION pos = GetStartPosition();
    return GetNextPathName(pos);
}

CString CFileDialog::GetFileName() const
{
    const CString strPath = GetPathName();
    return strPath.Mid(strPath.ReverseFind('\\') + 1);
}

CString CFileDialog::GetFileExt() const
{
    const CString strName = GetFileName();
    const int nDot = strName.ReverseFind('.');
    return nDot < 0 ? CString() : strName.Mid(nDot + 1);
}

CString CFileDialog::GetFileTitle() const
{
    const CString strName = GetFileName();
    const int nDot = strName.ReverseFind('.');
    return nDot < 0 ? strName : strName.Left(nDot);
}

CString CFileDialog::GetFolderPath() const
{
    const CString strPath = GetPathName();
    return strPath.Left(strPath.ReverseFind('\\'));
}

BOOL CFileDialog::GetReadOnlyPref() const
{
    return (m_ofn.Flags & OFN_READONLY) != 0;
}

POSITION CFileDialog::GetStartPosition() const
{
    return reinterpret_cast<POSITION>(m_ofn.lpstrFile);
}

// Several files come as the folder and then their names, each ended by a zero, the last by two; a single one as
// its path alone.
CString CFileDialog::GetNextPathName(POSITION& pos) const
{
    LPCTSTR pszHere = reinterpret_cast<LPCTSTR>(pos);
    pos = nullptr;
    const bool bFirst = pszHere == m_ofn.lpstrFile;
    const LPCTSTR pszBehind = pszHere + ::lstrlen(pszHere) + 1;
    if (bFirst && ((m_ofn.Flags & OFN_ALLOWMULTISELECT) == 0 || *pszBehind == '\0'))
        return pszHere;
    if (bFirst)
        pszHere = pszBehind;

    const LPCTSTR pszNext = pszHere + ::lstrlen(pszHere) + 1;
    if (*pszNext != '\0')
        pos = reinterpret_cast<POSITION>(const_cast<LPTSTR>(pszNext));
    CString strPath = m_ofn.lpstrFile;
    if (strPath.IsEmpty() || strPath[strPath.GetLength() - 1] != '\\')
        strPath += '\\';
    return strPath + pszHere;
}

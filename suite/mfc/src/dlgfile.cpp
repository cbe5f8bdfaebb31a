// CFileDialog.
#include "suite/mfc/afxdlgs.h"

#include <algorithm>
#include <cstring>

IMPLEMENT_DYNAMIC(CCommonDialog, CDialog)
IMPLEMENT_DYNAMIC(CFileDialog, CCommonDialog)

namespace
{
// Room for what a user selects at once; without multiple selection one path.
constexpr std::size_t manyNames = 65536;
constexpr std::size_t oneName = 1024;
} // namespace

CCommonDialog::CCommonDialog(CWnd* pParentWnd) : CDialog(static_cast<UINT>(0), pParentWnd)
{
}

CFileDialog::CFileDialog(BOOL bOpenFileDialog, LPCTSTR lpszDefExt, LPCTSTR lpszFileName, DWORD dwFlags,
                         LPCTSTR lpszFilter, CWnd* pParentWnd, DWORD, BOOL)
    : CCommonDialog(pParentWnd), m_ofn{}, m_bOpenFileDialog(bOpenFileDialog),
      m_fileName((dwFlags & OFN_ALLOWMULTISELECT) != 0 ? manyNames : oneName, '\0')
{
    m_ofn.lStructSize = sizeof(m_ofn);
    m_ofn.lpstrFile = m_fileName.data();
    m_ofn.nMaxFile = static_cast<DWORD>(m_fileName.size());
    m_ofn.lpstrDefExt = lpszDefExt;
    m_ofn.nFilterIndex = 1;
    m_ofn.Flags = dwFlags | OFN_EXPLORER | OFN_ENABLESIZING;
    if (lpszFileName != nullptr)
    {
        lstrcpyn(m_ofn.lpstrFile, lpszFileName, static_cast<int>(m_ofn.nMaxFile));
    }
    if (lpszFilter != nullptr)
    {
        // The system wants zeros where the filter has bars.
        m_strFilter = lpszFilter;
        const int length = m_strFilter.GetLength();
        char* text = m_strFilter.GetBuffer(length + 1);
        std::replace(text, text + length, '|', '\0');
        text[length] = '\0';
        m_ofn.lpstrFilter = text;
    }
}

INT_PTR CFileDialog::DoModal()
{
    m_ofn.hInstance = AfxGetResourceHandle();
    const HWND owner = PreModal();
    m_ofn.hwndOwner = owner;
    const BOOL chosen = m_bOpenFileDialog ? ::GetOpenFileName(&m_ofn) : ::GetSaveFileName(&m_ofn);
    PostModal();
    return chosen ? IDOK : IDCANCEL;
}

CString CFileDialog::GetPathName() const
{
    POSITION pos = GetStartPosition();
    return GetNextPathName(pos);
}

POSITION CFileDialog::GetStartPosition() const
{
    return reinterpret_cast<POSITION>(m_ofn.lpstrFile);
}

// The buffer holds one path, or a folder and the names in it, each ended by a zero, and a zero more.
CString CFileDialog::GetNextPathName(POSITION& pos) const
{
    if ((m_ofn.Flags & OFN_ALLOWMULTISELECT) == 0)
    {
        pos = nullptr;
        return m_ofn.lpstrFile;
    }
    const char* folder = m_ofn.lpstrFile;
    auto* place = reinterpret_cast<const char*>(pos);
    if (place == folder)
    {
        place += std::strlen(place) + 1;
        if (*place == '\0')
        {
            pos = nullptr;
            return folder;
        }
    }
    CString path(folder);
    if (path.IsEmpty() || path.GetAt(path.GetLength() - 1) != '\\')
    {
        path += '\\';
    }
    path += place;
    place += std::strlen(place) + 1;
    pos = *place != '\0' ? reinterpret_cast<POSITION>(const_cast<char*>(place)) : nullptr;
    return path;
}

// GDI objects and device contexts. Included through afxwin.h.
#pragma once

class CWnd;
class CDC;

// A GDI object; owns its handle unless it came from FromHandle. Used by one thread.
class AFX_DLL_CLASS CGdiObject : public CObject
{
    DECLARE_DYNAMIC(CGdiObject)
public:
    CGdiObject() = default;
    ~CGdiObject() override;

    HGDIOBJ m_hObject = nullptr;
    static CGdiObject* FromHandle(HGDIOBJ hObject);
    BOOL Attach(HGDIOBJ hObject);
    HGDIOBJ Detach();
    BOOL DeleteObject();
};

class AFX_DLL_CLASS CFont : public CGdiObject
{
    DECLARE_DYNAMIC(CFont)
public:
    CFont() = default;
    static CFont* FromHandle(HFONT hFont)
    {
        return static_cast<CFont*>(CGdiObject::FromHandle(hFont));
    }
    operator HFONT() const
    {
        return static_cast<HFONT>(m_hObject);
    }
};

class AFX_DLL_CLASS CBitmap : public CGdiObject
{
    DECLARE_DYNAMIC(CBitmap)
public:
    CBitmap() = default;
    static CBitmap* FromHandle(HBITMAP hBitmap)
    {
        return static_cast<CBitmap*>(CGdiObject::FromHandle(hBitmap));
    }
    BOOL CreateCompatibleBitmap(CDC* pDC, int nWidth, int nHeight);
    operator HBITMAP() const
    {
        return static_cast<HBITMAP>(m_hObject);
    }
};

// A device context; owns its handle (deleted, not released) unless it came from FromHandle.
class AFX_DLL_CLASS CDC : public CObject
{
    DECLARE_DYNAMIC(CDC)
public:
    CDC() = default;
    ~CDC() override;

    HDC m_hDC = nullptr;
    HDC GetSafeHdc() const
    {
        return m_hDC;
    }
    operator HDC() const
    {
        return m_hDC;
    }
    static CDC* FromHandle(HDC hDC);
    BOOL Attach(HDC hDC);
    HDC Detach();

    BOOL CreateCompatibleDC(CDC* pDC)
    {
        return Attach(::CreateCompatibleDC(pDC != nullptr ? pDC->m_hDC : nullptr));
    }
    BOOL DeleteDC();
    int GetDeviceCaps(int nIndex) const
    {
        return ::GetDeviceCaps(m_hDC, nIndex);
    }

    CFont* SelectObject(CFont* pFont);
    CBitmap* SelectObject(CBitmap* pBitmap);

    COLORREF SetBkColor(COLORREF crColor)
    {
        return ::SetBkColor(m_hDC, crColor);
    }
    int SetBkMode(int nBkMode)
    {
        return ::SetBkMode(m_hDC, nBkMode);
    }
    COLORREF SetTextColor(COLORREF crColor)
    {
        return ::SetTextColor(m_hDC, crColor);
    }

    // Also sets the background colour.
    void FillSolidRect(LPCRECT lpRect, COLORREF clr)
    {
        ::SetBkColor(m_hDC, clr);
        ::ExtTextOut(m_hDC, 0, 0, ETO_OPAQUE, lpRect, nullptr, 0, nullptr);
    }
    void FillSolidRect(int x, int y, int cx, int cy, COLORREF clr)
    {
        FillSolidRect(CRect(x, y, x + cx, y + cy), clr);
    }
    void DrawFocusRect(LPCRECT lpRect)
    {
        ::DrawFocusRect(m_hDC, lpRect);
    }
    BOOL BitBlt(int x, int y, int nWidth, int nHeight, CDC* pSrcDC, int xSrc, int ySrc, DWORD dwRop)
    {
        return ::BitBlt(m_hDC, x, y, nWidth, nHeight, pSrcDC->m_hDC, xSrc, ySrc, dwRop);
    }

    int DrawText(LPCTSTR lpszString, int nCount, LPRECT lpRect, UINT nFormat)
    {
        return ::DrawText(m_hDC, lpszString, nCount, lpRect, nFormat);
    }
    CSize GetTextExtent(LPCTSTR lpszString, int nCount) const
    {
        CSize size;
        ::GetTextExtentPoint32(m_hDC, lpszString, nCount, &size);
        return size;
    }
    CSize GetTextExtent(const CString& str) const
    {
        return GetTextExtent(str.GetString(), str.GetLength());
    }
};

// WM_PAINT's device context: BeginPaint to EndPaint. Throws CResourceException when there is none.
class AFX_DLL_CLASS CPaintDC : public CDC
{
    DECLARE_DYNAMIC(CPaintDC)
public:
    explicit CPaintDC(CWnd* pWnd);
    ~CPaintDC() override;
    PAINTSTRUCT m_ps;

private:
    HWND m_hWnd;
};

// The client area's device context; a null window is the whole screen.
class AFX_DLL_CLASS CClientDC : public CDC
{
    DECLARE_DYNAMIC(CClientDC)
public:
    explicit CClientDC(CWnd* pWnd);
    ~CClientDC() override;

private:
    HWND m_hWnd;
};

// GDI objects and device contexts. Included through afxwin.h.
#pragma once

class CWnd;
class CDC;

// A GDI object; owns its handle unless it came from FromHandle. Used by one thread.
class AFX_DLL_CLASS CGdiObject : public CObject
{
    DECLARE_DYNCREATE(CGdiObject)
public:
    CGdiObject() = default;
    ~CGdiObject() override;

    HGDIOBJ m_hObject = nullptr;
    HGDIOBJ GetSafeHandle() const
    {
        return m_hObject;
    }
    static CGdiObject* FromHandle(HGDIOBJ hObject);
    static void DeleteTempMap();
    BOOL Attach(HGDIOBJ hObject);
    HGDIOBJ Detach();
    BOOL DeleteObject();
    int GetObject(int nCount, LPVOID lpObject) const
    {
        return ::GetObject(m_hObject, nCount, lpObject);
    }
    BOOL CreateStockObject(int nIndex)
    {
        return Attach(::GetStockObject(nIndex));
    }
};

class AFX_DLL_CLASS CPen : public CGdiObject
{
    DECLARE_DYNAMIC(CPen)
public:
    CPen() = default;
    // Throws CResourceException when the pen cannot be made.
    CPen(int nPenStyle, int nWidth, COLORREF crColor);
    static CPen* FromHandle(HPEN hPen)
    {
        return static_cast<CPen*>(CGdiObject::FromHandle(hPen));
    }
    BOOL CreatePen(int nPenStyle, int nWidth, COLORREF crColor)
    {
        return Attach(::CreatePen(nPenStyle, nWidth, crColor));
    }
    operator HPEN() const
    {
        return static_cast<HPEN>(m_hObject);
    }
};

class AFX_DLL_CLASS CBrush : public CGdiObject
{
    DECLARE_DYNAMIC(CBrush)
public:
    CBrush() = default;
    // Throws CResourceException when the brush cannot be made.
    explicit CBrush(COLORREF crColor);
    static CBrush* FromHandle(HBRUSH hBrush)
    {
        return static_cast<CBrush*>(CGdiObject::FromHandle(hBrush));
    }
    BOOL CreateSolidBrush(COLORREF crColor)
    {
        return Attach(::CreateSolidBrush(crColor));
    }
    BOOL CreateSysColorBrush(int nIndex)
    {
        return Attach(::GetSysColorBrush(nIndex));
    }
    operator HBRUSH() const
    {
        return static_cast<HBRUSH>(m_hObject);
    }
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
    BOOL CreateFontIndirect(const LOGFONT* lpLogFont)
    {
        return Attach(::CreateFontIndirect(lpLogFont));
    }
    // nPointSize in tenths of a point.
    BOOL CreatePointFont(int nPointSize, LPCTSTR lpszFaceName, CDC* pDC = nullptr);
    int GetLogFont(LOGFONT* pLogFont) const
    {
        return GetObject(sizeof(LOGFONT), pLogFont);
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
    BOOL LoadBitmap(LPCTSTR lpszResourceName);
    BOOL LoadBitmap(UINT nIDResource)
    {
        return LoadBitmap(MAKEINTRESOURCE(nIDResource));
    }
    BOOL CreateCompatibleBitmap(CDC* pDC, int nWidth, int nHeight);
    BOOL CreateBitmap(int nWidth, int nHeight, UINT nPlanes, UINT nBitcount, const void* lpBits)
    {
        return Attach(::CreateBitmap(nWidth, nHeight, nPlanes, nBitcount, lpBits));
    }
    int GetBitmap(BITMAP* pBitMap) const
    {
        return GetObject(sizeof(BITMAP), pBitMap);
    }
    operator HBITMAP() const
    {
        return static_cast<HBITMAP>(m_hObject);
    }
};

class AFX_DLL_CLASS CRgn : public CGdiObject
{
    DECLARE_DYNAMIC(CRgn)
public:
    CRgn() = default;
    BOOL CreateRectRgnIndirect(LPCRECT lpRect)
    {
        return Attach(::CreateRectRgnIndirect(lpRect));
    }
    BOOL CreateRectRgn(int x1, int y1, int x2, int y2)
    {
        return Attach(::CreateRectRgn(x1, y1, x2, y2));
    }
    operator HRGN() const
    {
        return static_cast<HRGN>(m_hObject);
    }
};

// A device context; owns its handle (deleted, not released) unless it came from FromHandle.
class AFX_DLL_CLASS CDC : public CObject
{
    DECLARE_DYNCREATE(CDC)
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
    static void DeleteTempMap();
    BOOL Attach(HDC hDC);
    HDC Detach();

    BOOL CreateCompatibleDC(CDC* pDC)
    {
        return Attach(::CreateCompatibleDC(pDC != nullptr ? pDC->m_hDC : nullptr));
    }
    BOOL DeleteDC();
    int SaveDC()
    {
        return ::SaveDC(m_hDC);
    }
    BOOL RestoreDC(int nSavedDC)
    {
        return ::RestoreDC(m_hDC, nSavedDC);
    }
    int GetDeviceCaps(int nIndex) const
    {
        return ::GetDeviceCaps(m_hDC, nIndex);
    }
    CWnd* GetWindow() const;

    CGdiObject* SelectObject(CGdiObject* pObject);
    CPen* SelectObject(CPen* pPen);
    CBrush* SelectObject(CBrush* pBrush);
    CFont* SelectObject(CFont* pFont);
    CBitmap* SelectObject(CBitmap* pBitmap);
    CGdiObject* SelectStockObject(int nIndex);
    CFont* GetCurrentFont() const;

    COLORREF SetBkColor(COLORREF crColor)
    {
        return ::SetBkColor(m_hDC, crColor);
    }
    COLORREF GetBkColor() const
    {
        return ::GetBkColor(m_hDC);
    }
    int SetBkMode(int nBkMode)
    {
        return ::SetBkMode(m_hDC, nBkMode);
    }
    COLORREF SetTextColor(COLORREF crColor)
    {
        return ::SetTextColor(m_hDC, crColor);
    }
    COLORREF GetTextColor() const
    {
        return ::GetTextColor(m_hDC);
    }
    UINT SetTextAlign(UINT nFlags)
    {
        return ::SetTextAlign(m_hDC, nFlags);
    }
    int SetStretchBltMode(int nStretchMode)
    {
        return ::SetStretchBltMode(m_hDC, nStretchMode);
    }

    int GetClipBox(LPRECT lpRect) const
    {
        return ::GetClipBox(m_hDC, lpRect);
    }
    int IntersectClipRect(LPCRECT lpRect)
    {
        return ::IntersectClipRect(m_hDC, lpRect->left, lpRect->top, lpRect->right, lpRect->bottom);
    }
    int ExcludeClipRect(LPCRECT lpRect)
    {
        return ::ExcludeClipRect(m_hDC, lpRect->left, lpRect->top, lpRect->right, lpRect->bottom);
    }
    int SelectClipRgn(CRgn* pRgn)
    {
        return ::SelectClipRgn(m_hDC, pRgn != nullptr ? static_cast<HRGN>(*pRgn) : nullptr);
    }

    CPoint MoveTo(int x, int y)
    {
        CPoint previous;
        ::MoveToEx(m_hDC, x, y, &previous);
        return previous;
    }
    CPoint MoveTo(POINT point)
    {
        return MoveTo(point.x, point.y);
    }
    BOOL LineTo(int x, int y)
    {
        return ::LineTo(m_hDC, x, y);
    }
    BOOL LineTo(POINT point)
    {
        return ::LineTo(m_hDC, point.x, point.y);
    }
    BOOL Polyline(const POINT* lpPoints, int nCount)
    {
        return ::Polyline(m_hDC, lpPoints, nCount);
    }
    BOOL Polygon(const POINT* lpPoints, int nCount)
    {
        return ::Polygon(m_hDC, lpPoints, nCount);
    }
    BOOL Rectangle(LPCRECT lpRect)
    {
        return ::Rectangle(m_hDC, lpRect->left, lpRect->top, lpRect->right, lpRect->bottom);
    }
    BOOL Rectangle(int x1, int y1, int x2, int y2)
    {
        return ::Rectangle(m_hDC, x1, y1, x2, y2);
    }
    BOOL RoundRect(LPCRECT lpRect, POINT point)
    {
        return ::RoundRect(m_hDC, lpRect->left, lpRect->top, lpRect->right, lpRect->bottom, point.x, point.y);
    }
    BOOL Ellipse(LPCRECT lpRect)
    {
        return ::Ellipse(m_hDC, lpRect->left, lpRect->top, lpRect->right, lpRect->bottom);
    }
    int FillRect(LPCRECT lpRect, CBrush* pBrush)
    {
        return ::FillRect(m_hDC, lpRect, *pBrush);
    }
    int FrameRect(LPCRECT lpRect, CBrush* pBrush)
    {
        return ::FrameRect(m_hDC, lpRect, *pBrush);
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
    void Draw3dRect(LPCRECT lpRect, COLORREF clrTopLeft, COLORREF clrBottomRight);
    BOOL DrawEdge(LPRECT lpRect, UINT nEdge, UINT nFlags)
    {
        return ::DrawEdge(m_hDC, lpRect, nEdge, nFlags);
    }
    BOOL DrawFrameControl(LPRECT lpRect, UINT nType, UINT nState)
    {
        return ::DrawFrameControl(m_hDC, lpRect, nType, nState);
    }
    void DrawFocusRect(LPCRECT lpRect)
    {
        ::DrawFocusRect(m_hDC, lpRect);
    }
    BOOL DrawIcon(int x, int y, HICON hIcon)
    {
        return ::DrawIcon(m_hDC, x, y, hIcon);
    }
    COLORREF SetPixel(int x, int y, COLORREF crColor)
    {
        return ::SetPixel(m_hDC, x, y, crColor);
    }
    COLORREF GetPixel(int x, int y) const
    {
        return ::GetPixel(m_hDC, x, y);
    }
    BOOL BitBlt(int x, int y, int nWidth, int nHeight, CDC* pSrcDC, int xSrc, int ySrc, DWORD dwRop)
    {
        return ::BitBlt(m_hDC, x, y, nWidth, nHeight, pSrcDC->m_hDC, xSrc, ySrc, dwRop);
    }
    BOOL StretchBlt(int x, int y, int nWidth, int nHeight, CDC* pSrcDC, int xSrc, int ySrc, int nSrcWidth,
                    int nSrcHeight, DWORD dwRop)
    {
        return ::StretchBlt(m_hDC, x, y, nWidth, nHeight, pSrcDC->m_hDC, xSrc, ySrc, nSrcWidth, nSrcHeight,
                            dwRop);
    }

    BOOL TextOut(int x, int y, LPCTSTR lpszString, int nCount)
    {
        return ::TextOut(m_hDC, x, y, lpszString, nCount);
    }
    BOOL TextOut(int x, int y, const CString& str)
    {
        return ::TextOut(m_hDC, x, y, str.GetString(), str.GetLength());
    }
    BOOL ExtTextOut(int x, int y, UINT nOptions, LPCRECT lpRect, const CString& str, const INT* lpDxWidths)
    {
        return ::ExtTextOut(m_hDC, x, y, nOptions, lpRect, str.GetString(),
                            static_cast<UINT>(str.GetLength()), lpDxWidths);
    }
    int DrawText(LPCTSTR lpszString, int nCount, LPRECT lpRect, UINT nFormat)
    {
        return ::DrawText(m_hDC, lpszString, nCount, lpRect, nFormat);
    }
    int DrawText(const CString& str, LPRECT lpRect, UINT nFormat)
    {
        return ::DrawText(m_hDC, str.GetString(), str.GetLength(), lpRect, nFormat);
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
    BOOL GetTextMetrics(LPTEXTMETRIC lpMetrics) const
    {
        return ::GetTextMetrics(m_hDC, lpMetrics);
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

class AFX_DLL_CLASS CWindowDC : public CDC
{
    DECLARE_DYNAMIC(CWindowDC)
public:
    explicit CWindowDC(CWnd* pWnd);
    ~CWindowDC() override;

private:
    HWND m_hWnd;
};

// GDI objects and device contexts.
#include "handlemap.h"

IMPLEMENT_DYNCREATE(CGdiObject, CObject)
IMPLEMENT_DYNAMIC(CPen, CGdiObject)
IMPLEMENT_DYNAMIC(CBrush, CGdiObject)
IMPLEMENT_DYNAMIC(CFont, CGdiObject)
IMPLEMENT_DYNAMIC(CBitmap, CGdiObject)
IMPLEMENT_DYNAMIC(CRgn, CGdiObject)
IMPLEMENT_DYNCREATE(CDC, CObject)
IMPLEMENT_DYNAMIC(CPaintDC, CDC)
IMPLEMENT_DYNAMIC(CClientDC, CDC)
IMPLEMENT_DYNAMIC(CWindowDC, CDC)

// ---------------------------------------------------------------------------------------------------------
// CGdiObject

namespace
{
// A temporary object of the class that belongs to the handle, so that CFont::FromHandle gives a CFont.
std::unique_ptr<CGdiObject> MakeGdiObject(HGDIOBJ handle)
{
    switch (::GetObjectType(handle))
    {
    case OBJ_PEN:
    case OBJ_EXTPEN:
        return std::make_unique<CPen>();
    case OBJ_BRUSH:
        return std::make_unique<CBrush>();
    case OBJ_FONT:
        return std::make_unique<CFont>();
    case OBJ_BITMAP:
        return std::make_unique<CBitmap>();
    case OBJ_REGION:
        return std::make_unique<CRgn>();
    default:
        return std::make_unique<CGdiObject>();
    }
}
} // namespace

CGdiObject::~CGdiObject()
{
    DeleteObject();
}

CGdiObject* CGdiObject::FromHandle(HGDIOBJ hObject)
{
    if (hObject == nullptr)
    {
        return nullptr;
    }
    CHandleMaps& maps = AfxMaps();
    return maps.gdi.Find(hObject, maps.NextSerial(), [hObject] { return MakeGdiObject(hObject); });
}

void CGdiObject::DeleteTempMap()
{
    AfxMaps().DropSince(0);
}

BOOL CGdiObject::Attach(HGDIOBJ hObject)
{
    ASSERT(m_hObject == nullptr);
    if (hObject == nullptr)
    {
        return FALSE;
    }
    AfxMaps().gdi.SetPermanent(hObject, this);
    m_hObject = hObject;
    return TRUE;
}

HGDIOBJ CGdiObject::Detach()
{
    const HGDIOBJ handle = m_hObject;
    if (handle != nullptr)
    {
        auto& map = AfxMaps().gdi;
        if (map.FindPermanent(handle) == this)
        {
            map.Remove(handle);
        }
        m_hObject = nullptr;
    }
    return handle;
}

BOOL CGdiObject::DeleteObject()
{
    return m_hObject != nullptr && ::DeleteObject(Detach());
}

CPen::CPen(int nPenStyle, int nWidth, COLORREF crColor)
{
    if (!CreatePen(nPenStyle, nWidth, crColor))
    {
        AfxThrowResourceException();
    }
}

CBrush::CBrush(COLORREF crColor)
{
    if (!CreateSolidBrush(crColor))
    {
        AfxThrowResourceException();
    }
}

BOOL CFont::CreatePointFont(int nPointSize, LPCTSTR lpszFaceName, CDC* pDC)
{
    const HDC screen = pDC == nullptr ? ::GetDC(nullptr) : nullptr;
    const HDC dc = pDC != nullptr ? pDC->m_hDC : screen;
    LOGFONT font{};
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfHeight = -::MulDiv(nPointSize, ::GetDeviceCaps(dc, LOGPIXELSY), 720);
    lstrcpyn(font.lfFaceName, lpszFaceName, LF_FACESIZE);
    if (screen != nullptr)
    {
        ::ReleaseDC(nullptr, screen);
    }
    return CreateFontIndirect(&font);
}

BOOL CBitmap::LoadBitmap(LPCTSTR lpszResourceName)
{
    return Attach(::LoadBitmap(AfxFindResourceHandle(lpszResourceName, RT_BITMAP), lpszResourceName));
}

BOOL CBitmap::CreateCompatibleBitmap(CDC* pDC, int nWidth, int nHeight)
{
    return Attach(::CreateCompatibleBitmap(pDC->m_hDC, nWidth, nHeight));
}

// ---------------------------------------------------------------------------------------------------------
// CDC

CDC::~CDC()
{
    DeleteDC();
}

CDC* CDC::FromHandle(HDC hDC)
{
    if (hDC == nullptr)
    {
        return nullptr;
    }
    CHandleMaps& maps = AfxMaps();
    return maps.contexts.Find(hDC, maps.NextSerial(), [] { return std::make_unique<CDC>(); });
}

void CDC::DeleteTempMap()
{
    AfxMaps().DropSince(0);
}

BOOL CDC::Attach(HDC hDC)
{
    ASSERT(m_hDC == nullptr);
    if (hDC == nullptr)
    {
        return FALSE;
    }
    AfxMaps().contexts.SetPermanent(hDC, this);
    m_hDC = hDC;
    return TRUE;
}

HDC CDC::Detach()
{
    const HDC handle = m_hDC;
    if (handle != nullptr)
    {
        auto& map = AfxMaps().contexts;
        if (map.FindPermanent(handle) == this)
        {
            map.Remove(handle);
        }
        m_hDC = nullptr;
    }
    return handle;
}

BOOL CDC::DeleteDC()
{
    return m_hDC != nullptr && ::DeleteDC(Detach());
}

CWnd* CDC::GetWindow() const
{
    return CWnd::FromHandle(::WindowFromDC(m_hDC));
}

CGdiObject* CDC::SelectObject(CGdiObject* pObject)
{
    return CGdiObject::FromHandle(::SelectObject(m_hDC, pObject->m_hObject));
}

CPen* CDC::SelectObject(CPen* pPen)
{
    return CPen::FromHandle(static_cast<HPEN>(::SelectObject(m_hDC, pPen->m_hObject)));
}

CBrush* CDC::SelectObject(CBrush* pBrush)
{
    return CBrush::FromHandle(static_cast<HBRUSH>(::SelectObject(m_hDC, pBrush->m_hObject)));
}

CFont* CDC::SelectObject(CFont* pFont)
{
    return CFont::FromHandle(static_cast<HFONT>(::SelectObject(m_hDC, pFont->m_hObject)));
}

CBitmap* CDC::SelectObject(CBitmap* pBitmap)
{
    return CBitmap::FromHandle(static_cast<HBITMAP>(::SelectObject(m_hDC, pBitmap->m_hObject)));
}

CGdiObject* CDC::SelectStockObject(int nIndex)
{
    return CGdiObject::FromHandle(::SelectObject(m_hDC, ::GetStockObject(nIndex)));
}

CFont* CDC::GetCurrentFont() const
{
    return CFont::FromHandle(static_cast<HFONT>(::GetCurrentObject(m_hDC, OBJ_FONT)));
}

void CDC::Draw3dRect(LPCRECT lpRect, COLORREF clrTopLeft, COLORREF clrBottomRight)
{
    const CRect rect(*lpRect);
    FillSolidRect(rect.left, rect.top, rect.Width() - 1, 1, clrTopLeft);
    FillSolidRect(rect.left, rect.top, 1, rect.Height() - 1, clrTopLeft);
    FillSolidRect(rect.right - 1, rect.top, 1, rect.Height(), clrBottomRight);
    FillSolidRect(rect.left, rect.bottom - 1, rect.Width(), 1, clrBottomRight);
}

CPaintDC::CPaintDC(CWnd* pWnd) : m_ps{}, m_hWnd(pWnd->m_hWnd)
{
    if (!Attach(::BeginPaint(m_hWnd, &m_ps)))
    {
        AfxThrowResourceException();
    }
}

CPaintDC::~CPaintDC()
{
    Detach();
    ::EndPaint(m_hWnd, &m_ps);
}

CClientDC::CClientDC(CWnd* pWnd) : m_hWnd(pWnd != nullptr ? pWnd->m_hWnd : nullptr)
{
    if (!Attach(::GetDC(m_hWnd)))
    {
        AfxThrowResourceException();
    }
}

CClientDC::~CClientDC()
{
    ::ReleaseDC(m_hWnd, Detach());
}

CWindowDC::CWindowDC(CWnd* pWnd) : m_hWnd(pWnd != nullptr ? pWnd->m_hWnd : nullptr)
{
    if (!Attach(::GetWindowDC(m_hWnd)))
    {
        AfxThrowResourceException();
    }
}

CWindowDC::~CWindowDC()
{
    ::ReleaseDC(m_hWnd, Detach());
}

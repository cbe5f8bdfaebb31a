// GDI objects and device contexts.
#include "handlemap.h"

IMPLEMENT_DYNAMIC(CGdiObject, CObject)
IMPLEMENT_DYNAMIC(CFont, CGdiObject)
IMPLEMENT_DYNAMIC(CBitmap, CGdiObject)
IMPLEMENT_DYNAMIC(CDC, CObject)
IMPLEMENT_DYNAMIC(CPaintDC, CDC)
IMPLEMENT_DYNAMIC(CClientDC, CDC)

// ---------------------------------------------------------------------------------------------------------
// CGdiObject

namespace
{
// A temporary object of the class that belongs to the handle, so that CFont::FromHandle gives a CFont.
std::unique_ptr<CGdiObject> MakeGdiObject(HGDIOBJ handle)
{
    switch (::GetObjectType(handle))
    {
    case OBJ_FONT:
        return std::make_unique<CFont>();
    case OBJ_BITMAP:
        return std::make_unique<CBitmap>();
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

CFont* CDC::SelectObject(CFont* pFont)
{
    return CFont::FromHandle(static_cast<HFONT>(::SelectObject(m_hDC, pFont->m_hObject)));
}

CBitmap* CDC::SelectObject(CBitmap* pBitmap)
{
    return CBitmap::FromHandle(static_cast<HBITMAP>(::SelectObject(m_hDC, pBitmap->m_hObject)));
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

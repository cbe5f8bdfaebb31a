#include "controls/drawnimage.h"

#include "controls/buttondrawing.h"
#include "controls/controlsres.h"

#include <objidl.h>

#include <algorithm>
namespace Gdiplus
{
using std::max; // NOLINT(misc-unused-using-decls)
using std::min; // NOLINT(misc-unused-using-decls)
} // namespace Gdiplus
#include <gdiplus.h>

namespace
{

// Drawn this many times as large in each direction and then averaged: smooth edges wherever the drawing
// library runs, also where it draws none itself.
constexpr int fineness = 4;

/// Keeps the drawing library started.
class DrawingSession
{
public:
    DrawingSession()
    {
        const Gdiplus::GdiplusStartupInput input;
        if (Gdiplus::GdiplusStartup(&m_token, &input, nullptr) != Gdiplus::Ok)
            m_token = 0;
    }
    ~DrawingSession()
    {
        if (m_token != 0)
            Gdiplus::GdiplusShutdown(m_token);
    }
    DrawingSession(const DrawingSession&) = delete;
    DrawingSession& operator=(const DrawingSession&) = delete;

private:
    ULONG_PTR m_token = 0;
};

std::vector<ctl::Stroke> LoadDrawing(UINT nImage)
{
    HINSTANCE hInstance = AfxGetResourceHandle();
    HRSRC hResource = ::FindResource(hInstance, MAKEINTRESOURCE(nImage), IDR_IMAGE_TYPE);
    if (hResource == nullptr)
        return {};
    const auto* const pText = static_cast<const char*>(::LockResource(::LoadResource(hInstance, hResource)));
    return ctl::ParseDrawing({pText, ::SizeofResource(hInstance, hResource)})
        .value_or(std::vector<ctl::Stroke>());
}

Gdiplus::Color ColourOf(const ctl::Stroke& stroke, COLORREF crInk, COLORREF crBack)
{
    if (stroke.colour && crInk == CLR_NONE)
        return Gdiplus::Color(0xFF000000U | *stroke.colour);
    const COLORREF cr = stroke.colour ? crInk : crBack;
    return Gdiplus::Color(GetRValue(cr), GetGValue(cr), GetBValue(cr));
}

void DrawStroke(Gdiplus::Graphics& graphics, const ctl::Stroke& stroke, const Gdiplus::Color& colour)
{
    std::vector<Gdiplus::PointF> points;
    for (const ctl::Point& point : stroke.points)
        points.emplace_back(point.x, point.y);
    if (stroke.kind == ctl::Stroke::Kind::disc)
    {
        const Gdiplus::SolidBrush brush(colour);
        const float radius = stroke.width;
        graphics.FillEllipse(&brush, points[0].X - radius, points[0].Y - radius, 2 * radius, 2 * radius);
        return;
    }
    Gdiplus::Pen pen(colour, stroke.width);
    pen.SetLineCap(Gdiplus::LineCapRound, Gdiplus::LineCapRound, Gdiplus::DashCapRound);
    pen.SetLineJoin(Gdiplus::LineJoinRound);
    if (stroke.kind == ctl::Stroke::Kind::curve)
        graphics.DrawCurve(&pen, points.data(), static_cast<INT>(points.size()));
    else
        graphics.DrawLines(&pen, points.data(), static_cast<INT>(points.size()));
}

/// The pixel that a square of the fine drawing becomes, premultiplied as AlphaBlend takes it.
DWORD Average(const std::vector<DWORD>& fine, int nFineSize, int nLeft, int nTop)
{
    DWORD sums[4] = {};
    for (int y = nTop; y < nTop + fineness; ++y)
        for (int x = nLeft; x < nLeft + fineness; ++x)
            for (unsigned i = 0; i < 4; ++i)
                sums[i] += fine[static_cast<std::size_t>(y * nFineSize + x)] >> (8 * i) & 0xFF;
    DWORD pixel = 0;
    for (unsigned i = 0; i < 4; ++i)
        pixel |= sums[i] / (fineness * fineness) << (8 * i);
    return pixel;
}

} // namespace

CDrawnImage::~CDrawnImage()
{
    ::DeleteObject(m_hBitmap);
}

void CDrawnImage::Draw(HDC hDC, CPoint point, UINT nImage, int nSize, COLORREF crInk, COLORREF crBack)
{
    if (m_hBitmap == nullptr || nImage != m_nImage || nSize != m_nSize || crInk != m_crInk ||
        crBack != m_crBack)
        Make(nImage, nSize, crInk, crBack);
    if (m_hBitmap == nullptr)
        return;
    HDC hSource = ::CreateCompatibleDC(hDC);
    HGDIOBJ hPrevious = ::SelectObject(hSource, m_hBitmap);
    const BLENDFUNCTION blend = {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    ::AlphaBlend(hDC, point.x, point.y, nSize, nSize, hSource, 0, 0, nSize, nSize, blend);
    ::SelectObject(hSource, hPrevious);
    ::DeleteDC(hSource);
}

void CDrawnImage::Make(UINT nImage, int nSize, COLORREF crInk, COLORREF crBack)
{
    ::DeleteObject(m_hBitmap);
    BITMAPINFO format = {};
    format.bmiHeader = {sizeof(BITMAPINFOHEADER), nSize, -nSize, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* pBits = nullptr;
    m_hBitmap = ::CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &pBits, nullptr, 0);
    if (m_hBitmap == nullptr)
        return;
    m_nImage = nImage;
    m_nSize = nSize;
    m_crInk = crInk;
    m_crBack = crBack;

    const DrawingSession session;
    const int nFineSize = nSize * fineness;
    std::vector<DWORD> fine(static_cast<std::size_t>(nFineSize) * static_cast<std::size_t>(nFineSize));
    {
        Gdiplus::Bitmap picture(nFineSize, nFineSize, nFineSize * 4, PixelFormat32bppPARGB,
                                reinterpret_cast<BYTE*>(fine.data()));
        Gdiplus::Graphics graphics(&picture);
        const float scale = static_cast<float>(nFineSize) / ctl::drawingGrid;
        graphics.ScaleTransform(scale, scale);
        for (const ctl::Stroke& stroke : LoadDrawing(nImage))
            DrawStroke(graphics, stroke, ColourOf(stroke, crInk, crBack));
    }
    ::GdiFlush();
    auto* const pPixels = static_cast<DWORD*>(pBits);
    for (int y = 0; y < nSize; ++y)
        for (int x = 0; x < nSize; ++x)
            pPixels[y * nSize + x] = Average(fine, nFineSize, x * fineness, y * fineness);
}

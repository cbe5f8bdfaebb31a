#include "host/toolicons.h"

#include <objidl.h>

#include <algorithm>
namespace Gdiplus
{
using std::max; // NOLINT(misc-unused-using-decls): used by the header
using std::min; // NOLINT(misc-unused-using-decls)
} // namespace Gdiplus
#include <gdiplus.h>

#include <vector>

using Gdiplus::Color;
using Gdiplus::Graphics;
using Gdiplus::Pen;
using Gdiplus::PointF;
using Gdiplus::RectF;
using Gdiplus::SolidBrush;

namespace
{

constexpr float kGrid = 16; // the pictures are drawn on 16 x 16 units

const Color kBlue(0xFF2F6DA8);
const Color kGreen(0xFF3B9A4B);
const Color kRed(0xFFC0392B);
const Color kAmber(0xFFD69A2D);
const Color kGrey(0xFF5F6B76);

class Painter
{
public:
    explicit Painter(Graphics& graphics) : m_graphics(graphics)
    {
    }

    void Draw(hostIcon icon)
    {
        switch (icon)
        {
        case hostIcon::none:
            break;
        case hostIcon::newPatient:
            DrawPerson();
            DrawPlus();
            break;
        case hostIcon::newFromStudy:
            DrawPerson();
            DrawArrow(kGreen, true);
            break;
        case hostIcon::changePatient:
            DrawPerson();
            DrawPencil();
            break;
        case hostIcon::renamePatient:
            Frame(kBlue, 1, 4, 14, 8);
            Line(kBlue, 1.2f, {PointF(4, 6), PointF(4, 10)});
            Line(kGrey, 1.2f, {PointF(6, 8), PointF(12, 8)});
            break;
        case hostIcon::deletePatient:
            DrawPerson();
            Line(kRed, 1.8f, {PointF(9.5f, 9.5f), PointF(14.5f, 14.5f)});
            Line(kRed, 1.8f, {PointF(14.5f, 9.5f), PointF(9.5f, 14.5f)});
            break;
        case hostIcon::newTimepoint:
            Frame(kBlue, 1.5f, 3, 11, 11);
            Fill(kBlue, 1.5f, 3, 11, 3);
            DrawPlus();
            break;
        case hostIcon::saveArchive:
            DrawBox();
            DrawArrow(kBlue, true);
            break;
        case hostIcon::loadArchive:
            DrawBox();
            DrawArrow(kGreen, false);
            break;
        case hostIcon::keywords:
            Polygon(kAmber, {PointF(1, 3), PointF(8, 3), PointF(14.5f, 9.5f), PointF(9, 15), PointF(1, 8.5f)});
            Dot(Color(0xFFFFFFFF), 3, 5, 2.5f);
            break;
        case hostIcon::auditLog:
            Frame(kGrey, 2.5f, 1.5f, 11, 13);
            for (const float y : {5.0f, 8.0f, 11.0f})
            {
                Line(kBlue, 1.2f, {PointF(5, y), PointF(11, y)});
            }
            break;
        }
    }

private:
    void Fill(const Color& color, float x, float y, float width, float height)
    {
        const SolidBrush brush(color);
        m_graphics.FillRectangle(&brush, x, y, width, height);
    }

    void Frame(const Color& color, float x, float y, float width, float height)
    {
        Fill(Color(0xFFFFFFFF), x, y, width, height);
        const Pen pen(color, 1.2f);
        m_graphics.DrawRectangle(&pen, x, y, width, height);
    }

    void Dot(const Color& color, float x, float y, float size)
    {
        const SolidBrush brush(color);
        m_graphics.FillEllipse(&brush, x, y, size, size);
    }

    void Line(const Color& color, float width, const std::vector<PointF>& points)
    {
        const Pen pen(color, width);
        m_graphics.DrawLines(&pen, points.data(), static_cast<INT>(points.size()));
    }

    void Polygon(const Color& color, const std::vector<PointF>& points)
    {
        const SolidBrush brush(color);
        m_graphics.FillPolygon(&brush, points.data(), static_cast<INT>(points.size()));
    }

    void DrawPerson()
    {
        Dot(kBlue, 3.5f, 0.8f, 6);
        const SolidBrush brush(kBlue);
        m_graphics.FillPie(&brush, 0.5f, 7.6f, 12.0f, 15.0f, 180.0f, 180.0f);
    }

    void DrawPlus()
    {
        Dot(kGreen, 8.5f, 8.5f, 7.2f);
        Line(Color(0xFFFFFFFF), 1.4f, {PointF(12.1f, 10), PointF(12.1f, 14.2f)});
        Line(Color(0xFFFFFFFF), 1.4f, {PointF(10, 12.1f), PointF(14.2f, 12.1f)});
    }

    void DrawPencil()
    {
        Line(kAmber, 2.6f, {PointF(14, 6.5f), PointF(9.2f, 12.6f)});
        Polygon(kGrey, {PointF(8.3f, 11.6f), PointF(10.3f, 13.4f), PointF(7.6f, 15)});
    }

    void DrawBox()
    {
        Polygon(kAmber, {PointF(1, 7), PointF(15, 7), PointF(15, 15), PointF(1, 15)});
        Fill(Color(0xFFB07C1C), 1, 7, 14, 2);
    }

    void DrawArrow(const Color& color, bool down)
    {
        if (down)
        {
            Line(color, 2.4f, {PointF(11, 2), PointF(11, 8)});
            Polygon(color, {PointF(7.6f, 7.2f), PointF(14.4f, 7.2f), PointF(11, 11.6f)});
        }
        else
        {
            Line(color, 2.4f, {PointF(8, 4), PointF(8, 11)});
            Polygon(color, {PointF(4.6f, 5), PointF(11.4f, 5), PointF(8, 0.6f)});
        }
    }

    Graphics& m_graphics;
};

} // namespace

HIMAGELIST hostMakeToolIcons(int size)
{
    constexpr int kCount = static_cast<int>(hostIcon::auditLog);
    const HIMAGELIST list = ::ImageList_Create(size, size, ILC_COLOR32, kCount, 0);
    for (int index = 1; index <= kCount; ++index)
    {
        Gdiplus::Bitmap picture(size, size, PixelFormat32bppPARGB);
        {
            Graphics graphics(&picture);
            graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
            graphics.ScaleTransform(static_cast<float>(size) / kGrid, static_cast<float>(size) / kGrid);
            Painter(graphics).Draw(static_cast<hostIcon>(index));
        }
        HBITMAP bitmap = nullptr;
        picture.GetHBITMAP(Color(0, 0, 0, 0), &bitmap);
        ::ImageList_Add(list, bitmap, nullptr);
        ::DeleteObject(bitmap);
    }
    return list;
}

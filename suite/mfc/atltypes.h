// CSize, CPoint and CRect: the Windows structures with arithmetic. Values; no thread, no ownership.
#pragma once

#include "suite/mfc/afx.h"

class CRect;

// An extent, in the units of its user (pixels or dialog units).
class CSize : public SIZE
{
public:
    CSize() : SIZE{0, 0}
    {
    }
    CSize(int initCX, int initCY) : SIZE{initCX, initCY}
    {
    }
    CSize(const SIZE& initSize) : SIZE(initSize)
    {
    }

    BOOL operator==(const SIZE& size) const
    {
        return cx == size.cx && cy == size.cy;
    }
    BOOL operator!=(const SIZE& size) const
    {
        return !(*this == size);
    }
    CSize operator+(const SIZE& size) const
    {
        return {cx + size.cx, cy + size.cy};
    }
    CSize operator-(const SIZE& size) const
    {
        return {cx - size.cx, cy - size.cy};
    }
};

class CPoint : public POINT
{
public:
    CPoint() : POINT{0, 0}
    {
    }
    CPoint(int initX, int initY) : POINT{initX, initY}
    {
    }
    CPoint(const POINT& initPt) : POINT(initPt)
    {
    }
    // From the packed form that mouse messages carry; coordinates are signed.
    explicit CPoint(LPARAM dwPoint)
        : POINT{static_cast<short>(LOWORD(dwPoint)), static_cast<short>(HIWORD(dwPoint))}
    {
    }

    BOOL operator==(const POINT& point) const
    {
        // The analyser does not follow a base that is initialised as an aggregate.
        // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
        return x == point.x && y == point.y;
    }
    BOOL operator!=(const POINT& point) const
    {
        return !(*this == point);
    }
    CPoint operator+(const SIZE& size) const
    {
        return {x + size.cx, y + size.cy};
    }
    CPoint operator-(const SIZE& size) const
    {
        return {x - size.cx, y - size.cy};
    }
    CSize operator-(const POINT& point) const
    {
        return {x - point.x, y - point.y};
    }
};

class CRect : public RECT
{
public:
    CRect() : RECT{0, 0, 0, 0}
    {
    }
    CRect(int l, int t, int r, int b) : RECT{l, t, r, b}
    {
    }
    CRect(const RECT& srcRect) : RECT(srcRect)
    {
    }
    explicit CRect(LPCRECT lpSrcRect) : RECT(*lpSrcRect)
    {
    }
    CRect(const POINT& point, const SIZE& size) : RECT{point.x, point.y, point.x + size.cx, point.y + size.cy}
    {
    }
    CRect(const POINT& topLeft, const POINT& bottomRight)
        : RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y}
    {
    }

    int Width() const
    {
        return right - left;
    }
    int Height() const
    {
        return bottom - top;
    }
    CSize Size() const
    {
        return {Width(), Height()};
    }
    CPoint TopLeft() const
    {
        return {left, top};
    }
    operator LPRECT()
    {
        return this;
    }
    operator LPCRECT() const
    {
        return this;
    }

    BOOL PtInRect(POINT point) const
    {
        return ::PtInRect(this, point);
    }
    void InflateRect(int x, int y)
    {
        ::InflateRect(this, x, y);
    }
    void InflateRect(int l, int t, int r, int b)
    {
        left -= l;
        top -= t;
        right += r;
        bottom += b;
    }
    void DeflateRect(int x, int y)
    {
        ::InflateRect(this, -x, -y);
    }
    void DeflateRect(int l, int t, int r, int b)
    {
        InflateRect(-l, -t, -r, -b);
    }
    void OffsetRect(int x, int y)
    {
        ::OffsetRect(this, x, y);
    }
    BOOL operator==(const RECT& rect) const
    {
        return ::EqualRect(this, &rect);
    }
    BOOL operator!=(const RECT& rect) const
    {
        return !(*this == rect);
    }
    CRect operator&(const RECT& rect) const
    {
        CRect result;
        ::IntersectRect(&result, this, &rect);
        return result;
    }
    CRect operator|(const RECT& rect) const
    {
        CRect result;
        ::UnionRect(&result, this, &rect);
        return result;
    }
    CRect operator+(const POINT& point) const
    {
        CRect result(*this);
        result.OffsetRect(point.x, point.y);
        return result;
    }
    CRect operator-(const POINT& point) const
    {
        return *this + CPoint(-point.x, -point.y);
    }
};

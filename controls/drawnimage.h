#pragma once

#include <afxwin.h>

/// An image resource of the module at one size and in certain colours, ready to be laid over a background.
/// Owns its bitmap. User interface thread.
class CDrawnImage
{
public:
    CDrawnImage() = default;
    ~CDrawnImage();
    CDrawnImage(const CDrawnImage&) = delete;
    CDrawnImage& operator=(const CDrawnImage&) = delete;

    /// Lays the image (resource type VELIMAGE) into a square of nSize pixels. crInk replaces the image's own
    /// colours unless it is CLR_NONE; crBack stands where the drawing lets the background through. Nothing is
    /// drawn when there is no such image.
    void Draw(HDC hDC, CPoint point, UINT nImage, int nSize, COLORREF crInk, COLORREF crBack);

private:
    void Make(UINT nImage, int nSize, COLORREF crInk, COLORREF crBack);

    // What the bitmap shows.
    UINT m_nImage = 0;
    int m_nSize = 0;
    COLORREF m_crInk = CLR_NONE;
    COLORREF m_crBack = CLR_NONE;
    HBITMAP m_hBitmap = nullptr;
};

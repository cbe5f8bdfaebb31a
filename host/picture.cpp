#include "host/picture.h"

#include <objidl.h>

#include <algorithm>
// GDI+ of the mingw headers counts on min and max.
namespace Gdiplus
{
using std::max; // NOLINT(misc-unused-using-decls): used by the header
using std::min; // NOLINT(misc-unused-using-decls)
} // namespace Gdiplus
#include <gdiplus.h>

#include <cmath>
#include <vector>

using Gdiplus::ARGB;
using Gdiplus::Bitmap;
using Gdiplus::Color;
using Gdiplus::Graphics;
using Gdiplus::Pen;
using Gdiplus::PointF;
using Gdiplus::REAL;
using Gdiplus::SolidBrush;

namespace
{

constexpr UINT kSampleWidth = 160;
constexpr UINT kSampleHeight = 120;
constexpr double kMostPixels = 100e6;

std::wstring ToWide(const std::string& text)
{
    const int length = ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(), length);
    return wide;
}

bool FindEncoder(const wchar_t* mimeType, CLSID& id)
{
    UINT count = 0;
    UINT bytes = 0;
    if (Gdiplus::GetImageEncodersSize(&count, &bytes) != Gdiplus::Ok || bytes == 0)
    {
        return false;
    }
    std::vector<std::byte> storage(bytes);
    auto* encoders = reinterpret_cast<Gdiplus::ImageCodecInfo*>(storage.data());
    if (Gdiplus::GetImageEncoders(count, bytes, encoders) != Gdiplus::Ok)
    {
        return false;
    }
    const auto* found = std::find_if(encoders, encoders + count, [&](const Gdiplus::ImageCodecInfo& encoder)
                                     { return std::wstring_view(encoder.MimeType) == mimeType; });
    if (found == encoders + count)
    {
        return false;
    }
    id = found->Clsid;
    return true;
}

bool Save(Bitmap& bitmap, const std::string& path, const wchar_t* mimeType)
{
    CLSID encoder;
    return FindEncoder(mimeType, encoder) && bitmap.Save(ToWide(path).c_str(), &encoder, nullptr) == Gdiplus::Ok;
}

Color FromColorRef(COLORREF color)
{
    return Color(GetRValue(color), GetGValue(color), GetBValue(color));
}

// Draws one sample. Coordinates are the picture's own pixels.
class Painter
{
public:
    Painter(Graphics& graphics, std::uint32_t seed) : m_graphics(graphics), m_state(seed * 2654435761u + 1)
    {
        m_graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    }

    void Draw(picSubject subject)
    {
        switch (subject)
        {
        case picSubject::profile:
            DrawProfile(false);
            break;
        case picSubject::frontal:
            DrawFace(false);
            break;
        case picSubject::smile:
            DrawFace(true);
            break;
        case picSubject::teeth:
            DrawTeeth();
            break;
        case picSubject::cephalogram:
            DrawProfile(true);
            break;
        case picSubject::panoramic:
            DrawPanoramic();
            break;
        }
    }

private:
    REAL Vary(int low, int high)
    {
        m_state = m_state * 1664525u + 1013904223u;
        return static_cast<REAL>(low + static_cast<int>((m_state >> 16) % static_cast<unsigned>(high - low + 1)));
    }

    Color Pick(std::initializer_list<ARGB> colors)
    {
        return Color(colors.begin()[static_cast<std::size_t>(Vary(0, static_cast<int>(colors.size()) - 1))]);
    }

    void Fill(const Color& color)
    {
        m_graphics.Clear(color);
    }

    void Ellipse(const Color& color, REAL x, REAL y, REAL width, REAL height)
    {
        const SolidBrush brush(color);
        m_graphics.FillEllipse(&brush, x, y, width, height);
    }

    void Curve(const Color& color, const std::vector<PointF>& points)
    {
        const SolidBrush brush(color);
        m_graphics.FillClosedCurve(&brush, points.data(), static_cast<INT>(points.size()));
    }

    Color PickSkin()
    {
        return Pick({0xFFF3D2B8, 0xFFE8B995, 0xFFC98F66, 0xFF9A6543, 0xFF6E4730});
    }

    Color PickHair()
    {
        return Pick({0xFF2B211B, 0xFF5A3A22, 0xFF8A5A2B, 0xFFC79B4E, 0xFF8E3B1F});
    }

    // An outline of nobody, seen from the right; in grey as an X-ray shows it.
    void DrawProfile(bool xray)
    {
        const Color skin = xray ? Color(0xFF6E767C) : PickSkin();
        const Color hair = xray ? Color(0xFF9AA2A8) : PickHair();
        Fill(xray ? Color(0xFF101417) : Color(0xFFDCE6EE));
        const REAL nose = Vary(0, 6);
        const REAL chin = Vary(-4, 4);
        Ellipse(hair, 38, 8, 74, 72);
        Curve(skin, {PointF(100, 26), PointF(106, 44), PointF(114 + nose, 58), PointF(106, 64), PointF(109, 72),
                     PointF(106, 80), PointF(104 + chin, 94), PointF(84, 98), PointF(80, 120), PointF(48, 122),
                     PointF(54, 84), PointF(62, 40)});
        if (xray)
        {
            Ellipse(Color(0xFFB9C1C6), 46, 14, 60, 54);
            Ellipse(Color(0xFF535B61), 54, 22, 46, 40);
            for (int tooth = 0; tooth < 4; ++tooth)
            {
                const REAL x = static_cast<REAL>(80 + tooth * 6);
                Ellipse(Color(0xFFE9EEF0), x, 66, 5, 9);
                Ellipse(Color(0xFFE9EEF0), x, 76, 5, 9);
            }
            const Pen line(Color(0xFF40C0FF), 1);
            m_graphics.DrawLine(&line, PointF(58, 44), PointF(104, 46));
            m_graphics.DrawLine(&line, PointF(60, 84), PointF(104, 92));
        }
        else
        {
            Ellipse(Color(0xFF33281F), 94, 46, 5, 4);
            Ellipse(skin, 64, 46, 12, 18);
        }
    }

    void DrawFace(bool smiling)
    {
        const Color skin = PickSkin();
        const Color hair = PickHair();
        Fill(Color(0xFFDCE6EE));
        const REAL width = Vary(62, 72);
        const REAL left = 80 - width / 2;
        Ellipse(hair, left - 6, 4, width + 12, 76);
        Ellipse(Color(0xFF5C7FA3), 30, 104, 100, 60);
        Ellipse(skin, 68, 84, 24, 34);
        Ellipse(skin, left, 14, width, 92);
        Ellipse(hair, left + 2, 6, width - 4, 28);
        Ellipse(skin, left + 6, 22, width - 12, 40);
        for (const REAL x : {64.0f, 88.0f})
        {
            Ellipse(Color(0xFFFFFFFF), x, 50, 10, 6);
            Ellipse(Color(0xFF33281F), x + 3, 50, 5, 6);
        }
        const Pen shade(Color(0x60000000), 1.5f);
        m_graphics.DrawLine(&shade, PointF(80, 56), PointF(77, 70));
        if (smiling)
        {
            Ellipse(Color(0xFFB3474A), 64, 76, 32, 16);
            Ellipse(Color(0xFFFDFBF4), 67, 78, 26, 9);
        }
        else
        {
            const Pen lips(Color(0xFFB3474A), 3);
            m_graphics.DrawLine(&lips, PointF(71, 84), PointF(89, 84));
        }
    }

    // Both arches from the front, a brace on them in half of the pictures.
    void DrawTeeth()
    {
        Fill(Color(0xFFB9555A));
        Ellipse(Color(0xFFD9868A), -20, 0, 200, 58);
        Ellipse(Color(0xFFD9868A), -20, 66, 200, 58);
        const bool brace = Vary(0, 1) > 0;
        for (int row = 0; row < 2; ++row)
        {
            std::vector<PointF> wire;
            for (int tooth = 0; tooth < 8; ++tooth)
            {
                const REAL bend = std::abs(static_cast<REAL>(tooth) - 3.5f);
                const REAL x = static_cast<REAL>(13 + tooth * 17) + Vary(-1, 1);
                const REAL y = (row == 0 ? 26.0f - bend * 2 : 61.0f + bend * 2) + Vary(-1, 1);
                Ellipse(Color(0xFFFBF7EA), x, y, 16, 34 - bend * 2);
                wire.emplace_back(x + 8, y + 16 - bend);
            }
            if (brace)
            {
                const Pen metal(Color(0xFF7D858B), 1.5f);
                m_graphics.DrawLines(&metal, wire.data(), static_cast<INT>(wire.size()));
                const SolidBrush bracket(Color(0xFF9FA7AD));
                for (const PointF& point : wire)
                {
                    m_graphics.FillRectangle(&bracket, point.X - 3, point.Y - 3, 6.0f, 6.0f);
                }
            }
        }
    }

    void DrawPanoramic()
    {
        Fill(Color(0xFF0D1114));
        Ellipse(Color(0xFF3C444A), 4, 20, 152, 96);
        Ellipse(Color(0xFF161B1F), 30, 8, 100, 46);
        for (int row = 0; row < 2; ++row)
        {
            for (int tooth = 0; tooth < 14; ++tooth)
            {
                const REAL offset = static_cast<REAL>(tooth) - 6.5f;
                const REAL x = 76 + offset * 9.2f;
                const REAL y = 60 - offset * offset * 0.45f + (row == 0 ? -12.0f : 10.0f);
                Ellipse(Color(0xFFC9D0D4), x, y, 8, 20 + Vary(-2, 2));
                Ellipse(Color(0xFF8A9399), x + 3, y + (row == 0 ? 2.0f : 6.0f), 2, 11);
            }
        }
    }

    Graphics& m_graphics;
    std::uint32_t m_state;
};

} // namespace

picCSession::picCSession()
{
    const Gdiplus::GdiplusStartupInput input;
    if (Gdiplus::GdiplusStartup(&m_token, &input, nullptr) != Gdiplus::Ok)
    {
        m_token = 0;
    }
}

picCSession::~picCSession()
{
    if (m_token != 0)
    {
        Gdiplus::GdiplusShutdown(m_token);
    }
}

picBitmap picLoadThumbnail(const std::string& path, int width, int height, COLORREF background)
{
    Bitmap image(ToWide(path).c_str());
    const double imageWidth = image.GetWidth();
    const double imageHeight = image.GetHeight();
    if (image.GetLastStatus() != Gdiplus::Ok || imageWidth < 1 || imageHeight < 1 ||
        imageWidth * imageHeight > kMostPixels)
    {
        return {};
    }
    const double scale = std::min(width / imageWidth, height / imageHeight);
    const INT shownWidth = std::max(1, static_cast<INT>(std::lround(imageWidth * scale)));
    const INT shownHeight = std::max(1, static_cast<INT>(std::lround(imageHeight * scale)));

    Bitmap thumbnail(width, height, PixelFormat24bppRGB);
    Graphics graphics(&thumbnail);
    graphics.Clear(FromColorRef(background));
    graphics.SetInterpolationMode(Gdiplus::InterpolationModeHighQualityBilinear);
    if (graphics.DrawImage(&image, (width - shownWidth) / 2, (height - shownHeight) / 2, shownWidth, shownHeight) !=
        Gdiplus::Ok)
    {
        return {};
    }
    HBITMAP bitmap = nullptr;
    return picBitmap(thumbnail.GetHBITMAP(FromColorRef(background), &bitmap) == Gdiplus::Ok ? bitmap : nullptr);
}

bool picWriteSample(const std::string& path, picSubject subject, std::uint32_t seed, const std::string& label,
                    bool jpeg)
{
    Bitmap image(kSampleWidth, kSampleHeight, PixelFormat24bppRGB);
    Graphics graphics(&image);
    Painter(graphics, seed).Draw(subject);
    const Gdiplus::Font font(L"Tahoma", 7);
    const SolidBrush ink(Color(subject == picSubject::cephalogram || subject == picSubject::panoramic ? 0xFFC8D0D4
                                                                                                      : 0xFF1E2428));
    graphics.DrawString(ToWide(label).c_str(), -1, &font, PointF(2, kSampleHeight - 14.0f), &ink);
    return Save(image, path, jpeg ? L"image/jpeg" : L"image/bmp");
}

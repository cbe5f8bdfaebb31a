// Pictures through GDI+: thumbnails of image files, and the drawn images of the sample practice.
#pragma once

#include <afxwin.h>

#include <cstdint>
#include <memory>
#include <string>

/// Keeps GDI+ started; every other call here needs one alive. Main thread; not copied.
class picCSession
{
public:
    picCSession();
    ~picCSession();
    picCSession(const picCSession&) = delete;
    picCSession& operator=(const picCSession&) = delete;

    bool IsStarted() const
    {
        return m_token != 0;
    }

private:
    ULONG_PTR m_token = 0;
};

struct picBitmapDeleter
{
    using pointer = HBITMAP;
    void operator()(HBITMAP bitmap) const
    {
        ::DeleteObject(bitmap);
    }
};

/// A bitmap that its holder owns.
using picBitmap = std::unique_ptr<HBITMAP, picBitmapDeleter>;

/// The image file, whatever its name, shrunk to fit into width x height pixels and centred on the background.
/// Null when the file is missing or no image that GDI+ knows, or when it has more than 100 million pixels.
picBitmap picLoadThumbnail(const std::string& path, int width, int height, COLORREF background);

/// What a drawn image shows.
enum class picSubject
{
    profile,
    frontal,
    smile,
    teeth,
    cephalogram,
    panoramic,
};

/// Draws an invented image, the same for the same seed, and writes it as a JPEG or BMP file.
/// The label stands in its lower left corner. False when the file cannot be written.
bool picWriteSample(const std::string& path, picSubject subject, std::uint32_t seed, const std::string& label,
                    bool jpeg);

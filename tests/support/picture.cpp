#include "tests/support/picture.h"

#include <array>
#include <cstdlib>
#include <filesystem>

// The library's headers need the names that NOMINMAX takes away, and COM's property types.
#include <objidl.h>
#include <algorithm>
namespace Gdiplus
{
using std::max; // NOLINT(misc-unused-using-decls)
using std::min; // NOLINT(misc-unused-using-decls)
} // namespace Gdiplus
#include <gdiplus.h>

namespace veltest
{

namespace
{

bool WritePng(HBITMAP bitmap, const std::filesystem::path& file)
{
    // The encoder of PNG files has this fixed class id.
    const CLSID encoder = {0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
    ULONG_PTR library = 0;
    const Gdiplus::GdiplusStartupInput input;
    if (Gdiplus::GdiplusStartup(&library, &input, nullptr) != Gdiplus::Ok)
        return false;
    const auto saved = Gdiplus::Bitmap(bitmap, nullptr).Save(file.wstring().c_str(), &encoder, nullptr);
    Gdiplus::GdiplusShutdown(library);
    return saved == Gdiplus::Ok;
}

// The variable VELTEST_PICTURES, else "pictures" beside the folder of the test program.
std::filesystem::path PictureFolder()
{
    if (const char* const folder = std::getenv("VELTEST_PICTURES"))
        return folder;
    std::array<char, MAX_PATH> program = {};
    GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
    return std::filesystem::path(program.data()).parent_path().parent_path() / "pictures";
}

} // namespace

bool SavePicture(HWND window, const std::string& name)
{
    RECT place = {};
    if (!GetWindowRect(window, &place) || place.right <= place.left || place.bottom <= place.top)
        return false;
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW);
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    const HDC source = GetWindowDC(window);
    const HDC copy = CreateCompatibleDC(source);
    BITMAPINFO format = {};
    format.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(source, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ previous = SelectObject(copy, bitmap);
    const bool copied = BitBlt(copy, 0, 0, width, height, source, 0, 0, SRCCOPY) != FALSE;
    SelectObject(copy, previous);
    DeleteDC(copy);
    ReleaseDC(window, source);

    std::error_code error;
    const std::filesystem::path folder = PictureFolder();
    std::filesystem::create_directories(folder, error);
    // Another run of the program may be writing the same picture.
    const std::filesystem::path draft = folder / (name + "." + std::to_string(GetCurrentProcessId()));
    bool written = copied && bitmap != nullptr && WritePng(bitmap, draft);
    if (written)
    {
        std::filesystem::rename(draft, folder / (name + ".png"), error);
        written = !error;
    }
    DeleteObject(bitmap);
    return written;
}

int SavePagePictures(DialogScript& script, const Dialog& sheet, const std::string& name)
{
    const int selected = sheet.PageIndex();
    int written = 0;
    for (int page = 0; page < sheet.PageCount(); ++page)
    {
        sheet.SelectPage(page);
        if (sheet.PageIndex() != page)
            break;
        script.SettleIdle(sheet.Handle());
        written += SavePicture(sheet.Handle(), name + "-" + std::to_string(page + 1)) ? 1 : 0;
    }
    sheet.SelectPage(selected);
    return written;
}

} // namespace veltest

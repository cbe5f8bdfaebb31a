#include "host/imagelist.h"

#include "host/columns.h"
#include "host/hostres.h"
#include "suite/util/velpath.h"

#include <algorithm>

namespace
{

constexpr int kThumbnailWidth = 112;
constexpr int kThumbnailHeight = 84;

// Images of ".I40" may be stored under ".C01" instead.
CString FindImageFile(const CString& name)
{
    CString path = velGetDataPath() + name;
    if (velFileExists(path))
    {
        return path;
    }
    if (path.Right(4).CompareNoCase(".I40") == 0)
    {
        path = path.Left(path.GetLength() - 4) + ".C01";
        return velFileExists(path) ? path : CString();
    }
    return {};
}

} // namespace

BEGIN_MESSAGE_MAP(hostCImageList, CListCtrl)
    ON_WM_PAINT()
END_MESSAGE_MAP()

hostCImageList::~hostCImageList()
{
    // The window's own list is shared with it (LVS_SHAREIMAGELISTS).
    if (m_thumbnails != nullptr)
    {
        ::ImageList_Destroy(m_thumbnails);
    }
}

BOOL hostCImageList::CreateIn(CWnd* parent, UINT id)
{
    const DWORD style =
        WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP | LVS_ICON | LVS_AUTOARRANGE | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS;
    if (!CListCtrl::Create(style, CRect(0, 0, 0, 0), parent, id))
    {
        return FALSE;
    }
    SetExtendedStyle(LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
    m_thumbnails =
        ::ImageList_Create(hostScale(kThumbnailWidth), hostScale(kThumbnailHeight), ILC_COLOR32, 1, 16);
    ListView_SetImageList(m_hWnd, m_thumbnails, LVSIL_NORMAL);
    ListView_SetIconSpacing(m_hWnd, hostScale(kThumbnailWidth + 16), hostScale(kThumbnailHeight + 40));
    MakePlaceholder();
    return TRUE;
}

void hostCImageList::SetBackground(COLORREF color)
{
    m_background = color;
    SetBkColor(color);
    SetTextBkColor(color);
    const int brightness = GetRValue(color) * 3 + GetGValue(color) * 6 + GetBValue(color);
    SetTextColor(brightness < 1280 ? RGB(255, 255, 255) : RGB(0, 0, 0));
    MakePlaceholder();
}

// Image 0: an empty frame.
void hostCImageList::MakePlaceholder()
{
    const int width = hostScale(kThumbnailWidth);
    const int height = hostScale(kThumbnailHeight);
    const HDC screen = ::GetDC(nullptr);
    const HDC dc = ::CreateCompatibleDC(screen);
    const picBitmap bitmap(::CreateCompatibleBitmap(screen, width, height));
    const HGDIOBJ previous = ::SelectObject(dc, bitmap.get());
    RECT frame = {0, 0, width, height};
    const HBRUSH background = ::CreateSolidBrush(m_background);
    ::FillRect(dc, &frame, background);
    ::FrameRect(dc, &frame, ::GetSysColorBrush(COLOR_BTNSHADOW));
    ::DeleteObject(background);
    ::SelectObject(dc, previous);
    ::DeleteDC(dc);
    ::ReleaseDC(nullptr, screen);
    ::ImageList_RemoveAll(m_thumbnails);
    ::ImageList_Add(m_thumbnails, bitmap.get(), nullptr);
}

void hostCImageList::SetEmptyText(LPCTSTR text, GRAYSTRINGPROC draw)
{
    m_emptyText = text;
    m_drawEmpty = draw;
    Invalidate();
}

void hostCImageList::OnPaint()
{
    Default();
    if (!m_files.empty() || m_drawEmpty == nullptr)
    {
        return;
    }
    const HDC dc = ::GetDC(m_hWnd);
    const HGDIOBJ font = ::SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessage(WM_GETFONT)));
    SIZE extent = {};
    ::GetTextExtentPoint32(dc, m_emptyText, m_emptyText.GetLength(), &extent);
    CRect client;
    GetClientRect(&client);
    ::SetBkMode(dc, TRANSPARENT);
    ::SetTextColor(dc, ::GetSysColor(COLOR_GRAYTEXT));
    ::SetViewportOrgEx(dc, std::max(0, (client.Width() - static_cast<int>(extent.cx)) / 2), hostScale(24), nullptr);
    m_drawEmpty(dc, reinterpret_cast<LPARAM>(m_emptyText.GetString()), m_emptyText.GetLength());
    ::SelectObject(dc, font);
    ::ReleaseDC(m_hWnd, dc);
}

void hostCImageList::Clear()
{
    DeleteAllItems();
    m_files.clear();
    m_next = 0;
    Invalidate();
    ::ImageList_SetImageCount(m_thumbnails, 1);
}

void hostCImageList::Show(const patCTimepoint& timepoint)
{
    Clear();
    for (int group = 0; group < patCImageTypes::GROUP_COUNT; ++group)
    {
        for (int type = 0; type < patCImageTypes::GetTypeCount(group); ++type)
        {
            if (timepoint.HasImage(group, type))
            {
                const CString file = FindImageFile(timepoint.GetImageFilename(group, type));
                CString label(patCImageTypes::GetType(group, type).pszTitle);
                if (file.IsEmpty())
                {
                    label = hostText(IDS_FILE_MISSING) + label;
                }
                InsertItem(static_cast<int>(m_files.size()), label, 0);
                m_files.push_back(file);
            }
        }
    }
}

BOOL hostCImageList::LoadMore()
{
    if (m_next < m_files.size())
    {
        const int item = static_cast<int>(m_next++);
        const CString& file = m_files[static_cast<std::size_t>(item)];
        const picBitmap thumbnail =
            file.IsEmpty() ? nullptr
                           : picLoadThumbnail(file.GetString(), hostScale(kThumbnailWidth), hostScale(kThumbnailHeight),
                                              m_background);
        if (thumbnail)
        {
            LVITEM update = {};
            update.mask = LVIF_IMAGE;
            update.iItem = item;
            update.iImage = ::ImageList_Add(m_thumbnails, thumbnail.get(), nullptr);
            SetItem(&update);
        }
    }
    return m_next < m_files.size();
}

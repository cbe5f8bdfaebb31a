#include "host/columns.h"

#include <uxtheme.h>

int hostScale(int length)
{
    static const int dpi = []
    {
        const HDC screen = ::GetDC(nullptr);
        const int value = ::GetDeviceCaps(screen, LOGPIXELSY);
        ::ReleaseDC(nullptr, screen);
        return value;
    }();
    return ::MulDiv(length, dpi, 96);
}

CString hostText(UINT id)
{
    CString text;
    text.LoadString(id);
    return text;
}

void hostPrepareList(CListCtrl& list, std::span<const hostSColumn> columns)
{
    ::SetWindowTheme(list.m_hWnd, L"Explorer", nullptr);
    list.SetExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
    int index = 0;
    for (const hostSColumn& column : columns)
    {
        list.InsertColumn(index++, hostText(column.titleId), column.format, hostScale(column.width));
    }
}

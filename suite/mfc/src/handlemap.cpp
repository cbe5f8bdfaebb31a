#include "handlemap.h"

void CHandleMaps::DropSince(unsigned long long mark)
{
    if (mark == m_serial)
    {
        return;
    }
    windows.DropSince(mark);
    menus.DropSince(mark);
    contexts.DropSince(mark);
    gdi.DropSince(mark);
}

CHandleMaps& AfxMaps()
{
    return *AfxGetModuleThreadState()->m_maps;
}

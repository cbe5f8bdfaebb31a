// The images of a timepoint in the main window.
#pragma once

#include "host/picture.h"
#include "suite/patients/store/patdefs.h"
#include "suite/patients/records/pattimepoint.h"

#include <afxcmn.h>

#include <vector>

/// A list view with a thumbnail for every image of a timepoint. The names come up at once, the thumbnails one by one
/// while the program is idle. An image whose file is missing keeps the empty frame and says so.
class hostCImageList : public CListCtrl
{
public:
    ~hostCImageList() override;

    BOOL CreateIn(CWnd* parent, UINT id);
    void Show(const patCTimepoint& timepoint);
    void Clear();

    /// Reads one more thumbnail. TRUE while there are any left.
    BOOL LoadMore();

    /// The colour behind the images, from the shared settings.
    void SetBackground(COLORREF color);

    /// What stands in the list while it is empty, drawn by an output procedure at the origin; null draws nothing. The
    /// procedure must stay loaded until another one is set.
    void SetEmptyText(LPCTSTR text, GRAYSTRINGPROC draw);

protected:
    afx_msg void OnPaint();
    DECLARE_MESSAGE_MAP()

private:
    void MakePlaceholder();

    HIMAGELIST m_thumbnails = nullptr;
    COLORREF m_background = RGB(255, 255, 255);
    std::vector<CString> m_files; // full path for each item; empty when there is no file
    std::size_t m_next = 0;
    CString m_emptyText;
    GRAYSTRINGPROC m_drawEmpty = nullptr;
};

// What the loaded dialog module offers and how it is set.
#pragma once

#include "host/hostmodule.h"

#include <afxcmn.h>
#include <afxwin.h>

/// Lists the exports that were found and the settings that host and module share. Modal.
class hostCModuleDlg : public CDialog
{
public:
    hostCModuleDlg(const hostCModule& module, CWnd* parent);

protected:
    void DoDataExchange(CDataExchange* exchange) override;
    BOOL OnInitDialog() override;

private:
    void Add(LPCTSTR name, LPCTSTR value);
    void AddNumber(LPCTSTR name, double value);

    const hostCModule& m_module;
    CListCtrl m_list;
};

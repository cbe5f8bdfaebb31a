// Sign-in and settings of the transfer program.
#pragma once

#include "suite/dialogs/mfcdialog.h"
#include "suite/rasko/program/raskores.h"
#include "suite/rasko/program/settings.h"

/// On the window's thread. The password is never shown: an empty field keeps the one that is stored.
class CRaskoOptions : public mfcCDialog
{
public:
    explicit CRaskoOptions(CWnd* parent) : mfcCDialog(IDD_RASKO_OPTIONS, parent)
    {
    }
    ~CRaskoOptions() override;

    static bool IsOpen()
    {
        return s_open;
    }

protected:
    BOOL OnInitDialog() override;
    void OnOK() override;
    afx_msg void OnForget();
    DECLARE_MESSAGE_MAP()

private:
    void Refuse(UINT message, int control);

    rasko::Settings m_settings;
    static inline bool s_open = false;
};

// What the host works with: one practice and the dialog module that was loaded for it.
#pragma once

#include "host/hostmodule.h"
#include "host/hostpractice.h"
#include "suite/patients/records/dbpatients.h"

/// Owns the open practice and the loaded module. The module reads its settings while it loads, so every practice
/// gets a fresh one. User interface thread.
class hostCSession
{
public:
    /// Changes to the practice in a folder. FALSE with a message (empty when the user said no) when practice or
    /// module could not be had; with the practice alone its patients can still be looked at.
    BOOL Open(LPCTSTR folder, const hostAsk& ask, CString& error);
    void Close();

    const hostCPractice& GetPractice() const
    {
        return m_practice;
    }
    const hostCModule& GetModule() const
    {
        return m_module;
    }
    dbCPatients& GetPatients()
    {
        return m_patients;
    }

    /// Practice and module are both there: the module's dialogs can be called.
    BOOL IsReady() const
    {
        return m_practice.IsOpen() && m_module.IsLoaded();
    }

    BOOL IsArchivingAllowed() const
    {
        return m_archivingAllowed;
    }
    void AllowArchiving(BOOL allowed);

    /// Whether balances and treatments are in use: a setting of the practice.
    BOOL UsesPracticeManagement() const;
    void UsePracticeManagement(BOOL used);

private:
    hostCPractice m_practice;
    hostCModule m_module;
    dbCPatients m_patients;
    BOOL m_archivingAllowed = FALSE;
};

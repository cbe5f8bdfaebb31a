#include "host/hostsession.h"

BOOL hostCSession::Open(LPCTSTR folder, const hostAsk& ask, CString& error)
{
    Close();
    if (!m_practice.Open(folder, ask, error) || !m_module.Load(nullptr, error))
    {
        return FALSE;
    }
    AllowArchiving(TRUE);
    return TRUE;
}

void hostCSession::Close()
{
    m_module.Unload();
    m_practice.Close();
    m_archivingAllowed = FALSE;
}

void hostCSession::AllowArchiving(BOOL allowed)
{
    m_module->SetArchivingAllowed(allowed != FALSE);
    m_archivingAllowed = allowed;
}

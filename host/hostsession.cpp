#include "host/hostsession.h"

#include "host/transferprogram.h"
#include "suite/util/velini.h"

namespace
{
constexpr const char* kSection = "Defaults";
constexpr const char* kPracticeManagement = "PracticeManagement";
} // namespace

BOOL hostCSession::Open(LPCTSTR folder, const hostAsk& ask, CString& error)
{
    if (m_practice.IsOpen())
    {
        hostEndTransferProgram();
    }
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

BOOL hostCSession::UsesPracticeManagement() const
{
    return m_practice.IsOpen() && velGetIniInt(kSection, kPracticeManagement, 0) != 0;
}

void hostCSession::UsePracticeManagement(BOOL used)
{
    velSetIniInt(kSection, kPracticeManagement, used ? 1 : 0);
}

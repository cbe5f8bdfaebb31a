#include "app/callscopes.h"

#include "app/velapp.h"
#include "suite/patients/records/veltrixlogin.h"

CPatientsScope::CPatientsScope(dbCPatients* pPatients)
{
    VelApp()->SetPatients(pPatients);
}

CPatientsScope::~CPatientsScope()
{
    VelApp()->SetPatients(nullptr);
}

CPracticeManagementScope::CPracticeManagementScope(int nPracticeManagement)
    : m_nPrevious(VelApp()->SetPracticeManagement(nPracticeManagement))
{
}

CPracticeManagementScope::~CPracticeManagementScope()
{
    VelApp()->SetPracticeManagement(m_nPrevious);
}

CNewPatientScope::CNewPatientScope()
{
    CVeltrixLogin::m_bNewPatFromDI = 1;
}

CNewPatientScope::~CNewPatientScope()
{
    CVeltrixLogin::m_bNewPatFromDI = 0;
}

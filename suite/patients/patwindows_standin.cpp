// Until the framework's windows are there: nothing is shown and lists stay empty.

#include "suite/patients/dbpatients.h"

BOOL patCPatients::IsDOBValid(const velCDate& date, BOOL)
{
    return date.IsNull() || (date.IsValid() && date.GetYear() >= 1850 && date.CompareDate(velCDate::Today()) <= 0);
}

int patCPatient::FillTreatmentList(CComboBox&, CStringArray&, BOOL, BOOL) const
{
    return 0;
}

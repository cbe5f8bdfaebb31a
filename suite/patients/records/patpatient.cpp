#include "suite/patients/records/patpatient.h"

#include "suite/patients/store/dbcore.h"

namespace
{
CString NameInForm(const CString& strName, int nForm)
{
    if (nForm != patNameForText)
        return strName;
    CString strText;
    bool bBlank = false;
    for (int i = 0; i < strName.GetLength(); ++i)
    {
        const auto ch = static_cast<unsigned char>(strName[i]);
        if (ch <= ' ' || ch == 0x7F)
        {
            bBlank = true;
            continue;
        }
        if (bBlank && !strText.IsEmpty())
            strText += ' ';
        bBlank = false;
        strText += strName[i];
    }
    return strText;
}
} // namespace

patCPatient::patCPatient()
{
    m_f.dateRecord = velCDate::Today();
}

CString patCPatient::GetLastname(int nForm) const
{
    return NameInForm(m_f.strLastname, nForm);
}

CString patCPatient::GetFirstname(int nForm) const
{
    return NameInForm(m_f.strFirstname, nForm);
}

CString patCPatient::FormatBirthdate() const
{
    return dbDateText(m_f.dateBirth, false).c_str();
}

patCTimepoint patCPatient::GetTimepoint(int nIndex) const
{
    return nIndex >= 0 && nIndex < m_timepoints.GetCount() ? m_timepoints[nIndex] : patCTimepoint();
}

void patCPatient::SetTimepoint(int nIndex, const patCTimepoint& timepoint)
{
    m_timepoints.SetAt(nIndex, timepoint);
}

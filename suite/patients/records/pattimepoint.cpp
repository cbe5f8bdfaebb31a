#include "suite/patients/records/pattimepoint.h"

#include "suite/patients/records/patpatient.h"

#include <algorithm>
#include <cstdio>

void patCTimepoint::SetBaseFilename(LPCTSTR psz)
{
    m_strBaseFilename = psz;
    const CString strDigits = m_strBaseFilename.Right(2);
    const bool bDigits = strDigits.GetLength() == 2 && strDigits.SpanIncluding("0123456789").GetLength() == 2;
    m_nNumber = bDigits ? atoi(strDigits) : -1;
}

void patCTimepoint::SetNumber(LPCTSTR pszPatientID, int nNumber)
{
    m_nNumber = nNumber;
    m_strBaseFilename.Format("%s%.2d", pszPatientID, nNumber);
}

void patCTimepoint::SetImage(int nGroup, int nType, BOOL bPresent)
{
    const DWORD dwBit = DWORD{1} << nType;
    const DWORD dwBits = GetImageBits(nGroup);
    SetImageBits(nGroup, bPresent ? dwBits | dwBit : dwBits & ~dwBit);
}

patSImageInfo patCTimepoint::GetImageInfo(int nGroup, int nType) const
{
    const auto info = m_infos.find({nGroup, nType});
    return info != m_infos.end() ? info->second : patSImageInfo();
}

CString patCTimepoint::GetImageFilename(int nGroup, int nType) const
{
    CString strName;
    strName.Format("%s.I%d%c", m_strBaseFilename.GetString(), nGroup,
                   patCImageTypes::GetType(nGroup, nType).chCode);
    return strName;
}

dbCTimepoint::dbCTimepoint()
{
    SettpID(dbNewGUID());
}

int patCTimepoints::Find(LPCTSTR pszName, LPCTSTR pszDate) const
{
    for (int i = 0; i < GetCount(); ++i)
        if (GetAt(i).GetName() == pszName && GetAt(i).GetDate().FormatDate() == pszDate)
            return i;
    return -1;
}

int patCTimepoints::GetFreeNumber() const
{
    std::array<bool, MAX_COUNT> used{};
    for (const patCTimepoint& timepoint : *this)
        if (timepoint.GetNumber() >= 0 && timepoint.GetNumber() < MAX_COUNT)
            used[static_cast<size_t>(timepoint.GetNumber())] = true;
    const auto free = std::find(used.begin(), used.end(), false);
    return free != used.end() ? static_cast<int>(free - used.begin()) : -1;
}

int patCTimepoints::Add(const patCPatient* pPatient, const patCTimepoint& timepoint, BOOL bNewNumber,
                        BOOL bNewGUID)
{
    if (GetCount() >= MAX_COUNT)
        return RESULT_FULL;
    patCTimepoint added = timepoint;
    if (bNewNumber)
        added.SetNumber(pPatient ? pPatient->GetID().GetString() : "", GetFreeNumber());
    if (bNewGUID || added.GettpID().IsEmpty())
        added.SettpID(dbNewGUID());
    Add(added);
    return 0;
}

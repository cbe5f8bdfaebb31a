#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/files/patimagetypes.h"
#include "suite/util/veldate.h"

#include <array>
#include <map>
#include <utility>

class patCPatient;

/// What is recorded about one image beside its file.
struct patSImageInfo
{
    CString strTitle, strNote, strGUID;
};

/// A named, dated set of a patient's images. A value; the patient it is added to stores it.
class VELPAT_API patCTimepoint
{
public:
    const CString& GetName() const
    {
        return m_strName;
    }
    const velCDate& GetDate() const
    {
        return m_date;
    }
    /// The treatment-status history row that the timepoint belongs to; empty for none.
    const CString& GetptshID() const
    {
        return m_strPtshID;
    }
    /// The timepoint's GUID in the database.
    const CString& GettpID() const
    {
        return m_strTpID;
    }
    /// The two-digit number (0 to 99) in the names of the timepoint's files.
    int GetNumber() const
    {
        return m_nNumber;
    }
    /// What the names of the timepoint's image files begin with: patient ID and two-digit number.
    const CString& GetBaseFilename() const
    {
        return m_strBaseFilename;
    }
    /// FALSE when the timepoint is kept but not shown.
    BOOL IsActive() const
    {
        return m_bActive;
    }

    void SetName(LPCTSTR psz)
    {
        m_strName = psz;
    }
    void SetDate(const velCDate& date)
    {
        m_date = date;
    }
    void SetptshID(LPCTSTR psz)
    {
        m_strPtshID = psz;
    }
    void SettpID(LPCTSTR psz)
    {
        m_strTpID = psz;
    }
    void SetActive(BOOL bActive)
    {
        m_bActive = bActive;
    }
    /// Sets the base name and takes the number from its last two digits.
    void SetBaseFilename(LPCTSTR psz);
    void SetNumber(LPCTSTR pszPatientID, int nNumber);

    /// The set of types that the timepoint holds in a group, one bit per type.
    DWORD GetImageBits(int nGroup) const
    {
        return m_bits.at(static_cast<size_t>(nGroup));
    }
    void SetImageBits(int nGroup, DWORD dwBits)
    {
        m_bits.at(static_cast<size_t>(nGroup)) = dwBits;
    }
    BOOL HasImage(int nGroup, int nType) const
    {
        return (GetImageBits(nGroup) >> nType) & 1;
    }
    void SetImage(int nGroup, int nType, BOOL bPresent = TRUE);

    /// Title, note and GUID of an image; empty ones when nothing was recorded.
    patSImageInfo GetImageInfo(int nGroup, int nType) const;
    void SetImageInfo(int nGroup, int nType, const patSImageInfo& info)
    {
        m_infos[{nGroup, nType}] = info;
    }
    const std::map<std::pair<int, int>, patSImageInfo>& GetImageInfos() const
    {
        return m_infos;
    }
    void RemoveImageInfos()
    {
        m_infos.clear();
    }

    /// File name (no folder) of an image.
    CString GetImageFilename(int nGroup, int nType) const;

private:
    CString m_strName, m_strPtshID, m_strTpID, m_strBaseFilename;
    velCDate m_date;
    int m_nNumber = -1;
    BOOL m_bActive = TRUE;
    std::array<DWORD, patCImageTypes::GROUP_COUNT> m_bits{};
    std::map<std::pair<int, int>, patSImageInfo> m_infos;
};

/// A new timepoint, with a GUID of its own.
class VELPAT_API dbCTimepoint : public patCTimepoint
{
public:
    dbCTimepoint();
};

/// A patient's timepoints in the order they were added. Positions run from 0 and are not the files' numbers.
class VELPAT_API patCTimepoints : public dbTList<patCTimepoint>
{
public:
    enum : int
    {
        MAX_COUNT = 100
    };
    enum : int
    {
        RESULT_FULL = 1993 ///< result of Add: the patient has MAX_COUNT timepoints
    };

    /// Position of the timepoint with this name (exact) whose date, formatted date-only in the user's locale,
    /// is `pszDate`; -1 when there is none.
    int Find(LPCTSTR pszName, LPCTSTR pszDate) const;

    using dbTList<patCTimepoint>::Add;
    /// Appends a timepoint for the patient. `bNewNumber` gives it the smallest file number that the patient
    /// does not use, `bNewGUID` a new GUID. Returns 0, or RESULT_FULL and adds nothing.
    int Add(const patCPatient* pPatient, const patCTimepoint& timepoint, BOOL bNewNumber, BOOL bNewGUID);

    /// The smallest file number not in use, -1 when all are.
    int GetFreeNumber() const;
};

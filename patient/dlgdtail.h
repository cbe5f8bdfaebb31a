#pragma once

#include "patient/detailsres.h"
#include "patient/fieldbinding.h"
#include "patient/sheetpage.h"
#include "suite/patients/records/dbdoctors.h"
#include "suite/patients/records/dbpatient.h"

#include <afxwin.h>

#include <memory>
#include <vector>

/// Page 2 of the patient information sheet: title, model number, salutation, office, status, keywords and
/// notes, and the treating and the referring doctor with a summary of each one's address. The page owns its
/// controls, the texts of its fields, the ids behind its office and status entries, and the two doctor lists
/// whose texts serve as item data of the doctor entries.
class patCDlgDtail : public patCSheetPage
{
public:
    explicit patCDlgDtail(patCChartSheet& sheet);

    /// Writes what the user changed: what a list could not show stays in the record as it was. Index 0 of a
    /// list, its placeholder, means none. The doctor of the first referral is the sheet's to write.
    void CopyTo(dbCPatient& patient) override;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;

    afx_msg void OnEditKeywords();
    afx_msg void OnEditTreatingDoctor();
    afx_msg void OnEditReferringDoctor();
    afx_msg void OnSelectTreatingDoctor();
    afx_msg void OnChooseReferringDoctor();
    DECLARE_MESSAGE_MAP()

private:
    /// A drop-down list whose entries carry a pointer to an id's text.
    struct List : CComboBox
    {
        /// Starts anew with the placeholder, selected.
        void Begin(const CString& strPlaceholder);
        /// Adds an entry; pszID must stay where it is as long as the entry.
        void Append(LPCTSTR pszText, const char* pszID);
        /// Removes what stands between the placeholder and this entry.
        void RemoveUpTo(int nEntry);
        /// Selects the entry with this id, or the placeholder.
        void Select(const char* pszID);
        /// The selected id; empty for the placeholder.
        CString GetSelectedID() const;
    };

    static BOOL AppendDoctor(const dbSDoctorRow& row, LPVOID pList);

    void LoadLists(const dbCPatient& patient);
    CString GetReferringDoctor() const;
    void OnSelectReferringDoctor();
    void FillTreatingDoctors(const CString& strSelectedGUID);
    void FillReferringDoctors(const CString& strSelectedGUID);
    void FillOffices(const CString& strOfficeID);
    void FillStatuses(const CString& strStatusID);
    /// Appends a named entry with an id that the page keeps for it, and selects it under its name.
    void AppendNamed(List& list, const CString& strName, const CString& strID);
    static void SelectNamed(List& list, const CString& strName);
    void ShowSummary(const List& list, int nControl);
    void EditDoctor(List& list, bool bTreating);

    List m_listStatus;
    List m_listOffice;
    List m_listReferringDoctor;
    List m_listTreatingDoctor;
    patTFields<dbCPatient> m_fields;
    CString m_strReferringLink; ///< GUID of the referring doctor of a patient without referrals
    CString m_strLoadedLink;    ///< the same as it was in the record
    std::unique_ptr<dbCDoctors> m_pDoctors;
    std::unique_ptr<dbCTreatingDoctors> m_pTreatingDoctors;
    std::vector<std::unique_ptr<CString>> m_ids; // behind the office and status entries
};

// The patient information sheet: enters a new patient or changes an existing one.
#pragma once

#include "patient/dlgchart.h"
#include "patient/dlgdtail.h"
#include "patient/dlgguard.h"
#include "patient/dlginsurance.h"
#include "patient/dlgrefer.h"
#include "patient/referrals.h"
#include "suite/dialogs/mfccoloredtabctrl.h"
#include "suite/dialogs/unicodebutton.h"
#include "suite/patients/records/dbpatient.h"

#include <afxdlgs.h>
#include <afxwin.h>

#include <memory>

/// The tabbed sheet behind NewPatientDlg, NewPatientDlgWithData and ChangePatientDlg.
///
/// It lives for one modal run on the host's user interface thread. It owns its five pages, and the patient
/// record unless the caller gave one. OK checks the opened pages in a fixed order, asks its two questions,
/// copies the pages into a scratch record and saves that in one database transaction; only after the commit
/// does it take the place of the record, and the sheet closes with IDOK. Until then neither the record nor
/// the database is changed. The patient list comes from the application object.
class patCChartSheet : public CPropertySheet
{
    DECLARE_DYNAMIC(patCChartSheet)

public:
    /// resultId receives the saved patient's ID on OK and is not touched otherwise; it must outlive the
    /// sheet. existingId: the ID or the GUID of the patient to change; null or empty for a new patient.
    /// initialData: a record of the caller's whose values fill the pages and which receives the result; it
    /// must outlive the sheet. One that is in the database already only lends its values. Null: no values.
    patCChartSheet(CString& resultId, LPCTSTR caption, CWnd* parent, UINT startPage, LPCTSTR existingId,
                   dbCPatient* initialData);

    /// The record that the pages are filled from. For an existing patient it is empty until LoadPatient.
    const dbCPatient& GetPatient() const
    {
        return *m_pPatient;
    }

    /// True while a new patient is entered, with or without initial data.
    bool IsNewPatient() const
    {
        return m_strExistingID.IsEmpty() != FALSE;
    }

    /// The country that new addresses start with; may be empty.
    const CString& GetDefaultCountry() const
    {
        return m_strDefaultCountry;
    }

    /// The birth date as it stands on the chart page; no date when there is none.
    const velCDate& GetBirthdate() const
    {
        return m_pageChart.GetBirthdate();
    }

    /// Loads the record of an existing patient on the first call; a new one needs no loading. Returns false,
    /// the first time after a message, when it cannot be loaded; from then on the sheet can only be
    /// cancelled.
    bool LoadPatient();

    /// The referrals of the record, none before LoadReferrals, which throws dbCException*.
    patCReferrals& GetReferrals()
    {
        return m_referrals;
    }
    void LoadReferrals();

    /// Notes that a page's window exists, so that OK checks and copies the page.
    void SetPageInitialised(int nPage)
    {
        m_bPageInitialised[nPage] = TRUE;
    }

    /// Brings a page to the front without running the checks of the page that is left.
    void ShowPage(int nPage);
    /// True while ShowPage changes the page.
    bool IsShowingPage() const
    {
        return m_bShowingPage;
    }

protected:
    BOOL OnInitDialog() override;
    BOOL PreTranslateMessage(MSG* pMsg) override;

    /// The OK command, wherever it comes from.
    afx_msg void OnOK();
    afx_msg void OnHelpButton();
    DECLARE_MESSAGE_MAP()

private:
    void AddPages();
    patCSheetPage& GetPage(int nPage);
    void DressFrame();

    bool TransferPages();
    bool RunSteps();
    bool RunStep(pat::Step nStep);
    bool ConfirmSimilarPatient();
    bool ConfirmBillingParty();
    bool SavePatient();
    void CopyPages(dbCPatient& patient);

    patCDlgChart m_pageChart;
    patCDlgDtail m_pageDetail;
    patCDlgGuard m_pageGuard;
    patCDlgRefer m_pageRefer;
    patCDlgInsurance m_pageInsurance;
    dbCPatient* m_pPatient;
    CString m_strExistingID;
    CString* m_pResultID;
    BOOL m_bPageInitialised[pat::PageCount] = {};
    CString m_strDefaultCountry;
    CUnicodeButton m_btnOK;
    CUnicodeButton m_btnCancel;
    CMfcColoredTabCtrl m_tabs;
    CUnicodeButton m_btnHelp;

    enum class LOADED
    {
        NotYet,
        Yes,
        Failed
    };
    LOADED m_nLoaded = LOADED::NotYet;
    std::unique_ptr<dbCPatient> m_pOwnPatient;
    patCReferrals m_referrals;
    bool m_bShowingPage = false;
};

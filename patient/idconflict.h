// The two dialogs that settle whose ID a patient record from outside gets.
#pragma once

#include "suite/dialogs/cededit.h"
#include "suite/dialogs/mfcdialog.h"

/// Asks what becomes of a record from outside when a patient of the practice has the same name and birth
/// date: a new patient under another ID, or a part of that patient. The caller sets the three texts, runs the
/// dialog with velRunModal and repeats it while the result is empty or taken. Belongs to its caller's stack,
/// on the user interface thread.
class CChangePatientID : public mfcCDialog
{
public:
    enum MODE
    {
        CreateNew = 0,
        Merge = 1
    };

    CChangePatientID();

    CString m_strProposedID;      ///< in: the ID that the record brings
    CString m_strExistingID;      ///< in: the ID of the patient that matches
    CString m_strResultID;        ///< out, on IDOK: the ID to store the record under; may be empty
    CString m_strExistingPatient; ///< in: names and ID of the patient that matches, for the message
    int m_nMode = CreateNew;      ///< out, on IDOK: a MODE
    CString m_strSpare;           ///< the caller's own; neither read nor changed here

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnHelpKey(UINT nHelpID) override;
    void OnOK() override;

    afx_msg void OnCreateNew();
    afx_msg void OnMerge();
    DECLARE_MESSAGE_MAP()

private:
    /// Field, button and mode as one choice wants them.
    void Choose(MODE nMode);

    cedCEditID m_editID;
};

/// Asks for another ID when a record from outside brings one that a different patient of the practice has.
/// Used as CChangePatientID is.
class CGetUniquePatID : public mfcCDialog
{
public:
    CGetUniquePatID();

    CString m_strResultID;    ///< out, on IDOK: the ID that the user entered; may be empty
    CString m_strPatientName; ///< in: family name, ", " and given name of the record
    CString m_strTakenID;     ///< in: the ID that is in use
    CString m_strSpare;       ///< the caller's own; neither read nor changed here

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnHelpKey(UINT nHelpID) override;
    void OnOK() override;

private:
    cedCEditID m_editID;
};

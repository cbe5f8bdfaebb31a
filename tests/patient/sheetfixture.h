// A practice of its own for one test of the patient sheet, and a user who works in it.
#pragma once

#include "app/exports/veldlgs.h"
#include "patient/detailsres.h"
#include "patient/patientres.h"
#include "patient/rules/sheetrules.h"
#include "tests/patients/testdatabase.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"

#include <gmock/gmock.h>

// Opens the sheet on a new, empty database. Runs on the user interface thread; scripts run on their own.
class SheetTest : public DatabaseTest
{
protected:
    using Control = veltest::Control;
    using Dialog = veltest::Dialog;
    using DialogScript = veltest::DialogScript;
    using Script = std::function<void(DialogScript&, const Dialog&)>;

    SheetTest();

    // Opens the sheet, plays the script in it, presses the button and expects that to be the result. With 0
    // the script confirms the sheet itself.
    void New(int nButton, const Script& script);
    void NewWithData(dbCPatient& data, int nButton, const Script& script);
    void Change(dbCPatient& patient, int nButton, const Script& script);
    // The same with the details page of the stored patient A1.
    void OnDetails(int nButton, const Script& script);
    // Opens the editor of A1's referring doctor, which the script closes, and cancels the sheet.
    void InDoctorEditor(const Script& script);

    // Something in every field of every page, and what no page shows. Born on 28 February 2010.
    dbCPatient MakePatient(const char* pszID, const char* pszFirstname = "Ann") const;
    dbCPatient StorePatient(const char* pszID, const char* pszFirstname = "Ann") const
    {
        return Saved(MakePatient(pszID, pszFirstname));
    }
    // Expects the stored patient to be this one.
    void ExpectStored(const char* pszID, const PatientImage& expected) const
    {
        EXPECT_THAT(Differences(expected, database.ImageOf(pszID)), testing::IsEmpty());
    }
    // The text of the last entry in the audit log.
    static CString LatestEvent();

    dbCPatients m_patients;
    dbCPatients* m_pPatients = &m_patients;
    CString m_strGUID;
    CString m_strIda, m_strGrace;      // Sorel and Bell, doctors of this practice
    CString m_strNorth, m_strSouth;    // offices
    CString m_strUrgent, m_strWaiting; // statuses
    CString m_strHarbour;              // Harbour Mutual, an insurance company
};

// Types what every patient needs.
void FillNames(const veltest::Dialog& sheet, const std::string& id, const std::string& firstname = "Ann",
               const std::string& lastname = "Lee");

// Waits for the buttons to follow the fields, then presses one.
void PressSettled(const veltest::Dialog& dialog, int nButton);

// Expects a message box, answers it and expects the window below to be open, with the focus on the control
// (0: wherever).
void ExpectBox(veltest::DialogScript& script, const veltest::Dialog& window,
               const testing::Matcher<std::string>& text, int nFocus = 0, int nAnswer = IDOK);

// The same after pressing a button.
void ExpectRefused(veltest::DialogScript& script, const veltest::Dialog& window,
                   const testing::Matcher<std::string>& text, int nFocus = 0, int nButton = IDOK);

// The selected text of an edit field.
std::string SelectedText(const veltest::Control& field);

// A practice of its own for one test of the patient sheet, and a user who works in it.
#pragma once

#include "app/exports/veldlgs.h"
#include "patient/patientres.h"
#include "patient/rules/sheetrules.h"
#include "suite/patients/records/dboffices.h"
#include "suite/patients/velpat.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"
#include "tests/support/sql.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

// Opens the sheet on a new, empty database. Runs on the user interface thread; scripts run on their own.
class SheetTest : public testing::Test
{
protected:
    using Dialog = veltest::Dialog;
    using DialogScript = veltest::DialogScript;
    using Script = std::function<void(DialogScript&, const Dialog&)>;

    SheetTest();
    ~SheetTest() override
    {
        dbCPatients::Close();
    }

    std::string DatabasePath() const
    {
        return m_practice.Path("patients.db");
    }

    // Opens the sheet, plays the script in it, presses the button and expects that to be the result. With 0
    // the script confirms the sheet itself.
    void New(int nButton, const Script& script);
    void NewWithData(dbCPatient& data, int nButton, const Script& script);
    void Change(dbCPatient& patient, int nButton, const Script& script);

    // Runs SQL on the database as another program would.
    void Sql(const char* pszSql) const
    {
        veltest::RunSql(DatabasePath(), pszSql);
    }

    // The patient as the database has it; an empty one when there is none.
    static dbCPatient Stored(const char* pszID)
    {
        dbCPatient patient;
        EXPECT_TRUE(patient.Load(pszID, TRUE, FALSE)) << pszID;
        return patient;
    }

    // Something in every field of every page, and what no page shows. Born on 4 March 2012.
    void FillPatient(dbCPatient& patient, const char* pszFirstname = "Ann",
                     const char* pszLastname = "Lee") const;
    // The same as a stored patient with a timepoint.
    dbCPatient StorePatient(const char* pszID, const char* pszFirstname = "Ann",
                            const char* pszLastname = "Lee") const;
    // A stored doctor; returns the GUID.
    static CString StoreDoctor(const char* pszFirstname, const char* pszLastname, BOOL bTreating = FALSE);
    // The text of the last entry in the audit log.
    static CString LatestEvent();

    veltest::TemporaryPractice m_practice;
    dbCPatients m_patients;
    dbCPatients* m_pPatients = &m_patients;
    CString m_strGUID;
    CString m_strIda, m_strGrace;      // Sorel and Bell, doctors of this practice
    CString m_strNorth, m_strSouth;    // offices
    CString m_strUrgent, m_strWaiting; // statuses
    CString m_strHarbour;              // Harbour Mutual, an insurance company
};

// Types what every patient needs.
void FillNames(const veltest::Dialog& sheet, const std::string& id, const std::string& firstname,
               const std::string& lastname);

// Expects a message box, answers it and expects the window below to be open, with the focus on the control
// (0: wherever).
void ExpectBox(veltest::DialogScript& script, const veltest::Dialog& window,
               const testing::Matcher<std::string>& text, int nFocus = 0, int nAnswer = IDOK);

// The same after OK.
void ExpectRefused(veltest::DialogScript& script, const veltest::Dialog& window,
                   const testing::Matcher<std::string>& text, int nFocus = 0);

// The selected text of an edit field.
std::string SelectedText(const veltest::Control& field);

// A practice of its own for one test of the patient sheet, and a user who works in it.
#pragma once

#include "app/exports/veldlgs.h"
#include "patient/patientres.h"
#include "patient/rules/sheetrules.h"
#include "suite/patients/records/dboffices.h"
#include "suite/patients/velpat.h"
#include "tests/support/childprocess.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

// Opens the sheet on a new, empty database. Runs on the user interface thread; scripts run on their own.
class SheetTest : public testing::Test
{
protected:
    using Script = veltest::DialogScript::Script;

    SheetTest();
    ~SheetTest() override
    {
        dbCPatients::Close();
    }

    std::string DatabasePath() const
    {
        return m_practice.Path("patients.db");
    }

    __int64 RunNew(const Script& script)
    {
        return veltest::RunModal([this] { return NewPatientDlg(nullptr, m_pPatients, m_strGUID); }, script);
    }
    __int64 RunNewWithData(dbCPatient& data, const Script& script)
    {
        return veltest::RunModal(
            [&] { return NewPatientDlgWithData(nullptr, m_pPatients, m_strGUID, &data); }, script);
    }
    __int64 RunChange(dbCPatient& patient, const Script& script)
    {
        return veltest::RunModal([&] { return ChangePatientDlg(nullptr, m_pPatients, &patient); }, script);
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

// The sheet in a script.
veltest::Dialog WaitForSheet(veltest::DialogScript& script);

// Types what every patient needs.
void FillNames(const veltest::Dialog& sheet, const std::string& id, const std::string& firstname,
               const std::string& lastname);

// Presses OK, expects this box (exact text), answers it, and expects the sheet to be open still with the
// focus on the control (0: wherever).
void ExpectRefused(veltest::DialogScript& script, const veltest::Dialog& sheet, const std::string& text,
                   int focusedControl = 0);

// The selected text of an edit field.
std::string SelectedText(const veltest::Control& field);

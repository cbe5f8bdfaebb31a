// The contracts of the exported functions, with the real dialogs.

#include "app/exports/veldlgs.h"
#include "patient/patientres.h"
#include "suite/patients/records/dbpatient.h"
#include "suite/patients/records/veltrixlogin.h"
#include "tests/support/dialogscript.h"
#include "tests/support/sql.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>

#include <functional>

namespace
{

using veltest::Dialog;
using veltest::DialogScript;

class EntryPoints : public testing::Test
{
protected:
    EntryPoints()
    {
        dbCPatients::Create(m_practice.Path("patients.db").c_str());
    }
    ~EntryPoints() override
    {
        dbCPatients::Close();
    }

    static void FillChart(const Dialog& sheet)
    {
        sheet.Item(IDC_CHART_ID).Replace("A1");
        sheet.Item(IDC_CHART_FIRSTNAME).Replace("Ann");
        sheet.Item(IDC_CHART_LASTNAME).Replace("Lee");
    }

    static dbCPatient Store(const char* id, const char* given, const char* family)
    {
        dbCPatient patient;
        patient.SetID(id);
        patient.SetFirstname(given);
        patient.SetLastname(family);
        patient.Save();
        return patient;
    }

    /// The events recorded so far as "kind GUID text", newest first.
    static std::vector<std::string> Events()
    {
        dbTList<dbSAuditEvent> events;
        CVeltrixLogin::LoadEvents(events, 100);
        std::vector<std::string> lines;
        for (const dbSAuditEvent& event : events)
            lines.push_back(std::to_string(event.nKind) + " " + event.strPatientGUID.GetString() + " " +
                            event.strText.GetString());
        return lines;
    }

    veltest::TemporaryPractice m_practice;
    dbCPatients m_patients;
};

TEST_F(EntryPoints, NewPatientsAreSavedRecordedAndNamedToTheCaller)
{
    dbCPatient data;
    data.SetID("D7");
    data.SetFirstname("Bo");
    data.SetLastname("Lee");
    const std::tuple<std::function<__int64(CString&)>, const char*, std::string> cases[] = {
        {[&](CString& guid) { return NewPatientDlg(nullptr, &m_patients, guid); }, "", "The patient (A1)"},
        {[&](CString& guid) { return NewPatientDlgWithData(nullptr, &m_patients, guid, nullptr); }, "",
         "The patient from DICOM (A1)"},
        {[&](CString& guid) { return NewPatientDlgWithData(nullptr, &m_patients, guid, &data); }, "D7",
         "The patient from DICOM (A1)"},
    };
    for (const auto& [call, shownID, event] : cases)
    {
        for (const int end : {IDCANCEL, IDOK})
        {
            CString guid = "before";
            const auto before = Events();
            const auto play = [&, shown = shownID](DialogScript&, const Dialog& sheet) {
                EXPECT_EQ(sheet.PageCount(), 5);
                EXPECT_EQ(sheet.PageIndex(), 0);
                EXPECT_FALSE(sheet.Item(IDHELP).IsVisible());
                EXPECT_EQ(CVeltrixLogin::m_bNewPatFromDI, 1);
                EXPECT_EQ(sheet.Item(IDC_CHART_ID).Text(), shown);
                FillChart(sheet);
                sheet.Press(end);
            };
            const auto result =
                veltest::RunDialog([&, open = call] { return open(guid); }, "Patient Information", play);
            EXPECT_EQ(result, end);
            EXPECT_EQ(CVeltrixLogin::m_bNewPatFromDI, 0);
            dbCPatient patient;
            EXPECT_EQ(patient.Load("A1"), end == IDOK);
            EXPECT_STREQ(guid, end == IDOK ? patient.GetGUID().GetString() : "");
            auto expected = before;
            if (end == IDOK)
                expected.insert(expected.begin(), "1 " + std::string(guid.GetString()) + " " + event +
                                                      " Lee, Ann has been created");
            EXPECT_EQ(Events(), expected);
        }
        m_patients.DeletePatient("A1");
    }
}

TEST_F(EntryPoints, ChangePatientShowsNameAndIDAndRecordsTheChange)
{
    dbCPatient patient = Store("B2", "Bo  ", "O'Hara & <1>");
    const auto play = [](DialogScript&, const Dialog& sheet) {
        EXPECT_EQ(CVeltrixLogin::m_bNewPatFromDI, 0);
        sheet.Item(IDC_CHART_NICKNAME).Replace("Bobo");
        sheet.Press(IDOK);
    };
    // The caption has the names as they were entered, the event tidied.
    const auto result = veltest::RunDialog([&] { return ChangePatientDlg(nullptr, &m_patients, &patient); },
                                           "Patient Information - Bo   O'Hara & <1> ID: B2", play);
    EXPECT_EQ(result, IDOK);
    dbCPatient changed;
    ASSERT_TRUE(changed.Load("B2"));
    EXPECT_STREQ(changed.GetNickname(), "Bobo");
    EXPECT_STREQ(patient.GetNickname(), "") << "the caller's object is not touched";
    EXPECT_EQ(Events(),
              std::vector<std::string>{"2 " + std::string(changed.GetGUID().GetString()) +
                                       " The patient (B2) O'Hara & <1>, Bo data, has been modified"});
}

TEST_F(EntryPoints, NothingComesUpWithoutAPatientListOrPatient)
{
    dbCPatient patient = Store("B2", "Bo", "Lee");
    dbCPatient unstored;
    CString guid = "before";
    CStringArray strings;
    veltest::RunModal(
        [&] {
            EXPECT_EQ(NewPatientDlg(nullptr, nullptr, guid), IDCANCEL);
            EXPECT_TRUE(guid.IsEmpty());
            guid = "before";
            EXPECT_EQ(NewPatientDlgWithData(nullptr, nullptr, guid, &unstored), IDCANCEL);
            EXPECT_TRUE(guid.IsEmpty());
            EXPECT_EQ(ChangePatientDlg(nullptr, nullptr, &patient), IDCANCEL);
            EXPECT_EQ(ChangePatientDlg(nullptr, &m_patients, nullptr), IDCANCEL);
            EXPECT_EQ(ChangePatientDlg(nullptr, &m_patients, &unstored), IDCANCEL);
            EXPECT_EQ(ArchiveDlg(nullptr, 1, &patient, ARCHIVE_OP_SAVE, strings, nullptr, strings, strings,
                                 strings, strings, 1, 2),
                      IDCANCEL);
        },
        [](DialogScript&) {});
    EXPECT_TRUE(Events().empty());
}

/// The patient is stored when the sheet closes: what fails after it is told and takes nothing back.
TEST_F(EntryPoints, AnEventThatCannotBeRecordedIsToldAndTheResultStaysOK)
{
    const std::string text =
        "The patient was saved, but the change could not be recorded in the audit log.\n\n";
    const std::tuple<const char*, const char*, bool> failures[] = {
        {"CREATE TRIGGER fault BEFORE INSERT ON auditEvents BEGIN SELECT RAISE(FAIL, 'the disk is full'); "
         "END",
         "the disk is full", true},
        {"CREATE TRIGGER fault AFTER INSERT ON patients BEGIN DELETE FROM patients; END",
         "The patient with the ID A1 could not be read again.", false},
    };
    for (const auto& [fault, reason, known] : failures)
    {
        veltest::RunSql(m_practice.Path("patients.db"), fault);
        CString guid;
        const auto play = [&, why = reason](DialogScript& script, const Dialog& sheet) {
            FillChart(sheet);
            sheet.Press(IDOK);
            const std::string told = script.AnswerBox("", IDOK);
            EXPECT_THAT(told, testing::StartsWith(text));
            EXPECT_THAT(told, testing::HasSubstr(why));
        };
        const auto result = veltest::RunDialog([&] { return NewPatientDlg(nullptr, &m_patients, guid); },
                                               "Patient Information", play);
        EXPECT_EQ(result, IDOK);
        EXPECT_EQ(!guid.IsEmpty(), known);
        veltest::RunSql(m_practice.Path("patients.db"), "DROP TRIGGER fault; DELETE FROM patients");
    }
    EXPECT_TRUE(Events().empty());
}

} // namespace

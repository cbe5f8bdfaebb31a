// The contracts of the exported functions, with the real dialogs.

#include "app/exports/veldlgs.h"
#include "patient/patientres.h"
#include "suite/patients/records/dbpatient.h"
#include "suite/patients/records/veltrixlogin.h"
#include "tests/support/dialogscript.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace
{

using veltest::Dialog;
using veltest::DialogScript;

class EntryPoints : public testing::Test
{
protected:
    void SetUp() override
    {
        dbCPatients::Create(m_practice.Path("patients.db").c_str());
    }
    void TearDown() override
    {
        dbCPatients::Close();
    }

    static void FillChart(const Dialog& sheet, const char* id, const char* given, const char* family)
    {
        sheet.Item(IDC_CHART_ID).Replace(id);
        sheet.Item(IDC_CHART_FIRSTNAME).Replace(given);
        sheet.Item(IDC_CHART_LASTNAME).Replace(family);
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
    struct Case
    {
        std::function<__int64(CString&)> call;
        const char* shownID;
        std::string event; // for the ID A1
    };
    const Case cases[] = {
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
            const auto result = veltest::RunModal([&] { return call(guid); },
                                                  [&, shown = shownID](DialogScript& script) {
                                                      const Dialog sheet =
                                                          script.WaitForDialog("Patient Information");
                                                      EXPECT_EQ(sheet.PageCount(), 5);
                                                      EXPECT_EQ(sheet.PageIndex(), 0);
                                                      EXPECT_FALSE(sheet.Item(IDHELP).IsVisible());
                                                      EXPECT_EQ(CVeltrixLogin::m_bNewPatFromDI, 1);
                                                      EXPECT_EQ(sheet.Item(IDC_CHART_ID).Text(), shown);
                                                      FillChart(sheet, "A1", "Ann", "Lee");
                                                      sheet.Press(end);
                                                  });
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
    const auto result = veltest::RunModal([&] { return ChangePatientDlg(nullptr, &m_patients, &patient); },
                                          [](DialogScript& script) {
                                              // The caption has the names as they were entered, the event
                                              // tidied.
                                              const Dialog sheet = script.WaitForDialog(
                                                  "Patient Information - Bo   O'Hara & <1> ID: B2");
                                              EXPECT_EQ(CVeltrixLogin::m_bNewPatFromDI, 0);
                                              sheet.Item(IDC_CHART_NICKNAME).Replace("Bobo");
                                              sheet.Press(IDOK);
                                          });
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

TEST_F(EntryPoints, APatientThatIsGoneIsReportedAndNothingRecorded)
{
    dbCPatient patient = Store("B2", "Bo", "Lee");
    m_patients.DeletePatient("B2");
    const auto result =
        veltest::RunModal([&] { return ChangePatientDlg(nullptr, &m_patients, &patient); },
                          [](DialogScript& script) {
                              script.AnswerBox("Error occurs when loading patient info", IDOK);
                              script.WaitForDialog("Patient Information - Bo Lee ID: B2").Press(IDCANCEL);
                          });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_TRUE(Events().empty());
}

/// Calls action once, on the user interface thread, when a window with this title is being destroyed.
class AtDestruction
{
public:
    AtDestruction(std::string title, std::function<void()> action)
        : m_title(std::move(title)), m_action(std::move(action)),
          m_hook(SetWindowsHookExA(WH_CALLWNDPROC, OnMessage, nullptr, GetCurrentThreadId()))
    {
        s_current = this;
    }
    ~AtDestruction()
    {
        UnhookWindowsHookEx(m_hook);
        s_current = nullptr;
        EXPECT_FALSE(m_action) << "no window \"" << m_title << "\" was destroyed";
    }
    AtDestruction(const AtDestruction&) = delete;
    AtDestruction& operator=(const AtDestruction&) = delete;

private:
    static LRESULT CALLBACK OnMessage(int code, WPARAM sender, LPARAM data)
    {
        const auto* const message = reinterpret_cast<const CWPSTRUCT*>(data);
        char title[100] = "";
        if (code == HC_ACTION && message->message == WM_DESTROY && s_current->m_action &&
            GetWindowTextA(message->hwnd, title, sizeof title) > 0 && s_current->m_title == title)
            std::exchange(s_current->m_action, nullptr)();
        return CallNextHookEx(nullptr, code, sender, data);
    }

    std::string m_title;
    std::function<void()> m_action;
    HHOOK m_hook;
    inline static AtDestruction* s_current = nullptr;
};

/// The patient is stored when the sheet closes: what fails after it is told and takes nothing back.
TEST_F(EntryPoints, AnEventThatCannotBeRecordedIsToldAndTheResultStaysOK)
{
    const std::string text =
        "The patient was saved, but the change could not be recorded in the audit log.\n\n";
    const std::pair<std::function<void()>, std::string> failures[] = {
        {[&] { m_patients.DeletePatient("A1"); }, "The patient with the ID A1 could not be read again."},
        {[] { dbCPatients::Close(); }, "No patient database is open."},
    };
    for (const auto& [failure, reason] : failures)
    {
        const AtDestruction meanwhile("Patient Information", failure);
        CString guid;
        const auto result = veltest::RunModal([&] { return NewPatientDlg(nullptr, &m_patients, guid); },
                                              [&, why = reason](DialogScript& script) {
                                                  const Dialog sheet =
                                                      script.WaitForDialog("Patient Information");
                                                  FillChart(sheet, "A1", "Ann", "Lee");
                                                  sheet.Press(IDOK);
                                                  script.AnswerBox(text + why, IDOK);
                                              });
        EXPECT_EQ(result, IDOK);
        EXPECT_TRUE(guid.IsEmpty());
    }
}

} // namespace

// The exported dialogs: what they promise their callers, and how F1 reaches the help viewer, in whose place
// the test answers.

#include "app/exports/veldlgs.h"
#include "app/htmlhelp.h"
#include "app/velapp.h"
#include "patient/detailsres.h"
#include "patient/patientres.h"
#include "suite/patients/records/dbkeywords.h"
#include "suite/patients/records/veltrixlogin.h"
#include "suite/patients/store/dbexception.h"
#include "suite/patients/store/dbsteps.h"
#include "tests/support/dialogscript.h"
#include "tests/support/sql.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>

#include <afxstat_.h>

#include <functional>

namespace
{

using veltest::Dialog;
using veltest::DialogScript;

constexpr UINT helpContext = 15;
constexpr UINT getWindow = 6;
constexpr DWORD_PTR editKeywordsHelp = 140455;
constexpr DWORD_PTR offset = 0x20000;

/// Writes down how it is called.
class RecordingViewer : public velHelpViewer
{
public:
    struct Question
    {
        HWND owner;
        std::string file;
        UINT command;
        DWORD_PTR data;   ///< 0 for the question for a window
        std::string name; ///< of the window that is asked for
        bool operator==(const Question&) const = default;
    };

    HWND Call(HWND hOwner, LPCTSTR pszFile, UINT nCommand, DWORD_PTR dwData) override
    {
        const bool asks = nCommand == getWindow;
        if (const auto action = std::exchange(meanwhile, nullptr))
            action();
        calls.push_back(
            {hOwner, pszFile, nCommand, asks ? 0 : dwData, asks ? reinterpret_cast<LPCSTR>(dwData) : ""});
        return asks ? window : nullptr;
    }

    std::vector<Question> calls;     // oldest first
    HWND window = nullptr;           // what the viewer claims to have opened
    std::function<void()> meanwhile; // once
};

/// The application object of the loaded module.
CVelDlgsApp& ModuleApp()
{
    AFX_MODULE_STATE* const state = AfxGetModuleStateOf(GetModuleHandleA("VelDlgs.dll"));
    return *static_cast<CVelDlgsApp*>(state->m_pCurrentWinApp);
}

class ModuleDialogs : public testing::Test
{
protected:
    ModuleDialogs()
    {
        ModuleApp().SetHelpViewer(&m_viewer);
        dbCPatients::Create(m_practice.Path("patients.db").c_str());
    }
    ~ModuleDialogs() override
    {
        dbCPatients::Close();
        ModuleApp().SetHelpViewer(nullptr);
    }

    /// Opens the keyword editor, presses F1 there and closes it; answers the editor's window.
    static HWND PressF1InKeywordEditor(const std::function<void(DialogScript&)>& meanwhile = {})
    {
        HWND window = nullptr;
        const auto play = [&](DialogScript& script, const Dialog& dialog) {
            window = dialog.Handle();
            dialog.PressF1();
            if (meanwhile)
                meanwhile(script);
            script.Settle(window);
            dialog.Press(IDCANCEL);
        };
        veltest::RunDialog([] { return EditKeywords(nullptr, INI_LIST_PATIENT); }, "Edit Keywords", play);
        return window;
    }

    static void FillNames(const Dialog& sheet)
    {
        sheet.Item(IDC_CHART_ID).SetText("A1");
        sheet.Item(IDC_CHART_FIRSTNAME).SetText("Ann");
        sheet.Item(IDC_CHART_LASTNAME).SetText("Lee");
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

    /// Expects F1 and a button to show a topic.
    void ExpectTopic(const Dialog& dialog, DWORD_PTR topic, int button = IDHELP)
    {
        for (const bool key : {true, false})
        {
            m_viewer.calls.clear();
            key ? dialog.PressF1() : dialog.Press(button);
            ASSERT_EQ(m_viewer.calls.size(), 2u) << topic << (key ? " F1" : " button");
            EXPECT_EQ(m_viewer.calls[0].data, topic + offset);
            EXPECT_EQ(m_viewer.calls[0].owner, dialog.Handle());
        }
    }

    veltest::TemporaryPractice m_practice;
    RecordingViewer m_viewer;
    dbCPatients m_patients;
};

using EntryPoints = ModuleDialogs;
using Help = ModuleDialogs;

TEST_F(EntryPoints, NewPatientsAreSavedRecordedAndNamedToTheCaller)
{
    const std::pair<std::function<__int64(CString&)>, std::string> cases[] = {
        {[&](CString& guid) { return NewPatientDlg(nullptr, &m_patients, guid); }, "The patient (A1)"},
        {[&](CString& guid) { return NewPatientDlgWithData(nullptr, &m_patients, guid, nullptr); },
         "The patient from DICOM (A1)"},
    };
    for (const auto& [call, event] : cases)
    {
        for (const int end : {IDCANCEL, IDOK})
        {
            CString guid = "before";
            const auto before = Events();
            const auto play = [&](DialogScript&, const Dialog& sheet) {
                EXPECT_FALSE(sheet.Item(IDHELP).IsVisible());
                EXPECT_EQ(CVeltrixLogin::m_bNewPatFromDI, 1);
                FillNames(sheet);
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

TEST_F(EntryPoints, AChangeIsRecordedAndTheCallersPatientIsNotTouched)
{
    dbCPatient patient;
    patient.SetID("B2");
    patient.SetFirstname("Bo  ");
    patient.SetLastname("O'Hara & <1>");
    patient.Save();
    const auto play = [](DialogScript&, const Dialog& sheet) {
        sheet.Item(IDC_CHART_NICKNAME).Replace("Bobo");
        sheet.Press(IDOK);
    };
    // The caption has the names as they were entered, the event tidied.
    const auto result = veltest::RunDialog([&] { return ChangePatientDlg(nullptr, &m_patients, &patient); },
                                           "Patient Information - Bo   O'Hara & <1> ID: B2", play);
    EXPECT_EQ(result, IDOK);
    EXPECT_STREQ(patient.GetNickname(), "");
    EXPECT_EQ(Events(),
              std::vector<std::string>{"2 " + std::string(patient.GetGUID().GetString()) +
                                       " The patient (B2) O'Hara & <1>, Bo data, has been modified"});
}

TEST_F(EntryPoints, NothingComesUpWithoutAPatientListOrPatient)
{
    dbCPatient patient, unstored;
    patient.SetID("B2");
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
            FillNames(sheet);
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

TEST_F(Help, TheUnshiftedTopicIsTriedOnceWhenNoWindowCameUp)
{
    for (const HWND window : {GetDesktopWindow(), HWND{}, reinterpret_cast<HWND>(0x7FFF1234)}) // no window
    {
        const bool opened = window == GetDesktopWindow();
        m_viewer.window = window;
        m_viewer.calls.clear();
        const HWND editor = PressF1InKeywordEditor();
        const std::string file = m_practice.Path("sys\\Veltrix.chm");
        std::vector<RecordingViewer::Question> expected = {
            {editor, file, helpContext, editKeywordsHelp + offset, ""},
            {editor, file, getWindow, 0, "Veltrix Imaging Help"}};
        if (!opened)
            expected.push_back({editor, file, helpContext, editKeywordsHelp, ""});
        EXPECT_EQ(m_viewer.calls, expected);
    }
}

TEST_F(Help, DebugBoxShowsTheNumbersFirst)
{
    m_practice.Set("defaults", "DebugHelp", "1");
    m_viewer.window = GetDesktopWindow();
    PressF1InKeywordEditor([&](DialogScript& script) {
        script.WaitForBox();
        EXPECT_EQ(m_viewer.calls.size(), 0u) << "the box comes before the help";
        EXPECT_EQ(script.AnswerBox("", IDOK), "Calling new help.\n"
                                              "dwData = 0x000224a7 (140455 ).\n"
                                              "clipped dwData = 0x24a7 (9383).\n"
                                              "nCmd = 1 (HELP_CONTEXT)");
    });
    EXPECT_EQ(m_viewer.calls.size(), 2u);
}

TEST_F(Help, EveryPageAndDialogHasItsTopic)
{
    m_viewer.window = GetDesktopWindow();
    CString text;
    const auto play = [&](DialogScript& script, const Dialog& sheet) {
        FillNames(sheet);
        const std::pair<int, DWORD_PTR> topics[] = {{IDC_CHART_STREET, 140433},
                                                    {IDC_DETAIL_TITLE, 140434},
                                                    {IDC_GUARD_NOTES, 140438},
                                                    {IDC_ROWS_LIST, 140439},
                                                    {IDC_INSURE_COMPANY, 140440}};
        for (int page = 0; page < 5; ++page)
        {
            sheet.SelectPage(page);
            for (const int field : {topics[page].first, IDCANCEL}) // on the frame it is the page's topic too
            {
                sheet.Item(field).Focus();
                ExpectTopic(sheet, topics[page].second, IDC_SHEET_HELP);
            }
        }
        sheet.SelectPage(1);
        sheet.Press(IDC_DETAIL_EDIT_TREATING);
        const Dialog editor = script.WaitForDialog("Doctor");
        ExpectTopic(editor, 140441);
        editor.Press(IDCANCEL);
        editor.WaitForClosed();
        sheet.Press(IDCANCEL);
    };
    veltest::RunDialog([&] { return NewPatientDlg(nullptr, &m_patients, text); }, "Patient Information",
                       play);

    __int64 result = 0;
    unsigned operation = 0;
    RENAME_OP renamed = RENAME_PATIENT;
    COleDateTime date;
    const std::tuple<const char*, DWORD_PTR, std::function<void()>> dialogs[] = {
        {"Rename", 140453,
         [&] { RenameDlg(nullptr, 0, nullptr, 0, "", &renamed, text, text, text, text, date); }},
        {"Delete", 140380, [&] { DeleteDlg(nullptr, 0, nullptr, 0, 0, 0, "", result, operation); }},
        {"New Timepoint", 140374, [&] { NewTimepointDlg(nullptr, 0, nullptr, result); }},
    };
    for (const auto& [title, topic, run] : dialogs)
        veltest::RunDialog(run, title, [&, shown = topic](DialogScript&, const Dialog& dialog) {
            ExpectTopic(dialog, shown);
            dialog.Press(IDCANCEL);
        });
}

/// A sheet whose patient is stored has done what it was opened for, whatever happens to its window then.
TEST_F(Help, AFailureOnceThePatientIsStoredLeavesTheResultOK)
{
    static HWND opened;
    m_viewer.meanwhile = [] { dbCException::Throw(dbErrIO, "the manual is torn"); };
    dbObserveSteps([](const char* step) {
        if (std::string(step) == "patientFile.done")
            SendMessageA(opened, WM_COMMAND, IDC_SHEET_HELP, 0);
    });
    CString guid;
    const auto play = [&](DialogScript& script, const Dialog& sheet) {
        opened = sheet.Handle();
        FillNames(sheet);
        sheet.Press(IDOK);
        EXPECT_TRUE(script.AnswerBox("", IDOK).starts_with(
            "An error occurred while the window was being closed. What you confirmed in it has been carried "
            "out.\n\n"));
    };
    const auto result = veltest::RunDialog([&] { return NewPatientDlg(nullptr, &m_patients, guid); },
                                           "Patient Information", play);
    dbObserveSteps(nullptr);
    EXPECT_EQ(result, IDOK);
    dbCPatient patient;
    EXPECT_TRUE(patient.Load("A1"));
    EXPECT_EQ(guid, patient.GetGUID());
    EXPECT_EQ(Events().size(), 1u);
}

/// The practice management of the dialog below is not the sheet's.
TEST_F(Help, ASheetOverAnotherDialogAsksForNoBillingParty)
{
    dbCPatient patient;
    CString guid;
    __int64 result = 0;
    m_viewer.meanwhile = [&] {
        EXPECT_EQ(NewPatientDlg(nullptr, &m_patients, guid), IDOK);
        patient.Load("A1");
        EXPECT_EQ(ChangePatientDlg(nullptr, &m_patients, &patient), IDOK);
    };
    veltest::RunDialog(
        [&] { NewTimepointDlg(nullptr, 1, nullptr, result); }, "New Timepoint",
        [](DialogScript& script, const Dialog& dialog) {
            dialog.PressF1();
            for (const char* title : {"Patient Information", "Patient Information - Ann Lee ID: A1"})
            {
                const Dialog sheet = script.WaitForDialog(title);
                FillNames(sheet);
                sheet.Press(IDOK);
                sheet.WaitForClosed();
            }
            script.Settle(dialog.Handle());
            dialog.Press(IDCANCEL);
        });
}

/// A library of that name in another folder of the search path could be anybody's.
TEST_F(Help, TheViewerComesFromTheSystemFolderAlone)
{
    char program[MAX_PATH] = "";
    char system[MAX_PATH] = "";
    GetModuleFileNameA(GetModuleHandleA("VelUtil.dll"), program, MAX_PATH);
    GetSystemDirectoryA(system, MAX_PATH);
    ASSERT_TRUE(CopyFileA(program, m_practice.Path("hhctrl.ocx").c_str(), TRUE));
    ASSERT_TRUE(SetDllDirectoryA(m_practice.Path("").c_str()));
    ModuleApp().SetHelpViewer(nullptr);
    PressF1InKeywordEditor();
    SetDllDirectoryA(nullptr);

    char viewer[MAX_PATH] = "";
    GetModuleFileNameA(GetModuleHandleA("hhctrl.ocx"), viewer, MAX_PATH);
    EXPECT_STRCASEEQ(viewer, (std::string(system) + "\\hhctrl.ocx").c_str());
}

} // namespace

// How F1 reaches the help viewer; the test answers in the viewer's place.

#include "app/exports/veldlgs.h"
#include "app/htmlhelp.h"
#include "app/velapp.h"
#include "patient/detailsres.h"
#include "patient/patientres.h"
#include "suite/patients/records/dbkeywords.h"
#include "tests/support/dialogscript.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <afxstat_.h>

namespace
{

constexpr UINT helpContext = 15;
constexpr UINT getWindow = 6;
constexpr DWORD_PTR editKeywordsHelp = 140455;
constexpr DWORD_PTR offset = 0x20000;

/// Writes down how it is called.
class RecordingViewer : public velHelpViewer
{
public:
    struct Call
    {
        HWND owner;
        std::string file;
        UINT command;
        DWORD_PTR data;
        std::string name; ///< the text that data points to, for the question for a window
    };

    HWND Call(HWND hOwner, LPCTSTR pszFile, UINT nCommand, DWORD_PTR dwData) override
    {
        const bool asks = nCommand == getWindow;
        calls.push_back({hOwner, pszFile, nCommand, dwData, asks ? reinterpret_cast<LPCSTR>(dwData) : ""});
        return asks ? window : nullptr;
    }

    std::vector<struct Call> calls; // oldest first
    HWND window = nullptr;          // what the viewer claims to have opened
};

/// The application object of the loaded module.
CVelDlgsApp& ModuleApp()
{
    AFX_MODULE_STATE* const state = AfxGetModuleStateOf(GetModuleHandleA("VelDlgs.dll"));
    return *static_cast<CVelDlgsApp*>(state->m_pCurrentWinApp);
}

class Help : public testing::Test
{
protected:
    void SetUp() override
    {
        ModuleApp().SetHelpViewer(&m_viewer);
        dbCPatients::Create(m_practice.Path("patients.db").c_str());
    }
    void TearDown() override
    {
        dbCPatients::Close();
        ModuleApp().SetHelpViewer(nullptr);
    }

    /// Opens the keyword editor, presses F1 there and closes it; answers the editor's window.
    HWND PressF1InKeywordEditor(const std::function<void(veltest::DialogScript&)>& meanwhile = {})
    {
        HWND window = nullptr;
        const auto result = veltest::RunModal([] { return EditKeywords(nullptr, INI_LIST_PATIENT); },
                                              [&](veltest::DialogScript& script) {
                                                  veltest::Dialog dialog =
                                                      script.WaitForDialog("Edit Keywords");
                                                  window = dialog.Handle();
                                                  dialog.PressF1();
                                                  if (meanwhile)
                                                      meanwhile(script);
                                                  script.Settle(window);
                                                  dialog.Press(IDCANCEL);
                                              });
        EXPECT_EQ(result, IDCANCEL);
        return window;
    }

    veltest::TemporaryPractice m_practice;
    RecordingViewer m_viewer;
};

TEST_F(Help, StopsWhenTheShiftedTopicOpensTheHelpWindow)
{
    m_viewer.window = GetDesktopWindow();
    HWND editor = PressF1InKeywordEditor();
    ASSERT_NE(editor, nullptr);
    ASSERT_EQ(m_viewer.calls.size(), 2u);
    EXPECT_EQ(m_viewer.calls[0].command, helpContext);
    EXPECT_EQ(m_viewer.calls[0].data, editKeywordsHelp + offset);
    EXPECT_EQ(m_viewer.calls[0].owner, editor);
    EXPECT_STRCASEEQ(m_viewer.calls[0].file.c_str(), m_practice.Path("sys\\Veltrix.chm").c_str());
    EXPECT_EQ(m_viewer.calls[1].command, getWindow);
    EXPECT_EQ(m_viewer.calls[1].name, "Veltrix Imaging Help");
}

TEST_F(Help, TriesTheUnshiftedTopicOnceWhenNoWindowCameUp)
{
    PressF1InKeywordEditor();
    ASSERT_EQ(m_viewer.calls.size(), 3u);
    EXPECT_EQ(m_viewer.calls[0].data, editKeywordsHelp + offset);
    EXPECT_EQ(m_viewer.calls[1].command, getWindow);
    EXPECT_EQ(m_viewer.calls[2].command, helpContext);
    EXPECT_EQ(m_viewer.calls[2].data, editKeywordsHelp);
    EXPECT_EQ(m_viewer.calls[2].file, m_viewer.calls[0].file);
}

TEST_F(Help, AHandleOfNoWindowIsNoHelpWindow)
{
    m_viewer.window = reinterpret_cast<HWND>(0x7FFF1234);
    PressF1InKeywordEditor();
    EXPECT_EQ(m_viewer.calls.size(), 3u);
}

TEST_F(Help, DebugBoxShowsTheNumbersFirst)
{
    m_practice.Set("defaults", "DebugHelp", "1");
    m_viewer.window = GetDesktopWindow();
    PressF1InKeywordEditor([&](veltest::DialogScript& script) {
        const veltest::Dialog box = script.WaitForBox();
        EXPECT_EQ(box.BoxText(), "Calling new help.\n"
                                 "dwData = 0x000224a7 (140455 ).\n"
                                 "clipped dwData = 0x24a7 (9383).\n"
                                 "nCmd = 1 (HELP_CONTEXT)");
        EXPECT_EQ(m_viewer.calls.size(), 0u) << "the box comes before the help";
        script.AnswerBox("", IDOK);
    });
    EXPECT_EQ(m_viewer.calls.size(), 2u);
}

TEST_F(Help, EveryWindowOfThePatientSheetHasItsTopic)
{
    m_viewer.window = GetDesktopWindow();
    dbCPatients patients;
    CString guid;
    const auto result =
        veltest::RunModal([&] { return NewPatientDlg(nullptr, &patients, guid); },
                          [&](veltest::DialogScript& script) {
                              const veltest::Dialog sheet = script.WaitForDialog("Patient Information");
                              sheet.Item(IDC_CHART_ID).Replace("A1");
                              sheet.Item(IDC_CHART_FIRSTNAME).Replace("Ann");
                              sheet.Item(IDC_CHART_LASTNAME).Replace("Lee");
                              const std::pair<int, DWORD_PTR> topics[] = {{IDC_CHART_ID, 140433},
                                                                          {IDC_DETAIL_TITLE, 140434},
                                                                          {IDC_GUARD_TITLE, 140438},
                                                                          {IDC_REFER_NOTE, 140439},
                                                                          {IDC_INSURE_NUMBER, 140440}};
                              for (int page = 0; page < 5; ++page)
                              {
                                  sheet.SelectPage(page);
                                  sheet.Item(topics[page].first).Focus();
                                  m_viewer.calls.clear();
                                  sheet.PressF1();
                                  script.Settle(sheet.Handle());
                                  ASSERT_EQ(m_viewer.calls.size(), 2u) << "page " << page;
                                  EXPECT_EQ(m_viewer.calls[0].data, topics[page].second + offset);
                              }

                              sheet.SelectPage(1);
                              sheet.Press(IDC_DETAIL_EDIT_TREATING);
                              const veltest::Dialog editor = script.WaitForDialog("Doctor");
                              for (const int way : {0, 1})
                              {
                                  m_viewer.calls.clear();
                                  way == 0 ? editor.PressF1() : editor.Press(IDHELP);
                                  script.Settle(editor.Handle());
                                  ASSERT_EQ(m_viewer.calls.size(), 2u) << (way == 0 ? "F1" : "the button");
                                  EXPECT_EQ(m_viewer.calls[0].data, 140441 + offset);
                                  EXPECT_EQ(m_viewer.calls[0].owner, editor.Handle());
                              }
                              editor.Press(IDCANCEL);
                              editor.WaitForClosed();
                              sheet.Press(IDCANCEL);
                          });
    EXPECT_EQ(result, IDCANCEL);
}

TEST_F(Help, EveryRecordDialogHasItsTopic)
{
    m_viewer.window = GetDesktopWindow();
    __int64 result = 0;
    unsigned operation = 0;
    RENAME_OP renamed = RENAME_PATIENT;
    CString text;
    COleDateTime date;
    const struct
    {
        const char* title;
        DWORD_PTR topic;
        std::function<void()> run;
    } dialogs[] = {
        {"Rename", 140453,
         [&] { RenameDlg(nullptr, 0, nullptr, 0, "", &renamed, text, text, text, text, date); }},
        {"Delete", 140380, [&] { DeleteDlg(nullptr, 0, nullptr, 0, 0, 0, "", result, operation); }},
        {"New Timepoint", 140374, [&] { NewTimepointDlg(nullptr, 0, nullptr, result); }},
    };
    for (const auto& shown : dialogs)
        veltest::RunModal(
            [&] {
                shown.run();
                return 0;
            },
            [&](veltest::DialogScript& script) {
                const veltest::Dialog dialog = script.WaitForDialog(shown.title);
                for (const int way : {0, 1})
                {
                    m_viewer.calls.clear();
                    way == 0 ? dialog.PressF1() : dialog.Press(IDHELP);
                    script.Settle(dialog.Handle());
                    ASSERT_EQ(m_viewer.calls.size(), 2u) << shown.title << (way == 0 ? " F1" : " button");
                    EXPECT_EQ(m_viewer.calls[0].data, shown.topic + offset);
                }
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

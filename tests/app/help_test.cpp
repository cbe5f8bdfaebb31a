// How F1 reaches the help viewer; a library of the test answers in the viewer's place.

#include "app/exports/veldlgs.h"
#include "patient/detailsres.h"
#include "patient/patientres.h"
#include "suite/patients/records/dbkeywords.h"
#include "tests/app/testhelpviewer.h"
#include "tests/support/dialogscript.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

namespace
{

constexpr UINT helpContext = 15;
constexpr UINT getWindow = 6;
constexpr DWORD_PTR editKeywordsHelp = 140455;
constexpr DWORD_PTR offset = 0x20000;

/// The viewer is found under its name because it is loaded already.
HelpLog* LoadViewer()
{
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    const std::string folder = std::string(path).substr(0, std::string(path).rfind('\\'));
    const HMODULE viewer = LoadLibraryA((folder + "\\testhelp\\hhctrl.ocx").c_str());
    if (viewer == nullptr)
        return nullptr;
    const auto calls =
        reinterpret_cast<HelpCallsFunction>(reinterpret_cast<void*>(GetProcAddress(viewer, "HelpCalls")));
    return calls != nullptr ? calls() : nullptr;
}

class Help : public testing::Test
{
protected:
    void SetUp() override
    {
        m_log = LoadViewer();
        ASSERT_NE(m_log, nullptr);
        *m_log = {};
        dbCPatients::Create(m_practice.Path("patients.db").c_str());
    }
    void TearDown() override
    {
        dbCPatients::Close();
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
    HelpLog* m_log = nullptr;
};

TEST_F(Help, StopsWhenTheShiftedTopicOpensTheHelpWindow)
{
    m_log->window = GetDesktopWindow();
    HWND editor = PressF1InKeywordEditor();
    ASSERT_NE(editor, nullptr);
    ASSERT_EQ(m_log->count, 2);
    EXPECT_EQ(m_log->calls[0].command, helpContext);
    EXPECT_EQ(m_log->calls[0].data, editKeywordsHelp + offset);
    EXPECT_EQ(m_log->calls[0].owner, editor);
    EXPECT_STRCASEEQ(m_log->calls[0].file, m_practice.Path("sys\\Veltrix.chm").c_str());
    EXPECT_EQ(m_log->calls[1].command, getWindow);
    EXPECT_STREQ(m_log->calls[1].name, "Veltrix Imaging Help");
}

TEST_F(Help, TriesTheUnshiftedTopicOnceWhenNoWindowCameUp)
{
    PressF1InKeywordEditor();
    ASSERT_EQ(m_log->count, 3);
    EXPECT_EQ(m_log->calls[0].data, editKeywordsHelp + offset);
    EXPECT_EQ(m_log->calls[1].command, getWindow);
    EXPECT_EQ(m_log->calls[2].command, helpContext);
    EXPECT_EQ(m_log->calls[2].data, editKeywordsHelp);
    EXPECT_STRCASEEQ(m_log->calls[2].file, m_log->calls[0].file);
}

TEST_F(Help, AHandleOfNoWindowIsNoHelpWindow)
{
    m_log->window = reinterpret_cast<HWND>(0x7FFF1234);
    PressF1InKeywordEditor();
    EXPECT_EQ(m_log->count, 3);
}

TEST_F(Help, DebugBoxShowsTheNumbersFirst)
{
    m_practice.Set("defaults", "DebugHelp", "1");
    m_log->window = GetDesktopWindow();
    PressF1InKeywordEditor([&](veltest::DialogScript& script) {
        const veltest::Dialog box = script.WaitForBox();
        EXPECT_EQ(box.BoxText(), "Calling new help.\n"
                                 "dwData = 0x000224a7 (140455 ).\n"
                                 "clipped dwData = 0x24a7 (9383).\n"
                                 "nCmd = 1 (HELP_CONTEXT)");
        EXPECT_EQ(m_log->count, 0) << "the box comes before the help";
        script.AnswerBox("", IDOK);
    });
    EXPECT_EQ(m_log->count, 2);
}

TEST_F(Help, EveryWindowOfThePatientSheetHasItsTopic)
{
    m_log->window = GetDesktopWindow();
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
                                  *m_log = {};
                                  m_log->window = GetDesktopWindow();
                                  sheet.PressF1();
                                  script.Settle(sheet.Handle());
                                  ASSERT_EQ(m_log->count, 2) << "page " << page;
                                  EXPECT_EQ(m_log->calls[0].data, topics[page].second + offset);
                              }

                              sheet.SelectPage(1);
                              sheet.Press(IDC_DETAIL_EDIT_TREATING);
                              const veltest::Dialog editor = script.WaitForDialog("Doctor");
                              for (const int way : {0, 1})
                              {
                                  *m_log = {};
                                  m_log->window = GetDesktopWindow();
                                  way == 0 ? editor.PressF1() : editor.Press(IDHELP);
                                  script.Settle(editor.Handle());
                                  ASSERT_EQ(m_log->count, 2) << (way == 0 ? "F1" : "the button");
                                  EXPECT_EQ(m_log->calls[0].data, 140441 + offset);
                                  EXPECT_EQ(m_log->calls[0].owner, editor.Handle());
                              }
                              editor.Press(IDCANCEL);
                              editor.WaitForClosed();
                              sheet.Press(IDCANCEL);
                          });
    EXPECT_EQ(result, IDCANCEL);
}

} // namespace

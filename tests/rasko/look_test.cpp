// The transfer program's windows as they show.
#include "suite/rasko/program/credentials.h"
#include "suite/rasko/program/optionsdialog.h"
#include "suite/rasko/program/raskowindow.h"
#include "tests/support/dialogquality.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"
#include "tests/support/temporarypractice.h"

VEL_MFC_TEST_PROGRAM();

namespace
{
struct LookTest : testing::Test
{
    LookTest()
    {
        dbCPatients::Create(practice.Path("patients.db").c_str());
        dbCApplicationOptionsContainer::SetApplicationOption("RASKOTARGET", "records.example.org");
        dbCApplicationOptionsContainer::SetApplicationOption("RASKOPATH", practice.Path("temp").c_str());
        rasko::StoreCredentials("records.example.org", {});
    }
    ~LookTest() override
    {
        dbCPatients::Close();
    }
    static void Pump()
    {
        for (MSG message; PeekMessage(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessage(&message);
    }

    veltest::TemporaryPractice practice;
};

TEST_F(LookTest, TheWindowShowsEveryTaskWithItsState)
{
    for (const auto& [type, patient] :
         {std::pair(dbSRaskoTask::UPLOAD, "Lee, Ann - A12"), {dbSRaskoTask::DOWNLOAD, "Boyle, Bert - B7"}})
    {
        dbSRaskoTask task;
        task.nType = type;
        task.strDescription = patient;
        task.strQueueComputer = dbGetComputerName();
        dbCRaskoTasksContainer::InsertRow(task);
    }
    CRaskoWindow::RegisterWindowClass();
    CRaskoWindow window;
    ASSERT_TRUE(window.Open());
    window.ShowWindow(SW_SHOW);
    const UINT wake = RegisterWindowMessageA("WmVeltrixRasko3741");
    window.SendMessage(wake);
    const HWND list = window.GetDlgItem(IDC_TASKS)->m_hWnd;
    ASSERT_EQ(ListView_GetItemCount(list), 2);
    // Nobody has signed in yet: both wait and say why.
    ListView_SetItemState(list, 0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    Pump();
    CString text;
    window.GetDlgItemText(IDC_REASON, text);
    EXPECT_EQ(text, "Please enter your user name and password for the service.");
    EXPECT_TRUE(window.GetDlgItem(IDC_STOP)->IsWindowEnabled());
    EXPECT_TRUE(window.GetDlgItem(IDC_RETRY)->IsWindowEnabled());
    EXPECT_EQ(veltest::DialogFindings(window.m_hWnd), "");
    EXPECT_TRUE(veltest::SavePicture(window.m_hWnd, "rasko-window"));
    // The options open over the window, hidden or not, once; wake-ups are taken meanwhile.
    window.ShowWindow(SW_HIDE);
    veltest::RunModal(
        [&] { return window.SendMessage(RaskoMessageOptions); },
        [&](veltest::DialogScript& script) {
            const veltest::Dialog options = script.WaitForDialog("Veltrix Rasko Options");
            EXPECT_EQ(GetWindow(options.Handle(), GW_OWNER), window.m_hWnd);
            EXPECT_TRUE(IsWindowVisible(window.m_hWnd));
            EXPECT_FALSE(IsWindowEnabled(window.m_hWnd));
            for (const UINT message : {RaskoMessageOptions, wake})
                EXPECT_TRUE(SendMessageTimeoutA(window.m_hWnd, message, 0, 0, SMTO_NORMAL, 20'000, nullptr));
            options.Press(IDCANCEL);
        });
    EXPECT_TRUE(window.IsWindowEnabled());
    // A row that somebody takes out of the table is gone here too.
    dbCRaskoTasksContainer pending;
    pending.LoadPendingOfComputer(dbGetComputerName());
    pending[0].nStatus = rasko::Finished;
    dbCRaskoTasksContainer::UpdateRow(pending[0]);
    window.SendMessage(wake);
    EXPECT_EQ(ListView_GetItemCount(list), 1);
    window.DestroyWindow();
    Pump();
}

TEST_F(LookTest, TheOptionsAreCheckedStoredAndReadBack)
{
    const auto run = [](const veltest::DialogScript::Script& script) {
        return veltest::RunModal([] { return CRaskoOptions(nullptr).DoModal(); }, script);
    };
    const std::string folder = practice.Path("temp");
    const std::string noCredentials = "Please enter your user name and password for the service.",
                      noService = "Please enter the service's name, or its name and port such as "
                                  "records.example.org:8443.";
    const auto enter = [](const veltest::Dialog& dialog, const std::array<std::string, 4>& texts) {
        const int fields[] = {IDC_USER, IDC_PASSWORD, IDC_SERVICE, IDC_FOLDER};
        for (std::size_t i = 0; i < texts.size(); ++i)
            dialog.Item(fields[i]).Replace(texts[i]);
    };
    const INT_PTR stored = run([&](veltest::DialogScript& script) {
        const veltest::Dialog dialog = script.WaitForDialog("Veltrix Rasko Options");
        EXPECT_EQ(veltest::DialogFindings(dialog.Handle()), "");
        EXPECT_EQ(dialog.Item(IDC_SERVICE).Text(), "records.example.org");
        EXPECT_EQ(dialog.Item(IDC_FOLDER).Text(), folder);
        const struct
        {
            std::array<std::string, 4> texts;
            std::string refusal;
            int focus;
        } refused[] = {{{"", "secret", "h", folder}, noCredentials, IDC_USER},
                       {{"ann", "", "h", folder}, noCredentials, IDC_PASSWORD},
                       {{"ann", "x", "https://h", folder}, noService, IDC_SERVICE},
                       {{"ann", "x", "h:65536", folder}, noService, IDC_SERVICE},
                       {{"ann", "x", "h", folder + "\\none"},
                        "Please enter a folder that exists and can be written to.",
                        IDC_FOLDER}};
        for (const auto& one : refused)
        {
            enter(dialog, one.texts);
            dialog.Press(IDOK);
            script.AnswerBox(one.refusal, IDOK);
            script.Settle(dialog.Handle());
            EXPECT_TRUE(dialog.Item(one.focus).HasFocus()) << one.refusal;
        }
        enter(dialog, {"J\xFCrgen", "p\xE4ss word&", "localhost:8443 ", folder});
        dialog.Press(IDC_HIDDEN);
        EXPECT_TRUE(veltest::SavePicture(dialog.Handle(), "rasko-options"));
        dialog.Press(IDOK);
    });
    EXPECT_EQ(stored, IDOK);
    const auto state = [] {
        const rasko::Settings settings = rasko::Settings::Load();
        const auto kept = rasko::LoadCredentials("localhost:8443");
        return std::vector<std::string>{settings.target.GetString(), settings.folder.GetString(),
                                        settings.hidden ? "hidden" : "shown", kept ? kept->user : "",
                                        kept ? std::string(kept->password.View()) : ""};
    };
    const std::vector<std::string> expected = {"localhost:8443", folder, "hidden", "J\xC3\xBCrgen",
                                               "p\xC3\xA4ss word&"};
    EXPECT_EQ(state(), expected);

    BYTE raw[2000];
    DWORD size = sizeof raw;
    ASSERT_EQ(RegGetValueA(HKEY_CURRENT_USER, "Software\\Veltrix\\Rasko\\Credentials", "localhost:8443",
                           RRF_RT_REG_BINARY, nullptr, raw, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(std::string(raw, raw + size).find("ss word"), std::string::npos) << "kept as it is";

    // What is kept is shown, but not the password; OK without one keeps it, Cancel keeps everything.
    for (const int end : {IDOK, IDCANCEL})
    {
        const INT_PTR result = run([&](veltest::DialogScript& script) {
            const veltest::Dialog dialog = script.WaitForDialog("Veltrix Rasko Options");
            EXPECT_EQ(dialog.Item(IDC_USER).Text(), "J\xFCrgen");
            EXPECT_EQ(dialog.Item(IDC_PASSWORD).Text(), "");
            EXPECT_TRUE(dialog.Item(IDC_HIDDEN).IsChecked());
            if (end == IDCANCEL)
            {
                enter(dialog, {"bert", "other", "h", "C:\\"});
                dialog.Press(IDC_HIDDEN);
            }
            dialog.Press(end);
        });
        EXPECT_EQ(result, end);
        EXPECT_EQ(state(), expected);
    }
    run([&](veltest::DialogScript& script) {
        const veltest::Dialog dialog = script.WaitForDialog("Veltrix Rasko Options");
        dialog.Press(IDC_FORGET);
        script.AnswerBox(
            "Do you want to remove the user name and the password for localhost:8443 from this computer?",
            IDYES);
        script.Settle(dialog.Handle());
        EXPECT_EQ(dialog.Item(IDC_USER).Text(), "");
        EXPECT_FALSE(dialog.Item(IDC_FORGET).IsEnabled());
        dialog.Press(IDCANCEL);
    });
    EXPECT_EQ(rasko::LoadCredentials("localhost:8443"), std::nullopt);
}
} // namespace

// The transfer program's windows as they show.
#include "suite/rasko/program/credentials.h"
#include "suite/rasko/program/raskowindow.h"
#include "tests/support/dialogquality.h"
#include "tests/support/mfctestprogram.h"
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
    const struct
    {
        int type;
        const char* patient;
    } tasks[] = {{dbSRaskoTask::UPLOAD, "Lee, Ann - A12"}, {dbSRaskoTask::DOWNLOAD, "Boyle, Bert - B7"}};
    for (const auto& one : tasks)
    {
        dbSRaskoTask task;
        task.nType = one.type;
        task.strDescription = one.patient;
        task.strQueueComputer = rasko::ComputerName();
        dbCRaskoTasksContainer::InsertRow(task);
    }
    CRaskoWindow::RegisterWindowClass();
    CRaskoWindow window;
    ASSERT_TRUE(window.Open());
    window.ShowWindow(SW_SHOW);
    window.SendMessage(RegisterWindowMessageA("WmVeltrixRasko3741"));
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
    // A row that somebody takes out of the table is gone here too.
    dbSRaskoTask row;
    dbCRaskoTasksContainer pending;
    pending.LoadPendingOfComputer(rasko::ComputerName());
    row = pending[0];
    row.nStatus = rasko::Finished;
    dbCRaskoTasksContainer::UpdateRow(row);
    window.SendMessage(RegisterWindowMessageA("WmVeltrixRasko3741"));
    EXPECT_EQ(ListView_GetItemCount(list), 1);
    window.DestroyWindow();
    Pump();
}
} // namespace

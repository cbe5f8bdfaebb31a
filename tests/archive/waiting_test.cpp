// The archive dialog while an operation is under way.
#include "tests/archive/archivefixture.h"
#include "tests/support/steps.h"

#include <filesystem>

using testing::IsEmpty;
using veltest::Dialog;
using veltest::DialogScript;

namespace
{
HWND FindChoice()
{
    return ::FindWindow(nullptr, "Archive Patient Files");
}
} // namespace

TEST_F(ArchiveDialogTest, TakesNeitherOKNorCancelHoweverTheyCome)
{
    const auto post = [](UINT message, WPARAM wParam) {
        return [=](HWND hChoice) {
            const HWND hFocus = ::GetDlgItem(hChoice, IDC_ARC_GET_ARCHIVE);
            const bool bKey = message == WM_KEYDOWN || message == WM_SYSKEYDOWN;
            ::PostMessage(bKey ? hFocus : hChoice, message, wParam, 0);
        };
    };
    const std::function<void(HWND)> ways[] = {
        post(WM_KEYDOWN, VK_RETURN),
        [](HWND hChoice) { // would choose another operation
            for (const UINT message : {WM_KEYDOWN, WM_KEYUP})
                ::PostMessage(::GetDlgItem(hChoice, IDC_ARC_GET_INTERNET), message, VK_SPACE, 0);
        },
        post(WM_SYSKEYDOWN, VK_F4),
        post(WM_COMMAND, IDOK),
        post(WM_CLOSE, 0),
        [](HWND hChoice) { ::PostMessage(::GetDlgItem(hChoice, IDOK), BM_CLICK, 0, 0); },
        [](HWND hChoice) {
            // All windows of the thread: the hidden dialog is among them.
            ::EnumThreadWindows(
                ::GetWindowThreadProcessId(hChoice, nullptr),
                [](HWND hWnd, LPARAM) { return ::PostMessage(hWnd, WM_COMMAND, IDCANCEL, 0); }, 0);
        },
    };
    m_practice.WriteFile("archive\\A1.kaz", "no archive");
    Play(ARCHIVE_OP_LOAD, {}, {Archive("A1")}, [&](DialogScript& script) {
        // The box of a failed operation holds the status thread, so that the dialog waits.
        const Dialog box = script.WaitForBox("Error opening archive file.");
        const HWND hChoice = FindChoice();
        ASSERT_TRUE(hChoice);
        EXPECT_FALSE(::IsWindowEnabled(hChoice));
        for (const auto& way : ways)
            way(hChoice);
        script.Settle(hChoice);
        EXPECT_TRUE(::IsWindowVisible(hChoice));
        EXPECT_EQ(::IsDlgButtonChecked(hChoice, IDC_ARC_GET_ARCHIVE), unsigned{BST_CHECKED});
        box.Press(IDOK);
        script.AnswerBox("Error has occured when loading the patient from Archive", IDOK);
    });
}

TEST_F(ArchiveDialogTest, TheHostMayCloseMeanwhile)
{
    const std::string id = "A1";
    StorePatient(id);
    for (const bool bQuits : {true, false})
    {
        m_practice.WriteFile("archive\\A1.kaz", "somebody's");
        ::SetFileAttributes(Archive(id).c_str(), FILE_ATTRIBUTE_READONLY);
        SaveSeveral({id, "B1"}, IDYES, [&](DialogScript& script) {
            script.WaitForDialogWith(IDC_ARC_OVERWRITE_TEXT).Press(IDYES);
            const Dialog box = script.WaitForBox();
            if (bQuits)
                ::PostThreadMessage(script.UiThread(), WM_QUIT, 7, 0);
            else
                ::PostMessage(m_host, WM_CLOSE, 0, 0);
            script.WaitUntil("the choice to go or the queue to be read",
                             [&] { return bQuits || FindChoice() == nullptr; });
            box.Press(IDOK);
        });
        EXPECT_EQ(m_nQuit, bQuits ? 7 : -1);
        m_nQuit = -1;
    }
    // Neither asked about nor gone on with: the patients are as before, and nobody has them.
    EXPECT_TRUE(IsStored(id));
    EXPECT_EQ(m_patients.IsLocked(id.c_str()), patLockFree);
    EXPECT_EQ(m_practice.ReadFile("archive\\A1.kaz"), "somebody's");
    EXPECT_THAT(NewEvents(), IsEmpty());
    ::SetFileAttributes(Archive(id).c_str(), FILE_ATTRIBUTE_NORMAL);
    std::filesystem::remove(Archive(id));

    // What goes well is finished without asking anybody.
    EXPECT_TRUE(m_host.Open());
    const DWORD nThread = ::GetCurrentThreadId();
    const auto quit = [=] { ::PostThreadMessage(nThread, WM_QUIT, 7, 0); };
    {
        const veltest::AtStep step("save.written", quit);
        Play(ARCHIVE_OP_SAVE, {id}, {}, [](DialogScript& script) { TakeOfferedName(script); });
        EXPECT_EQ(std::exchange(m_nQuit, -1), 7);
        EXPECT_TRUE(IsStored(id));
    }
    UsePractice(2);
    const veltest::AtStep step("place.copied", quit);
    Load(Archive(id));
    EXPECT_EQ(m_nQuit, 7);
    EXPECT_TRUE(IsStored(id));
}

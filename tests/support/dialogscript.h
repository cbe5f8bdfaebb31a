#pragma once

#include "tests/support/messagewatch.h"
#include "tests/support/testwindow.h"

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>

namespace veltest
{

// Ends a script: reported as a failure of the running test together with a listing of the windows present.
class ScriptFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Plays a user while a modal call runs on the thread that constructed it (the user interface thread).
//
//     const INT_PTR result = veltest::RunModal([&] { return dialog.DoModal(); },
//         [](veltest::DialogScript& script)
//         {
//             veltest::Dialog dialog = script.WaitForDialog("Edit Keywords");
//             dialog.Item(IDC_KEYWORD).Type("aligner");
//             dialog.Press(IDOK);
//         });
//
// The script runs on a thread of its own and may use EXPECT_ and ASSERT_ macros. Whatever happens, the modal
// call ends: when the script fails, or ends with a window left open, the test fails and the windows are
// closed. A modal call that returns before the script has ended fails too, unless the script still waits for
// nothing.
class DialogScript
{
public:
    using Script = std::function<void(DialogScript&)>;

    explicit DialogScript(Script script);
    ~DialogScript(); // the modal call has returned; waits for the script to end
    DialogScript(const DialogScript&) = delete;
    DialogScript& operator=(const DialogScript&) = delete;

    // Windows that are visible and enabled; an empty title fits every title. They throw ScriptFailure when
    // none comes up in time.
    Dialog WaitForDialog(const std::string& title);
    Dialog WaitForDialogWith(int controlId);         // the dialog that has this control
    Dialog WaitForBox(const std::string& text = {}); // a message box; empty fits every text
    HWND WaitForWindowOfClass(const std::string& windowClass);
    std::optional<Dialog> FindDialog(const std::string& title);
    std::optional<Dialog> FindBox();

    // Answers the message box with this text (empty: any) by its button, IDYES for example; its whole text.
    std::string AnswerBox(const std::string& text, int button);

    // Chooses an item of the popup menu that is open; its items by their texts (separators as "-").
    std::vector<std::string> WaitForMenu();
    void ChooseMenuItem(const std::string& text);
    void CloseMenu();

    // Polls until the condition holds; throws with the description when it does not in time.
    void WaitUntil(const std::string& description, const std::function<bool()>& condition);

    void Settle(HWND window);     // everything posted to the window's thread has been taken
    void SettleIdle(HWND window); // and its command-update handlers have run since
    void PressKey(HWND window, UINT virtualKey, UINT modifier = 0);
    HWND FocusOf(HWND window); // the focused window of that window's thread, null when none

    DWORD UiThread() const
    {
        return m_uiThread;
    }
    void SetPatience(DWORD milliseconds)
    {
        m_patience = milliseconds;
    }
    DWORD Patience() const
    {
        return m_patience;
    }

    // All visible windows of this process with their controls.
    static std::string ListWindows();

private:
    void Run() noexcept;
    void CloseEverything();
    bool WaitForReturn(DWORD milliseconds);
    HWND WaitForMatch(const std::string& description, const std::function<bool(HWND)>& matches);
    static HWND FindMatch(const std::function<bool(HWND)>& matches);

    Script m_script;
    DWORD m_uiThread;
    DWORD m_patience;
    MessageWatch m_watch;
    std::thread m_thread;
};

// Runs the modal call on this thread while the script plays the user; returns what the call returned.
template <typename Call> std::invoke_result_t<Call> RunModal(Call call, DialogScript::Script script)
{
    const DialogScript running(std::move(script));
    return call();
}

// The same with a script that begins on the dialog with this title.
template <typename Call>
std::invoke_result_t<Call> RunDialog(Call call, const std::string& title,
                                     const std::function<void(DialogScript&, const Dialog&)>& play)
{
    return RunModal(std::move(call),
                    [&](DialogScript& script) { play(script, script.WaitForDialog(title)); });
}

} // namespace veltest

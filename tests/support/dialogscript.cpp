#include "tests/support/dialogscript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

namespace veltest
{

namespace
{

constexpr DWORD pollInterval = 5;         // milliseconds
constexpr DWORD defaultPatience = 20'000; // a busy machine is not a failure
constexpr DWORD idlePatience = 2'000;
constexpr DWORD firstIdlePatience = 300; // for threads whose windows may have no idle work at all
constexpr UINT messageGetMenu = 0x01E1;  // MN_GETHMENU of a popup menu's window

bool IsDialog(HWND window)
{
    return WindowClass(window) == "#32770" && IsWindowEnabled(window);
}

bool IsBox(HWND window)
{
    const HWND text = GetDlgItem(window, 0xFFFF);
    return IsDialog(window) && text != nullptr && WindowClass(text) == "Static";
}

HWND FirstPopupMenu()
{
    return FindWindowA("#32768", nullptr);
}

// The items by their texts, separators as "-".
std::vector<std::string> MenuItems(HWND menuWindow)
{
    std::vector<std::string> items;
    const auto menu = reinterpret_cast<HMENU>(SendMessageA(menuWindow, messageGetMenu, 0, 0));
    for (int position = 0; position < GetMenuItemCount(menu); ++position)
    {
        const UINT state = GetMenuState(menu, static_cast<UINT>(position), MF_BYPOSITION);
        char text[512] = {};
        GetMenuStringA(menu, static_cast<UINT>(position), text, sizeof text, MF_BYPOSITION);
        items.emplace_back((state & MF_SEPARATOR) != 0 ? "-" : text);
    }
    return items;
}

INPUT KeyInput(UINT virtualKey, DWORD flags)
{
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = static_cast<WORD>(virtualKey);
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyA(virtualKey, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = flags;
    return input;
}

} // namespace

DialogScript::DialogScript(Script script)
    : m_script(std::move(script)), m_uiThread(GetCurrentThreadId()), m_patience(defaultPatience)
{
    MSG message;
    PeekMessageA(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE); // makes sure that there is a queue
    m_thread = std::thread([this] { Run(); });
}

DialogScript::~DialogScript()
{
    m_watch.Release();
    m_thread.join();
}

void DialogScript::Run() noexcept
{
    std::string failure;
    try
    {
        SetThreadDesktop(
            GetThreadDesktop(m_uiThread)); // a new thread may begin on the process's first desktop
        m_script(*this);
    }
    catch (const std::exception& thrown)
    {
        failure = thrown.what();
    }
    catch (...)
    {
        failure = "the script threw an unknown exception";
    }
    try
    {
        const bool failed = !failure.empty() || ::testing::Test::HasFatalFailure();
        const bool open = !WaitForReturn(failed ? 0 : m_patience / 2);
        if (open && !failed)
            failure = "the script ended and left windows open";
        if (!failure.empty())
            ADD_FAILURE() << failure << "\nWindows present:\n" << ListWindows();
        CloseEverything();
    }
    catch (...)
    {
        std::fputs("the windows of a failed script could not be closed\n", stdout);
        TerminateProcess(GetCurrentProcess(), 3);
    }
}

bool DialogScript::WaitForReturn(DWORD milliseconds)
{
    const ULONGLONG end = GetTickCount64() + milliseconds;
    while (!m_watch.IsReleased())
    {
        if (GetTickCount64() >= end)
            return false;
        Sleep(pollInterval);
    }
    return true;
}

// Answers what is open until the modal call returns: cancels dialogs, closes menus, and says no to boxes that
// offer no Cancel. A modal call that still does not return cannot be ended from outside: the program ends.
void DialogScript::CloseEverything()
{
    const ULONGLONG end = GetTickCount64() + defaultPatience;
    while (!WaitForReturn(20))
    {
        if (GetTickCount64() >= end)
        {
            std::printf("the modal call cannot be ended; windows present:\n%s\n", ListWindows().c_str());
            TerminateProcess(GetCurrentProcess(), 3);
        }
        if (const HWND menu = FirstPopupMenu())
        {
            PostThreadMessageA(GetWindowThreadProcessId(menu, nullptr), WM_KEYDOWN, VK_ESCAPE, 0);
            continue;
        }
        const HWND window = FindMatch([](HWND candidate) { return IsDialog(candidate); });
        if (window == nullptr)
            continue;
        for (const int button : {IDCANCEL, IDNO, IDABORT, IDOK})
        {
            const HWND control = GetDlgItem(window, button);
            if (button == IDCANCEL || control != nullptr)
            {
                PostMessageA(window, WM_COMMAND, static_cast<WPARAM>(button),
                             reinterpret_cast<LPARAM>(control));
                if (control != nullptr)
                    break;
            }
        }
        Sleep(50);
    }
}

HWND DialogScript::FindMatch(const std::function<bool(HWND)>& matches)
{
    for (const HWND window : TopWindows())
    {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process == GetCurrentProcessId() && IsWindowVisible(window) && matches(window))
            return window;
    }
    return nullptr;
}

HWND DialogScript::WaitForMatch(const std::string& description, const std::function<bool(HWND)>& matches)
{
    HWND found = nullptr;
    WaitUntil(description, [&] {
        found = FindMatch(matches);
        return found != nullptr;
    });
    Settle(found); // it is in its message loop now, with its initialisation done
    return found;
}

Dialog DialogScript::WaitForDialog(const std::string& title)
{
    const auto matches = [&](HWND window) {
        return IsDialog(window) && (title.empty() || WindowText(window) == title);
    };
    return {*this, WaitForMatch("dialog \"" + title + "\"", matches)};
}

Dialog DialogScript::WaitForDialogWith(int controlId)
{
    const auto matches = [&](HWND window) {
        return IsDialog(window) && Dialog(*this, window).Has(controlId);
    };
    return {*this, WaitForMatch("dialog with control " + std::to_string(controlId), matches)};
}

Dialog DialogScript::WaitForBox(const std::string& text)
{
    const auto matches = [&](HWND window) {
        return IsBox(window) && (text.empty() || WindowText(GetDlgItem(window, 0xFFFF)) == text);
    };
    return {*this, WaitForMatch("message box \"" + text + "\"", matches)};
}

HWND DialogScript::WaitForWindowOfClass(const std::string& windowClass)
{
    return WaitForMatch("window of class " + windowClass,
                        [&](HWND window) { return WindowClass(window) == windowClass; });
}

std::optional<Dialog> DialogScript::FindDialog(const std::string& title)
{
    const HWND window =
        FindMatch([&](HWND candidate) { return IsDialog(candidate) && WindowText(candidate) == title; });
    return window != nullptr ? std::optional<Dialog>(Dialog(*this, window)) : std::nullopt;
}

std::optional<Dialog> DialogScript::FindBox()
{
    const HWND window = FindMatch([](HWND candidate) { return IsBox(candidate); });
    return window != nullptr ? std::optional<Dialog>(Dialog(*this, window)) : std::nullopt;
}

std::string DialogScript::AnswerBox(const std::string& text, int button)
{
    const Dialog box = WaitForBox(text);
    std::string whole = box.BoxText();
    box.Press(button);
    box.WaitForClosed();
    return whole;
}

std::vector<std::string> DialogScript::WaitForMenu()
{
    WaitUntil("popup menu", [] { return FirstPopupMenu() != nullptr && IsWindowVisible(FirstPopupMenu()); });
    Settle(FirstPopupMenu());
    return MenuItems(FirstPopupMenu());
}

void DialogScript::ChooseMenuItem(const std::string& text)
{
    const std::vector<std::string> items = WaitForMenu();
    const HWND menu = FirstPopupMenu();
    const DWORD thread = GetWindowThreadProcessId(menu, nullptr);
    const auto chosen = std::find(items.begin(), items.end(), text);
    if (chosen == items.end())
        throw ScriptFailure("the menu has no item \"" + text + "\"");
    std::vector<UINT> keys = {VK_HOME};
    const auto separators = std::count(items.begin(), chosen, "-");
    keys.insert(keys.end(), static_cast<std::size_t>(chosen - items.begin() - separators), VK_DOWN);
    keys.push_back(VK_RETURN);
    for (const UINT key : keys)
        PostThreadMessageA(thread, WM_KEYDOWN, key, 0);
    WaitUntil("the menu to close", [&] { return !IsWindow(menu) || !IsWindowVisible(menu); });
    m_watch.WaitForQueue(thread, m_patience);
}

void DialogScript::CloseMenu()
{
    WaitForMenu();
    const HWND menu = FirstPopupMenu();
    PostThreadMessageA(GetWindowThreadProcessId(menu, nullptr), WM_KEYDOWN, VK_ESCAPE, 0);
    WaitUntil("the menu to close", [&] { return !IsWindow(menu) || !IsWindowVisible(menu); });
}

void DialogScript::WaitUntil(const std::string& description, const std::function<bool()>& condition)
{
    const ULONGLONG end = GetTickCount64() + m_patience;
    while (!condition())
    {
        if (m_watch.IsReleased())
            throw ScriptFailure("the modal call returned while the script waited for " + description);
        if (GetTickCount64() >= end)
            throw ScriptFailure("waited in vain for " + description);
        Sleep(pollInterval);
    }
}

void DialogScript::Settle(HWND window)
{
    const DWORD thread = GetWindowThreadProcessId(window, nullptr);
    if (thread != 0 && !m_watch.WaitForQueue(thread, m_patience))
        throw ScriptFailure("the user interface thread does not read its messages");
}

void DialogScript::SettleIdle(HWND window)
{
    Settle(window);
    if (const DWORD thread = GetWindowThreadProcessId(window, nullptr))
        m_watch.WaitForIdle(thread, m_watch.HasIdled(thread) ? idlePatience : firstIdlePatience);
}

void DialogScript::PressKey(HWND window, UINT virtualKey, UINT modifier)
{
    const DWORD thread = GetWindowThreadProcessId(window, nullptr);
    const HWND top = GetAncestor(window, GA_ROOT);
    WaitUntil("the foreground",
              [&] { return GetForegroundWindow() == top || SetForegroundWindow(top) == FALSE; });
    std::vector<INPUT> inputs = {KeyInput(virtualKey, 0), KeyInput(virtualKey, KEYEVENTF_KEYUP)};
    if (modifier != 0)
    {
        inputs.insert(inputs.begin(), KeyInput(modifier, 0));
        inputs.push_back(KeyInput(modifier, KEYEVENTF_KEYUP));
    }
    const std::uint64_t expected = m_watch.KeysRead(thread) + inputs.size() / 2;
    if (SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT)) != inputs.size())
        throw ScriptFailure("the keyboard input was refused");
    if (!m_watch.WaitForKeys(thread, expected, m_patience))
        throw ScriptFailure("the key did not arrive");
    m_watch.WaitForQueue(thread, m_patience);
}

HWND DialogScript::FocusOf(HWND window)
{
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
    return info.hwndFocus;
}

std::string DialogScript::ListWindows()
{
    std::string listing;
    FindMatch([&](HWND window) {
        listing += DescribeWindow(window) + "\n";
        for (const HWND control : Descendants(window))
            listing += "  " + DescribeWindow(control) + "\n";
        return false;
    });
    return listing.empty() ? "(none)\n" : listing;
}

} // namespace veltest

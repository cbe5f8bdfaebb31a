#include "tests/support/testwindow.h"

#include "tests/support/dialogscript.h"

#include <commctrl.h>
#include <prsht.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

namespace veltest
{

namespace
{

constexpr UINT sendPatience = 20'000; // milliseconds
constexpr UINT stuckPatience = 120'000;

BOOL CALLBACK CollectWindow(HWND window, LPARAM parameter)
{
    reinterpret_cast<std::vector<HWND>*>(parameter)->push_back(window);
    return TRUE;
}

DWORD ButtonType(HWND button)
{
    return static_cast<DWORD>(GetWindowLongPtrA(button, GWL_STYLE)) & BS_TYPEMASK;
}

// Sends a message that may point to memory of the caller's. One that was not answered in time is handled
// later all the same: the memory has to be there then, so that this returns false only afterwards. A thread
// that never handles it ends the program.
bool SendWithin(DWORD patience, HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR& result)
{
    if (SendMessageTimeoutA(window, message, wParam, lParam, SMTO_NORMAL, patience, &result))
        return true;
    DWORD_PTR none = 0;
    if (IsWindow(window) && !SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_NORMAL, stuckPatience, &none))
    {
        std::printf("stuck with message %u: %s\n", message, WindowClass(window).c_str());
        TerminateProcess(GetCurrentProcess(), 3);
    }
    return false;
}

} // namespace

std::string WindowText(HWND window)
{
    DWORD_PTR length = 0;
    if (!SendWithin(sendPatience, window, WM_GETTEXTLENGTH, 0, 0, length))
        return {};
    std::string text(length + 1, '\0');
    DWORD_PTR copied = 0;
    SendWithin(sendPatience, window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()), copied);
    text.resize(std::min<std::size_t>(copied, length));
    return text;
}

std::string WindowClass(HWND window)
{
    std::array<char, 256> name = {};
    GetClassNameA(window, name.data(), static_cast<int>(name.size()));
    return name.data();
}

std::vector<HWND> Descendants(HWND window)
{
    std::vector<HWND> windows;
    EnumChildWindows(window, CollectWindow, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

std::vector<HWND> TopWindows()
{
    std::vector<HWND> windows;
    EnumWindows(CollectWindow, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

std::string DescribeWindow(HWND window)
{
    RECT place = {};
    GetWindowRect(window, &place);
    std::string text = WindowClass(window) + " id " + std::to_string(GetDlgCtrlID(window)) + " \"" +
                       WindowText(window) + "\"";
    text += IsWindowVisible(window) ? "" : " hidden";
    text += IsWindowEnabled(window) ? "" : " disabled";
    return text + " (" + std::to_string(place.left) + "," + std::to_string(place.top) + ")-(" +
           std::to_string(place.right) + "," + std::to_string(place.bottom) + ")";
}

std::string WithoutAccessKeys(const std::string& label)
{
    std::string text;
    for (std::size_t position = 0; position < label.size(); ++position)
    {
        if (label[position] == '&' && position + 1 < label.size())
            ++position;
        text += label[position];
    }
    return text;
}

LRESULT Control::Send(UINT message, WPARAM wParam, LPARAM lParam) const
{
    DWORD_PTR result = 0;
    if (!SendWithin(m_script->Patience(), m_window, message, wParam, lParam, result))
        throw ScriptFailure("no answer to message " + std::to_string(message) + " from a control");
    return static_cast<LRESULT>(result);
}

void Control::Post(UINT message, WPARAM wParam, LPARAM lParam) const
{
    if (!PostMessageA(m_window, message, wParam, lParam))
        throw ScriptFailure("a message could not be posted to a control");
    m_script->Settle(m_window);
}

bool Control::IsListBox() const
{
    return WindowClass(m_window) == "ListBox";
}

bool Control::HasFocus() const
{
    const HWND focus = m_script->FocusOf(m_window);
    return focus == m_window || (focus != nullptr && IsChild(m_window, focus));
}

void Control::Focus() const
{
    HWND dialog = GetParent(m_window);
    while (GetParent(dialog) != nullptr && (GetWindowLongPtrA(dialog, GWL_STYLE) & WS_CHILD) != 0)
        dialog = GetParent(dialog);
    PostMessageA(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(m_window), TRUE);
    m_script->Settle(m_window);
    m_script->WaitUntil("the focus in " + DescribeWindow(m_window), [&] { return HasFocus(); });
}

void Control::Type(const std::string& text) const
{
    if (!HasFocus())
        Focus();
    const HWND target = m_script->FocusOf(m_window); // the edit field inside a combo box
    for (const char letter : text)
        PostMessageA(target, WM_CHAR, static_cast<unsigned char>(letter), 1);
    m_script->Settle(m_window);
}

void Control::Replace(const std::string& text) const
{
    Focus();
    const HWND target = m_script->FocusOf(m_window);
    PostMessageA(target, EM_SETSEL, 0, -1);
    if (text.empty())
        PostMessageA(target, WM_CLEAR, 0, 0);
    Type(text);
}

void Control::SetText(const std::string& text) const
{
    Send(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    m_script->Settle(m_window);
}

void Control::PostKey(UINT virtualKey) const
{
    const auto scan = static_cast<LPARAM>(MapVirtualKeyA(virtualKey, MAPVK_VK_TO_VSC)) << 16;
    PostMessageA(m_window, WM_KEYDOWN, virtualKey, scan | 1);
    PostMessageA(m_window, WM_KEYUP, virtualKey, static_cast<LPARAM>(scan | 0xC0000001));
    m_script->Settle(m_window);
}

void Control::PressKey(UINT virtualKey) const
{
    if (!HasFocus())
        Focus();
    m_script->PressKey(m_window, virtualKey);
}

void Control::Notify(UINT code) const
{
    PostMessageA(GetParent(m_window), WM_COMMAND, MAKEWPARAM(Id(), code), reinterpret_cast<LPARAM>(m_window));
    m_script->Settle(m_window);
}

void Control::Click() const
{
    m_script->WaitUntil("being enabled of " + DescribeWindow(m_window), [&] { return IsEnabled(); });
    Post(BM_CLICK);
}

bool Control::IsChecked() const
{
    return Send(BM_GETCHECK) == BST_CHECKED;
}

std::vector<std::string> Control::Items() const
{
    std::vector<std::string> items;
    const bool list = IsListBox();
    const LRESULT count = Send(list ? LB_GETCOUNT : CB_GETCOUNT);
    for (LRESULT index = 0; index < count; ++index)
    {
        const auto position = static_cast<WPARAM>(index);
        const LRESULT length = Send(list ? LB_GETTEXTLEN : CB_GETLBTEXTLEN, position);
        std::string text(static_cast<std::size_t>(std::max<LRESULT>(length, 0)) + 1, '\0');
        const LRESULT copied =
            Send(list ? LB_GETTEXT : CB_GETLBTEXT, position, reinterpret_cast<LPARAM>(text.data()));
        text.resize(static_cast<std::size_t>(std::max<LRESULT>(copied, 0)));
        items.push_back(std::move(text));
    }
    return items;
}

int Control::Selection() const
{
    return static_cast<int>(Send(IsListBox() ? LB_GETCURSEL : CB_GETCURSEL));
}

std::string Control::SelectedItem() const
{
    const int selection = Selection();
    const std::vector<std::string> items = Items();
    return selection >= 0 && selection < static_cast<int>(items.size())
               ? items[static_cast<std::size_t>(selection)]
               : std::string();
}

void Control::Choose(int index) const
{
    Focus();
    Send(IsListBox() ? LB_SETCURSEL : CB_SETCURSEL, static_cast<WPARAM>(index));
    Notify(CBN_SELCHANGE); // which has the number of LBN_SELCHANGE
    if (!IsListBox())
        Notify(CBN_SELENDOK);
}

void Control::Choose(const std::string& item) const
{
    const std::vector<std::string> items = Items();
    const auto position = std::find(items.begin(), items.end(), item);
    if (position == items.end())
        throw ScriptFailure("no item \"" + item + "\" in " + DescribeWindow(m_window));
    Choose(static_cast<int>(position - items.begin()));
}

void Control::SelectItems(const std::vector<int>& indices) const
{
    Focus();
    Send(LB_SETSEL, FALSE, -1);
    for (const int index : indices)
        Send(LB_SETSEL, TRUE, index);
    Notify(LBN_SELCHANGE);
}

void Control::SetDate(WORD year, WORD month, WORD day) const
{
    SYSTEMTIME date = {};
    date.wYear = year;
    date.wMonth = month;
    date.wDay = day;
    if (Send(DTM_SETSYSTEMTIME, GDT_VALID, reinterpret_cast<LPARAM>(&date)) == 0)
        throw ScriptFailure("the date was refused");
    NMDATETIMECHANGE change = {};
    change.nmhdr = {m_window, static_cast<UINT_PTR>(Id()), DTN_DATETIMECHANGE};
    change.dwFlags = GDT_VALID;
    change.st = date;
    Control(*m_script, GetParent(m_window))
        .Send(WM_NOTIFY, static_cast<WPARAM>(Id()), reinterpret_cast<LPARAM>(&change));
    m_script->Settle(m_window);
}

SYSTEMTIME Control::Date() const
{
    SYSTEMTIME date = {};
    return Send(DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&date)) == GDT_VALID ? date : SYSTEMTIME{};
}

std::vector<std::vector<std::string>> Control::Rows() const
{
    const auto header = reinterpret_cast<HWND>(Send(LVM_GETHEADER));
    const int columns =
        header != nullptr ? static_cast<int>(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0)) : 1;
    std::vector<std::vector<std::string>> rows(static_cast<std::size_t>(Send(LVM_GETITEMCOUNT)));
    for (std::size_t row = 0; row < rows.size(); ++row)
    {
        for (int column = 0; column < columns; ++column)
        {
            std::array<char, 1024> text = {};
            LVITEMA item = {};
            item.iSubItem = column;
            item.pszText = text.data();
            item.cchTextMax = static_cast<int>(text.size());
            Send(LVM_GETITEMTEXTA, row, reinterpret_cast<LPARAM>(&item));
            rows[row].emplace_back(text.data());
        }
    }
    return rows;
}

void Control::SelectRow(int row) const
{
    Focus();
    LVITEMA item = {};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    Send(LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
    item.state = item.stateMask;
    Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    m_script->Settle(m_window);
}

HWND Dialog::TabControl() const
{
    return reinterpret_cast<HWND>(SendMessageA(m_window, PSM_GETTABCONTROL, 0, 0));
}

HWND Dialog::FindItem(int id) const
{
    HWND found = nullptr;
    for (const HWND control : Descendants(m_window))
        if (GetDlgCtrlID(control) == id &&
            (found == nullptr || (!IsWindowVisible(found) && IsWindowVisible(control))))
            found = control;
    return found;
}

bool Dialog::Has(int id) const
{
    return FindItem(id) != nullptr;
}

Control Dialog::Item(int id) const
{
    const HWND control = FindItem(id);
    if (control == nullptr)
        throw ScriptFailure("no control " + std::to_string(id) + " in " + DescribeWindow(m_window));
    return {*m_script, control};
}

void Dialog::Press(const std::string& label) const
{
    for (const HWND control : Descendants(m_window))
        if (IsWindowVisible(control) && WithoutAccessKeys(WindowText(control)) == label)
            return Control(*m_script, control).Click();
    throw ScriptFailure("no control with the text \"" + label + "\" in " + DescribeWindow(m_window));
}

Control Dialog::Focused() const
{
    const HWND focus = m_script->FocusOf(m_window);
    if (focus == nullptr)
        throw ScriptFailure("nothing has the focus in " + DescribeWindow(m_window));
    return {*m_script, focus};
}

void Dialog::PressKey(UINT virtualKey) const
{
    m_script->PressKey(m_window, virtualKey);
}

void Dialog::PressAccessKey(char key) const
{
    m_script->PressKey(m_window, static_cast<UINT>(std::toupper(static_cast<unsigned char>(key))), VK_MENU);
}

void Dialog::Close() const
{
    PostMessageA(m_window, WM_SYSCOMMAND, SC_CLOSE, 0);
    m_script->Settle(m_window);
}

void Dialog::WaitForClosed() const
{
    const HWND window = m_window;
    const ULONGLONG end = GetTickCount64() + m_script->Patience();
    while (IsWindow(window) && IsWindowVisible(window))
    {
        if (GetTickCount64() >= end)
            throw ScriptFailure("did not close: " + DescribeWindow(window));
        Sleep(2);
    }
}

void Dialog::SettleIdle() const
{
    m_script->SettleIdle(m_window);
}

int Dialog::PageIndex() const
{
    const HWND page = Page().Handle();
    return static_cast<int>(SendMessageA(m_window, PSM_HWNDTOINDEX, reinterpret_cast<WPARAM>(page), 0));
}

Dialog Dialog::Page() const
{
    const auto page = reinterpret_cast<HWND>(SendMessageA(m_window, PSM_GETCURRENTPAGEHWND, 0, 0));
    if (page == nullptr)
        throw ScriptFailure("no page in " + DescribeWindow(m_window));
    return {*m_script, page};
}

void Dialog::SelectPage(int index) const
{
    PostMessageA(m_window, PSM_SETCURSEL, static_cast<WPARAM>(index), 0);
    m_script->Settle(m_window);
}

void Dialog::ClickTab(int index) const
{
    RECT place = {};
    const HWND tabs = TabControl();
    if (tabs == nullptr ||
        !SendMessageA(tabs, TCM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&place)))
        throw ScriptFailure("no tab " + std::to_string(index) + " in " + DescribeWindow(m_window));
    const LPARAM point = MAKELPARAM((place.left + place.right) / 2, (place.top + place.bottom) / 2);
    PostMessageA(tabs, WM_LBUTTONDOWN, MK_LBUTTON, point);
    PostMessageA(tabs, WM_LBUTTONUP, 0, point);
    m_script->Settle(m_window);
}

int Dialog::PageCount() const
{
    return static_cast<int>(SendMessageA(TabControl(), TCM_GETITEMCOUNT, 0, 0));
}

std::string Dialog::BoxText() const
{
    return Item(0xFFFF).Text();
}

std::vector<std::string> Dialog::Buttons() const
{
    std::vector<std::string> buttons;
    for (const HWND control : Descendants(m_window))
        if (IsWindowVisible(control) && WindowClass(control) == "Button" &&
            ButtonType(control) <= BS_DEFPUSHBUTTON)
            buttons.push_back(WithoutAccessKeys(WindowText(control)));
    return buttons;
}

// Asked as the dialog manager asks, so that owner-drawn buttons count.
bool IsDefaultButton(HWND button)
{
    return (SendMessageA(button, WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON) != 0;
}

std::string Dialog::DefaultButton() const
{
    for (const HWND control : Descendants(m_window))
        if (IsWindowVisible(control) && WindowClass(control) == "Button" && IsDefaultButton(control))
            return WithoutAccessKeys(WindowText(control));
    return {};
}

bool Dialog::HasIcon(LPCSTR systemIcon) const
{
    const HICON wanted = LoadIconA(nullptr, systemIcon);
    const std::vector<HWND> controls = Descendants(m_window);
    return std::any_of(controls.begin(), controls.end(), [&](HWND control) {
        return WindowClass(control) == "Static" && IsWindowVisible(control) &&
               SendMessageA(control, STM_GETICON, 0, 0) == reinterpret_cast<LRESULT>(wanted);
    });
}

} // namespace veltest

#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace veltest
{

class DialogScript;

// Text, class and description of any window of this process; safe to call from any of its threads.
std::string WindowText(HWND window);
std::string WindowClass(HWND window);
std::vector<HWND> TopWindows();             // of every process on this desktop
std::vector<HWND> Descendants(HWND window); // children of every depth in creation (tab) order
std::string DescribeWindow(HWND window);    // one line: class, id, text, state, place
bool IsDefaultButton(HWND button);
std::string WithoutAccessKeys(const std::string& label); // "&Save && go" becomes "Save & go"

// What a script's thread sees of a window.
class Window
{
public:
    Window(DialogScript& script, HWND window) : m_script(&script), m_window(window)
    {
    }

    HWND Handle() const
    {
        return m_window;
    }
    std::string Text() const
    {
        return WindowText(m_window);
    }
    bool IsEnabled() const
    {
        return IsWindowEnabled(m_window) != FALSE;
    }
    bool IsVisible() const
    {
        return IsWindowVisible(m_window) != FALSE;
    }

protected:
    DialogScript* m_script;
    HWND m_window;
};

// One control of a dialog. What a user would do goes through posted messages, so that a message box opened by
// it does not block the script; every such call returns when the user interface thread has taken the message.
// A failure throws ScriptFailure.
class Control : public Window
{
public:
    using Window::Window;

    int Id() const
    {
        return GetDlgCtrlID(m_window);
    }
    bool HasFocus() const;

    void Focus() const;                          // as the tab key or an access key would
    void Type(const std::string& text) const;    // focuses and appends characters at the caret
    void Replace(const std::string& text) const; // focuses, selects everything and types; empty text deletes
    void SetText(const std::string& text) const; // sets it past every limit of typing
    void PostKey(UINT virtualKey) const;         // key down and up for this window, without a key state
    void PressKey(UINT virtualKey) const;        // focuses, then real input, as from the keyboard
    void Notify(UINT code) const;                // posts WM_COMMAND with this code to the parent
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const; // with a time limit
    void Post(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;

    // Buttons, check boxes and radio buttons.
    void Click() const;
    bool IsChecked() const;

    // Combo boxes and list boxes.
    std::vector<std::string> Items() const;
    int Selection() const;                                   // -1 when nothing is selected
    std::string SelectedItem() const;                        // empty when nothing is selected
    void Choose(int index) const;                            // selects and notifies the dialog
    void Choose(const std::string& item) const;              // the whole text of an item
    void SelectItems(const std::vector<int>& indices) const; // list boxes with multiple selection

    // Date and time pickers. The date is the user's: it is notified to the dialog.
    void SetDate(WORD year, WORD month, WORD day) const;
    SYSTEMTIME Date() const; // year 0 when no date is set

    // List views in report form.
    std::vector<std::vector<std::string>> Rows() const;
    void SelectRow(int row) const;

private:
    bool IsListBox() const;
};

// A dialog, property sheet, property page or message box.
class Dialog : public Window
{
public:
    using Window::Window;

    std::string Title() const
    {
        return Text();
    }
    bool IsOpen() const
    {
        return IsVisible();
    }

    // Controls by id. In a property sheet the visible page is searched first.
    bool Has(int id) const;
    Control Item(int id) const;
    Control Focused() const;

    void Press(int id) const
    {
        Item(id).Click();
    }
    void Press(const std::string& label) const; // without its access key
    void PressKey(UINT virtualKey) const;       // real input into the focused control
    void PressF1() const
    {
        PressKey(VK_F1);
    }
    void PressAccessKey(char key) const; // Alt and the key
    void Close() const;                  // the close box of the caption
    void WaitForClosed() const;
    void SettleIdle() const; // waits for the next pass of command-update handlers

    // Property sheets.
    int PageIndex() const;
    Dialog Page() const;              // the visible page
    void SelectPage(int index) const; // asks the sheet; a page may refuse to be left
    void ClickTab(int index) const;   // by mouse
    int PageCount() const;

    // Message boxes.
    std::string BoxText() const;
    std::vector<std::string> Buttons() const;
    std::string DefaultButton() const;
    bool HasIcon(LPCSTR systemIcon) const; // IDI_QUESTION, IDI_EXCLAMATION, ...

private:
    HWND FindItem(int id) const;
    HWND TabControl() const;
};

} // namespace veltest

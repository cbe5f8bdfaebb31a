#include "suite/dialogs/cededit.h"
#include "suite/dialogs/ctlregister.h"
#include "suite/dialogs/mfcdialog.h"
#include "suite/dialogs/unicodebutton.h"
#include "tests/dialogs/dialogstestres.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"

#include <gtest/gtest.h>

namespace
{

using veltest::Control;
using veltest::Dialog;
using veltest::DialogScript;

class ControlsDialog : public mfcCDialog
{
public:
    ControlsDialog() : mfcCDialog(IDD_CONTROLS)
    {
    }

    CString m_strName;
    cedCEdit m_editName;
    cedCEditID m_editID;
    CUnicodeButton m_button;

protected:
    void DoDataExchange(CDataExchange* pDX) override
    {
        mfcCDialog::DoDataExchange(pDX);
        DDX_Control(pDX, IDC_FAMILY_NAME, m_editName);
        DDX_Control(pDX, IDC_PATIENT_ID, m_editID);
        DDX_Control(pDX, IDC_UNICODE, m_button);
        DDX_Text(pDX, IDC_FAMILY_NAME, m_strName);
    }
};

class ControlsTest : public testing::Test
{
protected:
    ControlsTest()
    {
        for (int i = 0; i < 2; ++i) // a class that is known already is no failure
        {
            EXPECT_TRUE(cttRegisterClass(AfxGetInstanceHandle()));
            EXPECT_TRUE(cedCEdit::RegisterControlClass(AfxGetInstanceHandle()));
        }
    }
    ~ControlsTest() override
    {
        EXPECT_TRUE(cttUnregisterClass(AfxGetInstanceHandle()));
        EXPECT_TRUE(cedCEdit::UnregisterControlClass(AfxGetInstanceHandle()));
    }

    INT_PTR Run(const std::function<void(DialogScript&, const Dialog&)>& script)
    {
        return veltest::RunDialog([&] { return m_dialog.DoModal(); }, "Controls", script);
    }

    ControlsDialog m_dialog;
};

// Number of pixels inside the control that are not its background: text or label.
int InkOf(HWND window)
{
    ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    RECT client = {};
    ::GetClientRect(window, &client);
    const HDC context = ::GetDC(window);
    const COLORREF background = ::GetPixel(context, client.right - 3, client.bottom - 3);
    int ink = 0;
    for (int y = 2; y < client.bottom - 2; ++y)
        for (int x = 2; x < client.right - 2; ++x)
            ink += ::GetPixel(context, x, y) != background ? 1 : 0;
    ::ReleaseDC(window, context);
    return ink;
}

TEST_F(ControlsTest, LabelShowsOnlyInAnEmptyFieldWithoutFocus)
{
    const INT_PTR result = Run([&](DialogScript&, const Dialog& shown) {
        const Control name = shown.Item(IDC_FAMILY_NAME);
        const Control id = shown.Item(IDC_PATIENT_ID);
        id.Focus();
        EXPECT_EQ(name.Text(), "");
        const int labelInk = InkOf(name.Handle());
        EXPECT_GT(labelInk, 50);
        EXPECT_GT(InkOf(shown.Item(IDC_NOTES).Handle()), 50);
        EXPECT_LT(InkOf(id.Handle()), 50) << "has none";
        veltest::ExpectWellMade(shown, "controls-empty");

        name.Focus();
        EXPECT_LT(InkOf(name.Handle()), 50) << "only the caret may show";
        name.Type("M\xFCller & S\xF6hne");
        id.Focus();
        EXPECT_EQ(name.Text(), "M\xFCller & S\xF6hne");
        EXPECT_NE(InkOf(name.Handle()), labelInk);
        name.SetText("");
        EXPECT_EQ(InkOf(name.Handle()), labelInk) << "the label is back once the text is gone";
        name.SetText("Weber");
        shown.Press(IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_STREQ(m_dialog.m_strName, "Weber");
}

TEST_F(ControlsTest, FieldsTakeTheirKeys)
{
    const INT_PTR result = Run([&](DialogScript&, const Dialog& shown) {
        const Control id = shown.Item(IDC_PATIENT_ID);
        id.Type("ab 12-");
        EXPECT_EQ(id.Text(), "ab 12-");
        id.Replace("12345678901234567890123456");
        EXPECT_EQ(id.Text(), "1234567890123456789012345");
        shown.Item(IDC_NOTES).PressKey(VK_RETURN);
        EXPECT_EQ(shown.Item(IDC_NOTES).Text(), "\r\n");
        shown.Item(IDC_NOTES).PressKey(VK_ESCAPE); // leaves the dialog
        shown.WaitForClosed();
    });
    EXPECT_EQ(result, IDCANCEL);
}

TEST_F(ControlsTest, UnicodeButtonKeepsCharactersOutsideTheCodePage)
{
    Run([&](DialogScript&, const Dialog& shown) {
        CUnicodeButton& button = m_dialog.m_button;
        EXPECT_EQ(button.GetUnicodeText(), L"&Name");
        button.SetUnicodeText(L"\x0416\x03A9 &Name");
        EXPECT_EQ(button.GetUnicodeText(), L"\x0416\x03A9 &Name");
        EXPECT_EQ(shown.Item(IDC_UNICODE).Text(), "?O &Name") << "as narrow callers see it";
        const auto inkOfText = [&](LPCWSTR text) {
            button.SetUnicodeText(text);
            ::UpdateWindow(button.m_hWnd);
            return InkOf(button.m_hWnd);
        };
        EXPECT_NE(inkOfText(L"\x0416"), inkOfText(L"\x0406")) << "drawn as they are";
        shown.Press(IDCANCEL);
    });
}

} // namespace

// Shows the service's messages in the system's HTML dialog.
#include "cloud/message/messagepage.h"
#include "cloud/res/cloudres.h"
#include "cloud/xml/codepage.h"
#include "cloud/xml/velxml.h"

#include <afxwin.h>
#include <mshtmhst.h>

#include <array>

namespace
{
/// The system's HTML dialog, and the library it comes from.
class HtmlDialog
{
public:
    HtmlDialog() : m_hLibrary(::LoadLibrary("MSHTML.DLL"))
    {
        if (m_hLibrary != nullptr)
            m_pfnShow = reinterpret_cast<SHOWHTMLDIALOGFN*>(
                reinterpret_cast<void*>(::GetProcAddress(m_hLibrary, "ShowHTMLDialog")));
    }
    ~HtmlDialog()
    {
        if (m_hLibrary != nullptr)
            ::FreeLibrary(m_hLibrary);
    }
    HtmlDialog(const HtmlDialog&) = delete;
    HtmlDialog& operator=(const HtmlDialog&) = delete;

    bool IsThere() const
    {
        return m_pfnShow != nullptr;
    }

    HRESULT Show(HWND hParent, std::wstring_view address, std::wstring_view argument) const
    {
        velComPtr<IMoniker> moniker;
        HRESULT nResult = ::CreateURLMoniker(nullptr, velBstr(address).Get(), moniker.Receive());
        if (FAILED(nResult))
            return nResult;
        velVariant arguments(argument);
        velVariant returned;
        std::wstring options =
            L"dialogHeight: 380px; dialogWidth: 550px; edge: Raised; center: Yes; help: No; resizable: Yes";
        return m_pfnShow(hParent, moniker.Get(), &arguments, options.data(), &returned);
    }

private:
    HMODULE m_hLibrary;
    SHOWHTMLDIALOGFN* m_pfnShow = nullptr;
};

cloud::MessagePage PageOf(CVelXML& xml, LPCTSTR pszReply)
{
    if (!xml.LoadXml(pszReply))
        return cloud::MalformedMessagePage();
    std::vector<cloud::ServiceMessage> messages(
        static_cast<std::size_t>(xml.SelectCount("//response/message")));
    int nIndex = 0;
    for (cloud::ServiceMessage& message : messages)
    {
        const auto attribute = [&](LPCTSTR pszName) {
            CString strValue;
            xml.GetAttribute(nIndex, pszName, strValue);
            return std::string(strValue.GetString());
        };
        message.text = xml.GetText(nIndex).GetString();
        message.link = attribute("link");
        message.linkName = attribute("linkname");
        message.action = attribute("action");
        ++nIndex;
    }
    return cloud::BuildMessagePage(messages);
}
} // namespace

int CVelXML::ShowServerMessage(LPCTSTR pszReply)
{
    const cloud::MessagePage page = PageOf(*this, pszReply);
    const int nResult = page.stop ? -1 : 0;
    const HtmlDialog dialog;
    if (!dialog.IsThere())
    {
        AfxMessageBox(AFX_IDP_FAILED_TO_CREATE_DIALOG);
        return nResult;
    }
    std::array<char, MAX_PATH> path{};
    ::GetModuleFileName(AfxGetInstanceHandle(), path.data(), static_cast<DWORD>(path.size()));
    const std::wstring address = L"res://" + velWide(path.data()) + L"/MESSAGE_TEMPLATE";
    const CWnd* const pParent = AfxGetMainWnd();
    if (FAILED(dialog.Show(pParent == nullptr ? ::GetActiveWindow() : pParent->m_hWnd, address,
                           velWide(page.body))))
    {
        CString strText, strCaption;
        strText.LoadString(IDS_CLD_HTML_FAILED);
        strCaption.LoadString(IDS_CLD_CAPTION);
        ::MessageBox(::GetActiveWindow(), strText, strCaption, MB_OK | MB_ICONSTOP);
    }
    return nResult;
}

#include "cloud/xml/velxml.h"

#include "cloud/protocol/commands.h"
#include "cloud/xml/codepage.h"
#include "cloud/xml/xmlguard.h"
#include "suite/util/velini.h"

namespace
{
constexpr CLSID ClassDocument60 = {
    0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
constexpr IID InterfaceDocument2 = {
    0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

void SetProperty(IXMLDOMDocument2* pDocument, const wchar_t* pszName, const VARIANT& value)
{
    // A parser that does not know a property has nothing that it would restrict.
    pDocument->setProperty(velBstr(pszName).Get(), value);
}
} // namespace

CVelXML::CVelXML()
    : m_bComInitialised(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))),
      m_hasher(cloud::IsFipsOn(velGetIniString("defaults", "FIPS").GetString()))
{
    m_pDocument = NewDocument();
}

CVelXML::~CVelXML()
{
    m_selected.clear();
    m_pDocument = {};
    if (m_bComInitialised)
        ::CoUninitialize();
}

velComPtr<IXMLDOMDocument2> CVelXML::NewDocument()
{
    velComPtr<IXMLDOMDocument2> document;
    if (FAILED(::CoCreateInstance(ClassDocument60, nullptr, CLSCTX_INPROC_SERVER, InterfaceDocument2,
                                  document.ReceiveVoid())))
        return {};
    document->put_async(VARIANT_FALSE);
    document->put_validateOnParse(VARIANT_FALSE);
    document->put_resolveExternals(VARIANT_FALSE);
    document->put_preserveWhiteSpace(VARIANT_TRUE);
    SetProperty(document.Get(), L"SelectionLanguage", velVariant(L"XPath"));
    velVariant yes;
    yes.vt = VT_BOOL;
    yes.boolVal = VARIANT_TRUE;
    SetProperty(document.Get(), L"ProhibitDTD", yes);
    return document;
}

BOOL CVelXML::LoadXml(LPCTSTR pszXml)
{
    m_selected.clear();
    m_bLossy = false;
    if (!m_pDocument)
        return FALSE;
    VARIANT_BOOL bLoaded = VARIANT_FALSE;
    const std::string_view text = pszXml == nullptr ? std::string_view() : std::string_view(pszXml);
    if (cloud::IsXmlAcceptable(text))
        m_pDocument->loadXML(velBstr(velDecodeXml(text)).Get(), &bLoaded);
    velComPtr<IXMLDOMDocumentType> type;
    // The guard has seen to it; texts of a document with a type are never asked for.
    if (bLoaded != VARIANT_FALSE && m_pDocument->get_doctype(type.Receive()) == S_OK)
        bLoaded = VARIANT_FALSE;
    if (bLoaded == VARIANT_FALSE)
    {
        VARIANT_BOOL bIgnored = VARIANT_FALSE;
        m_pDocument->loadXML(velBstr(L"").Get(), &bIgnored);
    }
    return bLoaded != VARIANT_FALSE;
}

int CVelXML::SelectCount(LPCTSTR pszXPath)
{
    m_selected = Select(m_pDocument.Get(), velWide(pszXPath).c_str());
    return static_cast<int>(m_selected.size());
}

BOOL CVelXML::GetAttribute(int nIndex, LPCTSTR pszName, CString& strValue)
{
    strValue.Empty();
    if (nIndex < 0 || nIndex >= static_cast<int>(m_selected.size()))
        return FALSE;
    BOOL bFound = FALSE;
    strValue =
        Attribute(m_selected[static_cast<std::size_t>(nIndex)].Get(), velWide(pszName).c_str(), &bFound);
    return bFound;
}

CString CVelXML::GetText(int nIndex)
{
    if (nIndex < 0 || nIndex >= static_cast<int>(m_selected.size()))
        return {};
    return Text(m_selected[static_cast<std::size_t>(nIndex)].Get());
}

HRESULT CVelXML::GetFileSignature(LPCTSTR pszPath, CString& strSignature) const
{
    return m_hasher.GetHash(pszPath, strSignature);
}

std::vector<CVelXML::Node> CVelXML::Select(IXMLDOMNode* pFrom, const wchar_t* pszXPath) const
{
    std::vector<Node> nodes;
    velComPtr<IXMLDOMNodeList> list;
    if (pFrom == nullptr || pFrom->selectNodes(velBstr(pszXPath).Get(), list.Receive()) != S_OK || !list)
        return nodes;
    Node node;
    // By its own position: access by index would count from the start each time.
    while (list->nextNode(node.Receive()) == S_OK && node)
        nodes.push_back(node);
    return nodes;
}

CString CVelXML::Text(IXMLDOMNode* pNode) const
{
    velBstr text;
    pNode->get_text(text.Receive());
    return velNarrow(text.View(), &m_bLossy);
}

CString CVelXML::Attribute(IXMLDOMNode* pNode, const wchar_t* pszName, BOOL* pbFound) const
{
    velComPtr<IXMLDOMElement> element;
    velVariant value;
    const bool bFound = SUCCEEDED(pNode->QueryInterface(IID_IXMLDOMElement, element.ReceiveVoid())) &&
                        element->getAttribute(velBstr(pszName).Get(), &value) == S_OK && value.vt == VT_BSTR;
    if (pbFound != nullptr)
        *pbFound = bFound;
    if (!bFound || value.bstrVal == nullptr)
        return {};
    return velNarrow({value.bstrVal, ::SysStringLen(value.bstrVal)}, &m_bLossy);
}

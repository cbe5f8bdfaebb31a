#include "cloud/xml/documentwriter.h"

#include "cloud/xml/codepage.h"
#include "cloud/xml/xmlguard.h"

namespace
{
void Require(HRESULT nResult)
{
    if (FAILED(nResult))
        AfxThrowMemoryException();
}

std::u16string Utf16(std::wstring_view text)
{
    return {text.begin(), text.end()};
}

std::string NameOf(IXMLDOMNode* pNode)
{
    velBstr name;
    Require(pNode->get_nodeName(name.Receive()));
    return velNarrow(name.View()).GetString();
}

std::wstring ValueOf(IXMLDOMNode* pNode)
{
    velVariant value;
    Require(pNode->get_nodeValue(&value));
    return value.vt == VT_BSTR && value.bstrVal != nullptr
               ? std::wstring(value.bstrVal, ::SysStringLen(value.bstrVal))
               : std::wstring();
}
} // namespace

velDocumentWriter::velDocumentWriter(velComPtr<IXMLDOMDocument2> document) : m_document(std::move(document))
{
    AddInstruction(L"xml", L"version='1.0'");
    AddInstruction(L"xml-stylesheet", L"type='text/xml' href='dom.xsl'");
}

void velDocumentWriter::AddInstruction(const wchar_t* pszTarget, const wchar_t* pszData)
{
    velComPtr<IXMLDOMProcessingInstruction> instruction;
    Require(m_document->createProcessingInstruction(velBstr(pszTarget).Get(), velBstr(pszData).Get(),
                                                    instruction.Receive()));
    Append(m_document.Get(), instruction.Get());
}

void velDocumentWriter::AddComment(const wchar_t* pszText)
{
    velComPtr<IXMLDOMComment> comment;
    Require(m_document->createComment(velBstr(pszText).Get(), comment.Receive()));
    Append(m_document.Get(), comment.Get());
}

velDocumentWriter::Node velDocumentWriter::AddElement(const wchar_t* pszName)
{
    m_document->AddRef();
    return AddElement(Node(m_document.Get()), pszName);
}

velDocumentWriter::Node velDocumentWriter::AddElement(const Node& parent, const wchar_t* pszName)
{
    velComPtr<IXMLDOMElement> element;
    Require(m_document->createElement(velBstr(pszName).Get(), element.Receive()));
    Append(parent.Get(), element.Get());
    element->AddRef();
    return Node(element.Get());
}

void velDocumentWriter::Append(IXMLDOMNode* pParent, IXMLDOMNode* pChild)
{
    Node added;
    Require(pParent->appendChild(pChild, added.Receive()));
}

bool velDocumentWriter::Convert(LPCTSTR pszText, std::wstring& wide)
{
    wide = velWide(pszText);
    if (cloud::IsXmlText(Utf16(wide)))
        return true;
    m_bTextLost = true;
    return false;
}

void velDocumentWriter::SetText(const Node& element, const wchar_t* pszName, LPCTSTR pszValue, bool bForced)
{
    std::wstring wide;
    if ((*pszValue == 0 && !bForced) || !Convert(pszValue, wide))
        return;
    // Every node that is handed out is an element.
    Require(
        static_cast<IXMLDOMElement*>(element.Get())->setAttribute(velBstr(pszName).Get(), velVariant(wide)));
}

void velDocumentWriter::SetInteger(const Node& element, const wchar_t* pszName, int nValue)
{
    SetText(element, pszName, std::to_string(nValue).c_str());
}

void velDocumentWriter::SetDate(const Node& element, const wchar_t* pszName, const velCDate& date,
                                bool bForced)
{
    SetText(element, pszName, date.ToISO(), bForced);
}

void velDocumentWriter::SetContent(const Node& element, LPCTSTR pszText)
{
    // Parsers differ in what they make of CR: lines end in LF inside a document.
    CString strText(pszText);
    strText.Replace("\r\n", "\n");
    std::wstring wide;
    if (!Convert(strText, wide))
        return;
    velComPtr<IXMLDOMText> text;
    Require(m_document->createTextNode(velBstr(wide).Get(), text.Receive()));
    Append(element.Get(), text.Get());
}

BOOL velDocumentWriter::Finish(CString& strXml) const
{
    std::string text;
    Node child;
    Require(m_document->get_firstChild(child.Receive()));
    while (child)
    {
        WriteNode(child.Get(), text);
        Node next;
        child->get_nextSibling(next.Receive());
        child = std::move(next);
    }
    strXml = CString(text.data(), static_cast<int>(text.size()));
    return !m_bTextLost;
}

void velDocumentWriter::WriteNode(IXMLDOMNode* pNode, std::string& text)
{
    DOMNodeType type = NODE_INVALID;
    Require(pNode->get_nodeType(&type));
    switch (type)
    {
    case NODE_PROCESSING_INSTRUCTION:
        text += "<?" + NameOf(pNode) + " " + velNarrow(ValueOf(pNode)).GetString() + "?>\r\n";
        break;
    case NODE_COMMENT:
        text += "<!--" + std::string(velNarrow(ValueOf(pNode))) + "-->\r\n";
        break;
    case NODE_TEXT:
        text += cloud::EscapeXml(Utf16(ValueOf(pNode)));
        break;
    case NODE_ELEMENT:
        WriteElement(pNode, text);
        break;
    default:
        break;
    }
}

void velDocumentWriter::WriteElement(IXMLDOMNode* pNode, std::string& text)
{
    const std::string name = NameOf(pNode);
    text += "<" + name;
    velComPtr<IXMLDOMNamedNodeMap> attributes;
    Node item;
    if (pNode->get_attributes(attributes.Receive()) == S_OK && attributes)
    {
        while (attributes->nextNode(item.Receive()) == S_OK && item)
            text += " " + NameOf(item.Get()) + "=\"" + cloud::EscapeXml(Utf16(ValueOf(item.Get()))) + "\"";
    }
    Node child;
    if (pNode->get_firstChild(child.Receive()) != S_OK || !child)
    {
        text += "/>";
        return;
    }
    text += ">";
    while (child)
    {
        WriteNode(child.Get(), text);
        Node next;
        child->get_nextSibling(next.Receive());
        child = std::move(next);
    }
    text += "</" + name + ">";
}

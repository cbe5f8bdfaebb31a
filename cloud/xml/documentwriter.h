// Building a document in the system's parser, and writing it out.
#pragma once

#include "cloud/xml/comptr.h"
#include "suite/util/veldate.h"

#include <afx.h>
#include <msxml2.h>

#include <string>

/// Builds one document from its beginning to its end. A text that XML cannot hold is left out and remembered;
/// failures of the parser throw CMemoryException. Inside cloud/xml only.
class velDocumentWriter
{
public:
    using Node = velComPtr<IXMLDOMNode>;

    /// Begins the document with its two processing instructions.
    explicit velDocumentWriter(velComPtr<IXMLDOMDocument2> document);

    void AddComment(const wchar_t* pszText);
    /// The root element.
    Node AddElement(const wchar_t* pszName);
    Node AddElement(const Node& parent, const wchar_t* pszName);

    /// A text or date that is empty is left out, unless it is forced.
    void SetText(const Node& element, const wchar_t* pszName, LPCTSTR pszValue, bool bForced = false);
    void SetInteger(const Node& element, const wchar_t* pszName, int nValue);
    void SetDate(const Node& element, const wchar_t* pszName, const velCDate& date, bool bForced = false);
    void SetContent(const Node& element, LPCTSTR pszText);

    /// FALSE when a text was left out.
    BOOL Finish(CString& strXml) const;

private:
    void AddInstruction(const wchar_t* pszTarget, const wchar_t* pszData);
    void Append(IXMLDOMNode* pParent, IXMLDOMNode* pChild);
    bool Convert(LPCTSTR pszText, std::wstring& wide);
    static void WriteNode(IXMLDOMNode* pNode, std::string& text);
    static void WriteElement(IXMLDOMNode* pNode, std::string& text);

    velComPtr<IXMLDOMDocument2> m_document;
    bool m_bTextLost = false;
};

/// A collection element that comes into being with its first member.
class velCollectionWriter
{
public:
    velCollectionWriter(velDocumentWriter& writer, velDocumentWriter::Node parent, const wchar_t* pszName,
                        const wchar_t* pszMember)
        : m_writer(writer), m_parent(std::move(parent)), m_pszName(pszName), m_pszMember(pszMember)
    {
    }

    velDocumentWriter::Node AddMember()
    {
        if (!m_collection)
            m_collection = m_writer.AddElement(m_parent, m_pszName);
        return m_writer.AddElement(m_collection, m_pszMember);
    }

private:
    velDocumentWriter& m_writer;
    velDocumentWriter::Node m_parent;
    velDocumentWriter::Node m_collection;
    const wchar_t* m_pszName;
    const wchar_t* m_pszMember;
};

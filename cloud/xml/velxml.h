// The module's XML: the documents that it sends, and the reading of those that come.
#pragma once

#include "cloud/exchange/filechoice.h"
#include "cloud/exchange/record.h"
#include "cloud/xml/comptr.h"

#include "suite/patients/files/filehash.h"
#include "suite/patients/records/dbemails.h"
#include "suite/patients/records/dbperson.h"

#include <afx.h>
#include <msxml2.h>

#include <string>
#include <vector>

class dbCPatient;

/// One document of the system's XML parser (MSXML 6.0). What is loaded is not trusted (xml/xmlguard.h). Text
/// is in the system code page; documents that are built are ASCII, everything beyond it as references. User
/// interface thread, with COM initialised by the host or here.
class CVelXML
{
public:
    CVelXML();
    ~CVelXML();
    CVelXML(const CVelXML&) = delete;
    CVelXML& operator=(const CVelXML&) = delete;

    /// FALSE when the parser is not installed; everything then finds and builds nothing.
    BOOL IsAvailable() const
    {
        return m_pDocument ? TRUE : FALSE;
    }

    /// The shared record of a patient with its files as the working folder holds them, those that are chosen.
    /// FALSE when a text of the patient has characters that no document can hold.
    BOOL BuildPatientXml(const dbCPatient& patient, CString& strXml,
                         const cloud::FileChoice& choice = cloud::FileChoice::Everything());
    /// Bytes of the files that the last BuildPatientXml has named.
    __int64 GetFileBytes() const
    {
        return m_nFileBytes;
    }
    /// The list of files of a transfer. FALSE as above.
    BOOL BuildUploadManifest(const cloud::ManifestPatient& patient,
                             const std::vector<cloud::ManifestFile>& files, CString& strXml);

    /// FALSE, and every query finds nothing, when the text is no document or not an acceptable one.
    BOOL LoadXml(LPCTSTR pszXml);
    /// The nodes that match, 0 when there are none or the expression is no XPath. They are the ones that the
    /// next calls count, from 0.
    int SelectCount(LPCTSTR pszXPath);
    /// FALSE, and strValue empty, when there is no such node or attribute.
    BOOL GetAttribute(int nIndex, LPCTSTR pszName, CString& strValue);
    /// The text of a node with everything below it.
    CString GetText(int nIndex);
    /// Whether something that was read since LoadXml had characters that the code page has not.
    BOOL IsLossy() const
    {
        return m_bLossy;
    }

    /// A record that the service delivered. FALSE unless it has exactly one patient with a patVeltrixID.
    BOOL ReadRecord(cloud::Record& record);
    /// What only the form of BuildPatientXml holds (addresses, telephones, notes and so on), from the
    /// record's second patient element; everything else of the patient stays. FALSE when there is no such
    /// element.
    BOOL ReadPatientDetails(dbCPatient& patient);
    /// The e-mail addresses around the patient, from the same element.
    dbCPatientEmailsContainer ReadPatientEmails() const;

    /// As patCFileHasher::GetHash, by the algorithm that the setting FIPS names.
    HRESULT GetFileSignature(LPCTSTR pszPath, CString& strSignature) const;

    /// Shows the service's messages (message/servermessage.cpp). -1 when one of them forbids to go on,
    /// otherwise 0.
    int ShowServerMessage(LPCTSTR pszReply);

    using Node = velComPtr<IXMLDOMNode>;

private:
    static velComPtr<IXMLDOMDocument2> NewDocument();
    std::vector<Node> Select(IXMLDOMNode* pFrom, const wchar_t* pszXPath) const;
    CString Text(IXMLDOMNode* pNode) const;
    CString Attribute(IXMLDOMNode* pNode, const wchar_t* pszName, BOOL* pbFound = nullptr) const;
    template <typename Table, typename Object>
    void ReadAttributes(IXMLDOMNode* pNode, const Table& table, Object& object) const;
    template <typename Object, typename Table>
    std::vector<Object> ReadElements(IXMLDOMNode* pParent, const wchar_t* pszXPath, const Table& table) const;
    void ReadAddresses(IXMLDOMNode* pParent, dbTList<dbCAddress>& addresses) const;
    cloud::RecordTimepoint ReadTimepoint(IXMLDOMNode* pTimepoint) const;

    const bool m_bComInitialised;
    velComPtr<IXMLDOMDocument2> m_pDocument;
    std::vector<Node> m_selected;
    mutable bool m_bLossy = false;
    __int64 m_nFileBytes = 0;
    const patCFileHasher m_hasher;
};

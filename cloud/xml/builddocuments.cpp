// The two documents that the module sends.
#include "cloud/exchange/patientfiles.h"
#include "cloud/xml/attributetables.h"
#include "cloud/xml/documentwriter.h"
#include "cloud/xml/velxml.h"
#include "suite/patients/records/dbemails.h"
#include "suite/patients/velpat.h"
#include "suite/util/velpath.h"

namespace
{
using Node = velDocumentWriter::Node;

/// The patient's record, element by element.
class RecordWriter
{
public:
    RecordWriter(velDocumentWriter& writer, const CVelXML& xml, const dbCPatient& patient,
                 const cloud::FileChoice& choice)
        : m_writer(writer), m_xml(xml), m_patient(patient), m_choice(choice), m_strFolder(velGetDataPath())
    {
    }

    /// Returns the bytes of the files that it names.
    __int64 Write()
    {
        m_writer.AddComment(L"Patient Information");
        m_root = m_writer.AddElement(L"patient");
        WriteIdentity();
        WriteTreatingDoctor();
        WriteEmails();
        WriteReferringDoctors();
        if (!m_patient.GetNotes().IsEmpty())
            m_writer.SetContent(m_writer.AddElement(m_root, L"note"), m_patient.GetNotes());
        velCollectionWriter phones(m_writer, m_root, L"phones", L"phone");
        for (const dbCPhone& phone : m_patient.GetPhones())
        {
            const Node element = phones.AddMember();
            m_writer.SetText(element, L"number", phone.GetNumber());
            m_writer.SetText(element, L"type", phone.GetType());
        }
        WriteAddresses(m_root, m_patient.GetAddresses());
        WriteTimepoints();
        return m_nBytes;
    }

private:
    void WriteIdentity()
    {
        m_writer.SetText(m_root, L"patientid", m_patient.GetID());
        m_writer.SetText(m_root, L"id", m_patient.GetGUID());
        m_writer.SetText(m_root, L"last", m_patient.GetLastname());
        m_writer.SetText(m_root, L"first", m_patient.GetFirstname());
        m_writer.SetDate(m_root, L"birthdate", m_patient.GetBirthdate(), true);
        m_writer.SetText(m_root, L"dob", m_patient.FormatBirthdate());
        m_writer.SetText(m_root, L"gender", std::to_string(m_patient.GetGender()).c_str());
        m_writer.SetInteger(m_root, L"norm", m_patient.GetNorm());
        m_writer.SetText(m_root, L"title", m_patient.GetTitle());
        m_writer.SetText(m_root, L"nickname", m_patient.GetNickname());
    }

    void WriteTreatingDoctor()
    {
        dbCPerson link;
        dbCDoctor doctor;
        if (!m_patient.GetPersonInfo(dbPersonTreatingDoctor, link) || !doctor.Load(link.GetPersonGUID()))
            return;
        const dbCPerson& person = doctor.GetPerson();
        const Node element = m_writer.AddElement(m_root, L"treatingDoctor");
        m_writer.SetText(element, L"id", person.GetPersonGUID());
        m_writer.SetText(element, L"last", person.GetLastname());
        m_writer.SetText(element, L"first", person.GetFirstname());
        m_writer.SetText(element, L"title", person.GetTitle());
        velCollectionWriter emails(m_writer, element, L"emails", L"email");
        dbCPersonEmails list;
        list.LoadByPersonGUID(person.GetPersonGUID());
        for (const CString& strAddress : list)
            m_writer.SetText(emails.AddMember(), L"address", strAddress);
        WriteAddresses(element, person.GetAddresses());
    }

    /// Nothing for a database without the table.
    void WriteEmails()
    {
        dbCPatientEmailsContainer rows;
        if (!dbCPatientEmailsContainer::TableExists())
            return;
        rows.LoadByPatID(m_patient.GetGUID());
        velCollectionWriter emails(m_writer, m_root, L"emailAddresses", L"emailAddress");
        for (const dbSPatientEmail& row : rows)
        {
            const Node element = emails.AddMember();
            for (const auto& attribute : velEmailAttributes)
                m_writer.SetText(element, attribute.pszName, row.*attribute.member);
        }
    }

    void WriteReferringDoctors()
    {
        velCollectionWriter doctors(m_writer, m_root, L"ReferringDoctors", L"ReferringDoctor");
        for (const dbCPatientReferralsRow& row : m_patient.GetReferrals())
        {
            const Node element = doctors.AddMember();
            m_writer.SetText(element, L"id", row.Get_docID());
            m_writer.SetText(element, L"refname",
                             (row.Get_docFirstname() + " " + row.Get_docLastname()).Trim());
            m_writer.SetText(element, L"refemail", row.Get_docEmail());
        }
    }

    void WriteAddresses(const Node& parent, const dbCAddresses& list)
    {
        velCollectionWriter addresses(m_writer, parent, L"addresses", L"address");
        for (const dbCAddress& address : list)
        {
            if (address.IsEmpty())
                continue;
            const Node element = addresses.AddMember();
            for (const auto& attribute : velAddressAttributes)
                m_writer.SetText(element, attribute.pszName, (address.*attribute.get)());
        }
    }

    void WriteTimepoints()
    {
        CStringArray found;
        velFindFiles(m_strFolder + m_patient.GetID() + "*", found);
        std::vector<std::string> names;
        for (INT_PTR i = 0; i < found.GetSize(); ++i)
            names.emplace_back(found.GetAt(i).GetString());
        const auto files = cloud::GroupPatientFiles(names, m_patient.GetID().GetString());

        velCollectionWriter timepoints(m_writer, m_root, L"timepoints", L"timepoint");
        for (const patCTimepoint& timepoint : m_patient.GetTimepoints())
        {
            const auto own = files.find(timepoint.GetNumber());
            WriteTimepoint(timepoints.AddMember(), timepoint,
                           own == files.end() ? cloud::TimepointFiles() : own->second);
        }
    }

    void WriteTimepoint(const Node& element, const patCTimepoint& timepoint,
                        const cloud::TimepointFiles& files)
    {
        m_writer.SetText(element, L"name", timepoint.GetName());
        m_writer.SetText(element, L"tpGUID", timepoint.GettpID());
        const velCDate date = timepoint.GetDate();
        if (date.IsValid())
        {
            CString strDay;
            strDay.Format("%02d/%02d/%04d", date.GetMonth(), date.GetDay(), date.GetYear());
            m_writer.SetText(element, L"date", strDay);
        }
        m_writer.SetText(element, L"file", timepoint.GetBaseFilename());
        velCollectionWriter further(m_writer, element, L"Files", L"file");
        for (const auto& [name, kind] : files.files)
        {
            if (m_choice.Takes(kind))
                WriteFile(further.AddMember(), name, kind);
        }
        velCollectionWriter images(m_writer, element, L"images", L"image");
        for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
        {
            for (int nType = 0; nType < patCImageTypes::GetTypeCount(nGroup); ++nType)
            {
                const auto slot = files.images.find({nGroup, patCImageTypes::GetType(nGroup, nType).chCode});
                if (timepoint.HasImage(nGroup, nType) && slot != files.images.end() &&
                    !slot->second.image.empty())
                    WriteImage(images.AddMember(), timepoint.GetImageInfo(nGroup, nType), slot->second);
            }
        }
    }

    void WriteImage(const Node& element, const patSImageInfo& info, const cloud::ImageFiles& files)
    {
        m_writer.SetText(element, L"title", info.strTitle);
        m_writer.SetText(element, L"note", info.strNote);
        m_writer.SetText(element, L"file", files.image.c_str());
        SetSignature(element, L"signature", files.image);
        if (!files.companion.empty() && m_choice.Takes(cloud::FileKind::Uncropped))
        {
            m_writer.SetText(element, L"vfile", files.companion.c_str());
            SetSignature(element, L"vsignature", files.companion);
        }
        for (const auto& [name, kind] : files.further)
        {
            if (m_choice.Takes(kind))
                WriteFile(m_writer.AddElement(element, L"file"), name, kind);
        }
    }

    void WriteFile(const Node& element, const std::string& name, cloud::FileKind kind)
    {
        m_writer.SetText(element, L"name", name.c_str());
        SetSignature(element, L"signature", name);
        m_writer.SetText(element, L"category", std::string(cloud::CategoryOf(kind)).c_str());
    }

    /// A file that cannot be read has no signature.
    void SetSignature(const Node& element, const wchar_t* pszName, const std::string& file)
    {
        CString strSignature;
        CFileStatus status;
        const CString strPath = m_strFolder + file.c_str();
        m_xml.GetFileSignature(strPath, strSignature);
        if (CFile::GetStatus(strPath, status))
            m_nBytes += static_cast<__int64>(status.m_size);
        m_writer.SetText(element, pszName, strSignature);
    }

    velDocumentWriter& m_writer;
    const CVelXML& m_xml;
    const dbCPatient& m_patient;
    const cloud::FileChoice m_choice;
    const CString m_strFolder;
    Node m_root;
    __int64 m_nBytes = 0;
};
} // namespace

BOOL CVelXML::BuildPatientXml(const dbCPatient& patient, CString& strXml, const cloud::FileChoice& choice)
{
    strXml.Empty();
    velComPtr<IXMLDOMDocument2> document = NewDocument();
    if (!document)
        return FALSE;
    velDocumentWriter writer(std::move(document));
    m_nFileBytes = RecordWriter(writer, *this, patient, choice).Write();
    return writer.Finish(strXml);
}

BOOL CVelXML::BuildUploadManifest(const cloud::ManifestPatient& patient,
                                  const std::vector<cloud::ManifestFile>& files, CString& strXml)
{
    strXml.Empty();
    velComPtr<IXMLDOMDocument2> document = NewDocument();
    if (!document)
        return FALSE;
    velDocumentWriter writer(std::move(document));
    const Node root = writer.AddElement(L"patient");
    writer.SetText(root, L"patFullname", patient.fullName.c_str());
    writer.SetText(root, L"patGUID", patient.guid.c_str());
    writer.SetText(root, L"patID", patient.id.c_str());
    writer.SetText(root, L"frvPatGUID", patient.serviceGuid.c_str());
    writer.SetText(root, L"frvPatId", patient.serviceId.c_str());
    velCollectionWriter images(writer, root, L"images", L"image");
    for (const cloud::ManifestFile& file : files)
    {
        const Node image = images.AddMember();
        writer.SetText(image, L"finalfilename", file.finalName.c_str());
        writer.SetInteger(image, L"imageExists", file.exists ? 1 : 0);
        writer.SetText(image, L"imageNote", file.note.c_str());
        writer.SetText(image, L"imageTitle", file.title.c_str());
        writer.SetText(image, L"imgfileGuid", file.fileGuid.c_str());
        writer.SetText(image, L"catalogGuid", file.catalogGuid.c_str());
        writer.SetText(image, L"imgfilename", file.name.c_str());
        writer.SetText(image, L"patOwnerGuid", file.ownerGuid.c_str());
        writer.SetText(image, L"imgfileSignature", file.signature.c_str());
        writer.SetInteger(image, L"tpNumber", file.timepointNumber);
    }
    return writer.Finish(strXml);
}

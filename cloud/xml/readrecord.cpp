// Reading a record that the service delivered.
#include "cloud/xml/attributetables.h"
#include "cloud/xml/codepage.h"
#include "cloud/xml/velxml.h"
#include "suite/patients/velpat.h"

#include <type_traits>

namespace
{
constexpr const wchar_t* OwnForm = L"//record/patient[not(@patVeltrixID)]";

using cloud::Record;
using cloud::RecordFile;
using cloud::RecordImage;
using cloud::RecordTimepoint;

constexpr velTAttribute<std::string RecordFile::*> FileAttributes[] = {
    {L"name", &RecordFile::name},
    {L"hash", &RecordFile::signature},
    {L"catalogGUID", &RecordFile::catalogGuid},
    {L"category", &RecordFile::category},
};

constexpr velTAttribute<std::string RecordImage::*> ImageAttributes[] = {
    {L"file", &RecordImage::file},      {L"signature", &RecordImage::signature},
    {L"title", &RecordImage::title},    {L"note", &RecordImage::note},
    {L"imageType", &RecordImage::type}, {L"imageGUID", &RecordImage::guid},
    {L"vfile", &RecordImage::viewFile}, {L"vsignature", &RecordImage::viewSignature},
};

constexpr velTAttribute<std::string RecordTimepoint::*> TimepointAttributes[] = {
    {L"name", &RecordTimepoint::name},
    {L"tpDate", &RecordTimepoint::date},
    {L"tpNumber", &RecordTimepoint::number},
    {L"tpGUID", &RecordTimepoint::guid},
};

constexpr velTAttribute<std::string Record::*> PatientAttributes[] = {
    {L"patVeltrixID", &Record::serviceId}, {L"frvPatGUID", &Record::serviceGuid},
    {L"patGUID", &Record::guid},           {L"patientID", &Record::patientId},
    {L"patOwnerGUID", &Record::ownerGuid}, {L"patfirstName", &Record::firstName},
    {L"patlastName", &Record::lastName},   {L"patBirthdate", &Record::birthDate},
    {L"patGender", &Record::gender},
};

constexpr velTAttribute<void (dbCPerson::*)(LPCTSTR)> DoctorAttributes[] = {
    {L"id", &dbCPerson::SetPersonGUID},
    {L"last", &dbCPerson::SetLastname},
    {L"first", &dbCPerson::SetFirstname},
    {L"title", &dbCPerson::SetTitle},
};

constexpr velTAttribute<void (patCPatient::*)(LPCTSTR)> DetailAttributes[] = {
    {L"title", &patCPatient::SetTitle},
    {L"nickname", &patCPatient::SetNickname},
};
} // namespace

/// Fills an object by its table. A text member whose attribute is missing or empty keeps what it has; a
/// setter is given the empty text.
template <typename Table, typename Object>
void CVelXML::ReadAttributes(IXMLDOMNode* pNode, const Table& table, Object& object) const
{
    for (const auto& attribute : table)
    {
        const CString strValue = Attribute(pNode, attribute.pszName);
        if constexpr (std::is_member_function_pointer_v<decltype(attribute.member)>)
            (object.*attribute.member)(strValue);
        else if (!strValue.IsEmpty())
            object.*attribute.member = strValue.GetString();
    }
}

/// The objects of the elements that match.
template <typename Object, typename Table>
std::vector<Object> CVelXML::ReadElements(IXMLDOMNode* pParent, const wchar_t* pszXPath,
                                          const Table& table) const
{
    std::vector<Object> objects;
    for (const Node& node : Select(pParent, pszXPath))
        ReadAttributes(node.Get(), table, objects.emplace_back());
    return objects;
}

cloud::RecordTimepoint CVelXML::ReadTimepoint(IXMLDOMNode* pTimepoint) const
{
    cloud::RecordTimepoint timepoint;
    ReadAttributes(pTimepoint, TimepointAttributes, timepoint);
    timepoint.files = ReadElements<RecordFile>(pTimepoint, L"file", FileAttributes);
    // Below the timepoint itself: a search by its GUID would trust the GUID, and go through the document each
    // time.
    for (const Node& node : Select(pTimepoint, L"Images/image"))
    {
        RecordImage& image = timepoint.images.emplace_back();
        ReadAttributes(node.Get(), ImageAttributes, image);
        image.files = ReadElements<RecordFile>(node.Get(), L"file", FileAttributes);
    }
    return timepoint;
}

BOOL CVelXML::ReadRecord(cloud::Record& record)
{
    record = {};
    const auto records = Select(m_pDocument.Get(), L"//record");
    const auto patients = Select(m_pDocument.Get(), L"//record/patient[@patVeltrixID]");
    if (records.size() != 1 || patients.size() != 1)
        return FALSE;
    record.userGuid = Attribute(records.front().Get(), L"userGUID");
    record.withAcvFiles = Attribute(records.front().Get(), L"downloadACV") == "1";
    ReadAttributes(patients.front().Get(), PatientAttributes, record);
    const bool bLossy = m_bLossy;
    for (const Node& note : Select(records.front().Get(), L"note"))
        record.note = Text(note.Get()).GetString();
    m_bLossy = bLossy; // the note is shown, not stored
    for (const Node& timepoint : Select(m_pDocument.Get(), L"//Timepoints/Timepoint"))
        record.timepoints.push_back(ReadTimepoint(timepoint.Get()));
    return !record.serviceId.empty();
}

BOOL CVelXML::ReadPatientDetails(dbCPatient& patient)
{
    const auto found = Select(m_pDocument.Get(), OwnForm);
    if (found.empty())
        return FALSE;
    IXMLDOMNode* const pPatient = found.front().Get();
    ReadAttributes(pPatient, DetailAttributes, patient);
    patient.SetNorm(atoi(Attribute(pPatient, L"norm")));
    for (const Node& note : Select(pPatient, L"note"))
    {
        CString strNotes = Text(note.Get());
        strNotes.Replace("\r\n", "\n");
        strNotes.Replace("\n", "\r\n");
        patient.SetNotes(strNotes);
    }
    for (const dbSPatientEmail& row : ReadPatientEmails())
    {
        // The patient's own record has the first of them, and the salutation, which nothing else carries.
        if (!patient.GetEmail().IsEmpty() || row.strPersonID.IsEmpty() ||
            row.strPersonID != Attribute(pPatient, L"id"))
            continue;
        patient.SetEmail(row.strAddress);
        patient.SetSalutation(row.strSalutation);
    }
    patient.GetPhones().RemoveAll();
    for (const Node& phone : Select(pPatient, L"phones/phone"))
        patient.GetPhones().Add(dbCPhone(Attribute(phone.Get(), L"number"), Attribute(phone.Get(), L"type")));
    ReadAddresses(pPatient, patient.GetAddresses());

    for (const Node& element : Select(pPatient, L"treatingDoctor"))
    {
        dbCPerson doctor;
        ReadAttributes(element.Get(), DoctorAttributes, doctor);
        const auto emails = Select(element.Get(), L"emails/email");
        if (!emails.empty())
            doctor.SetEmail(Attribute(emails.front().Get(), L"address"));
        for (std::size_t i = 1; i < emails.size(); ++i)
            patient.GetArchiveEmails()[doctor.GetPersonGUID()].Add(Attribute(emails[i].Get(), L"address"));
        ReadAddresses(element.Get(), doctor.GetAddresses());
        patient.SetPersonInfo(dbPersonTreatingDoctor, doctor);
    }
    dbCPatientReferralsContainer& referrals = patient.GetReferrals();
    referrals.RemoveAll();
    for (const Node& element : Select(pPatient, L"ReferringDoctors/ReferringDoctor"))
    {
        // The name is given as one text: what stands before the first blank is taken for the given name.
        const CString strName = Attribute(element.Get(), L"refname");
        const int nBlank = strName.Find(' ');
        dbCPatientReferralsRow row;
        row.Set_type(DB_REFERRAL_DOC);
        row.Set_docID(Attribute(element.Get(), L"id"));
        row.Set_doctor(nBlank < 0 ? CString() : strName.Left(nBlank), strName.Mid(nBlank + 1),
                       Attribute(element.Get(), L"refemail"));
        referrals.Add(row);
    }
    return TRUE;
}

dbCPatientEmailsContainer CVelXML::ReadPatientEmails() const
{
    dbCPatientEmailsContainer rows;
    for (const dbSPatientEmail& row : ReadElements<dbSPatientEmail>(
             m_pDocument.Get(), (std::wstring(OwnForm) + L"/emailAddresses/emailAddress").c_str(),
             velEmailAttributes))
        rows.Add(row);
    return rows;
}

void CVelXML::ReadAddresses(IXMLDOMNode* pParent, dbCAddresses& addresses) const
{
    addresses.RemoveAll();
    for (const dbCAddress& address :
         ReadElements<dbCAddress>(pParent, L"addresses/address", velAddressAttributes))
        addresses.Add(address);
}

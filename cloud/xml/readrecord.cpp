// Reading a record that the service delivered.
#include "cloud/xml/codepage.h"
#include "cloud/xml/velxml.h"
#include "suite/patients/velpat.h"

std::vector<cloud::RecordFile> CVelXML::ReadFiles(IXMLDOMNode* pParent, const wchar_t* pszXPath) const
{
    std::vector<cloud::RecordFile> files;
    for (const Node& node : Select(pParent, pszXPath))
    {
        cloud::RecordFile file;
        file.name = AttributeText(node.Get(), L"name");
        file.signature = AttributeText(node.Get(), L"hash");
        if (file.signature.empty())
            file.signature = AttributeText(node.Get(), L"signature");
        file.catalogGuid = AttributeText(node.Get(), L"catalogGUID");
        file.category = AttributeText(node.Get(), L"category");
        files.push_back(std::move(file));
    }
    return files;
}

cloud::RecordImage CVelXML::ReadImage(IXMLDOMNode* pImage) const
{
    cloud::RecordImage image;
    image.file = AttributeText(pImage, L"file");
    image.signature = AttributeText(pImage, L"signature");
    image.title = AttributeText(pImage, L"title");
    image.note = AttributeText(pImage, L"note");
    image.type = AttributeText(pImage, L"imageType");
    image.guid = AttributeText(pImage, L"imageGUID");
    image.viewFile = AttributeText(pImage, L"vfile");
    image.viewSignature = AttributeText(pImage, L"vsignature");
    image.files = ReadFiles(pImage, L"file");
    return image;
}

cloud::RecordTimepoint CVelXML::ReadTimepoint(IXMLDOMNode* pTimepoint) const
{
    cloud::RecordTimepoint timepoint;
    timepoint.name = AttributeText(pTimepoint, L"name");
    timepoint.date = AttributeText(pTimepoint, L"tpDate");
    timepoint.number = AttributeText(pTimepoint, L"tpNumber");
    timepoint.guid = AttributeText(pTimepoint, L"tpGUID");
    timepoint.files = ReadFiles(pTimepoint, L"file");
    // Below the timepoint itself: a search by its GUID would trust the GUID, and go through the document each
    // time.
    for (const Node& image : Select(pTimepoint, L"Images/image"))
        timepoint.images.push_back(ReadImage(image.Get()));
    return timepoint;
}

BOOL CVelXML::ReadRecord(cloud::Record& record)
{
    record = {};
    const auto records = Select(m_pDocument.Get(), L"//record");
    const auto patients = Select(m_pDocument.Get(), L"//record/patient[@patVeltrixID]");
    if (records.size() != 1 || patients.size() != 1)
        return FALSE;
    IXMLDOMNode* const pPatient = patients.front().Get();
    record.userGuid = AttributeText(records.front().Get(), L"userGUID");
    record.withArchiveRecord = AttributeText(records.front().Get(), L"downloadACV") == "1";
    record.serviceId = AttributeText(pPatient, L"patVeltrixID");
    record.serviceGuid = AttributeText(pPatient, L"frvPatGUID");
    record.guid = AttributeText(pPatient, L"patGUID");
    record.patientId = AttributeText(pPatient, L"patientID");
    record.ownerGuid = AttributeText(pPatient, L"patOwnerGUID");
    record.firstName = AttributeText(pPatient, L"patfirstName");
    record.lastName = AttributeText(pPatient, L"patlastName");
    record.birthDate = AttributeText(pPatient, L"patBirthdate");
    record.gender = AttributeText(pPatient, L"patGender");
    for (const Node& timepoint : Select(m_pDocument.Get(), L"//Timepoints/Timepoint"))
        record.timepoints.push_back(ReadTimepoint(timepoint.Get()));
    return !record.serviceId.empty();
}

BOOL CVelXML::ReadPatientDetails(dbCPatient& patient)
{
    const auto found = Select(m_pDocument.Get(), L"//record/patient[not(@patVeltrixID)]");
    if (found.empty())
        return FALSE;
    IXMLDOMNode* const pPatient = found.front().Get();
    patient.SetTitle(Attribute(pPatient, L"title"));
    patient.SetNickname(Attribute(pPatient, L"nickname"));
    patient.SetNorm(atoi(Attribute(pPatient, L"norm")));
    for (const Node& note : Select(pPatient, L"note"))
    {
        velBstr text;
        note->get_text(text.Receive());
        CString strNotes = velNarrow(text.View(), &m_bLossy);
        strNotes.Replace("\r\n", "\n");
        strNotes.Replace("\n", "\r\n");
        patient.SetNotes(strNotes);
    }
    for (const dbSPatientEmail& row : ReadPatientEmails())
    {
        // The patient's own record has the first of them.
        if (patient.GetEmail().IsEmpty() && !row.strPersonID.IsEmpty() &&
            row.strPersonID == Attribute(pPatient, L"id"))
            patient.SetEmail(row.strAddress);
    }
    patient.GetPhones().RemoveAll();
    for (const Node& phone : Select(pPatient, L"phones/phone"))
        patient.GetPhones().Add(dbCPhone(Attribute(phone.Get(), L"number"), Attribute(phone.Get(), L"type")));
    ReadAddresses(pPatient, patient.GetAddresses());

    for (const Node& element : Select(pPatient, L"treatingDoctor"))
    {
        dbCPerson doctor;
        doctor.SetPersonGUID(Attribute(element.Get(), L"id"));
        doctor.SetLastname(Attribute(element.Get(), L"last"));
        doctor.SetFirstname(Attribute(element.Get(), L"first"));
        doctor.SetTitle(Attribute(element.Get(), L"title"));
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
    for (const Node& node :
         Select(m_pDocument.Get(), L"//record/patient[not(@patVeltrixID)]/emailAddresses/emailAddress"))
    {
        IXMLDOMNode* const pRow = node.Get();
        rows.Add({Attribute(pRow, L"personId"), Attribute(pRow, L"category"), Attribute(pRow, L"type"),
                  Attribute(pRow, L"salutation"), Attribute(pRow, L"firstName"), Attribute(pRow, L"lastName"),
                  Attribute(pRow, L"address")});
    }
    return rows;
}

void CVelXML::ReadAddresses(IXMLDOMNode* pParent, dbCAddresses& addresses) const
{
    addresses.RemoveAll();
    for (const Node& node : Select(pParent, L"addresses/address"))
    {
        dbCAddress address;
        address.SetType(Attribute(node.Get(), L"type"));
        address.SetCompany(Attribute(node.Get(), L"company"));
        address.SetStreet(Attribute(node.Get(), L"street"));
        address.SetCity(Attribute(node.Get(), L"city"));
        address.SetState(Attribute(node.Get(), L"state"));
        address.SetPostalCode(Attribute(node.Get(), L"zip"));
        address.SetCountry(Attribute(node.Get(), L"country"));
        addresses.Add(address);
    }
}

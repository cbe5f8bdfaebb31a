#include "tests/patient/patientimage.h"

namespace
{

class Writer
{
public:
    Writer(PatientImage& image, std::string prefix) : m_image(image), m_prefix(std::move(prefix))
    {
    }
    Writer operator()(const std::string& part, int index) const
    {
        return {m_image, m_prefix + part + "." + std::to_string(index) + "."};
    }
    void Set(const char* name, const CString& value) const
    {
        m_image[m_prefix + name] = value.GetString();
    }
    void Set(const char* name, __int64 value) const
    {
        m_image[m_prefix + name] = std::to_string(value);
    }

private:
    PatientImage& m_image;
    std::string m_prefix;
};

void SetContact(const Writer& writer, const dbCAddresses& addresses, const dbCPhones& phones)
{
    for (int i = 0; i < addresses.GetCount(); ++i)
    {
        const Writer address = writer("address", i);
        address.Set("type", addresses[i].GetType());
        address.Set("company", addresses[i].GetCompany());
        address.Set("street", addresses[i].GetStreet());
        address.Set("city", addresses[i].GetCity());
        address.Set("state", addresses[i].GetState());
        address.Set("postalCode", addresses[i].GetPostalCode());
        address.Set("country", addresses[i].GetCountry());
    }
    for (int i = 0; i < phones.GetCount(); ++i)
    {
        const Writer phone = writer("phone", i);
        phone.Set("number", phones[i].GetNumber());
        phone.Set("type", phones[i].GetType());
    }
}

void SetPerson(const Writer& writer, const dbCPerson& person)
{
    writer.Set("guid", person.GetPersonGUID());
    writer.Set("title", person.GetTitle());
    writer.Set("firstname", person.GetFirstname());
    writer.Set("lastname", person.GetLastname());
    writer.Set("nickname", person.GetNickname());
    writer.Set("salutation", person.GetSalutation());
    writer.Set("notes", person.GetNotes());
    writer.Set("email", person.GetEmail());
    writer.Set("birthdate", person.GetBirthdate().ToISO());
    writer.Set("gender", person.GetGender());
    SetContact(writer, person.GetAddresses(), person.GetPhones());
}

} // namespace

PatientImage ImageOf(const dbCPatient& patient)
{
    PatientImage image;
    const Writer writer(image, "");
    writer.Set("id", patient.GetID());
    writer.Set("guid", patient.GetGUID());
    writer.Set("firstname", patient.GetFirstname(patNameAsEntered));
    writer.Set("lastname", patient.GetLastname(patNameAsEntered));
    writer.Set("nickname", patient.GetNickname());
    writer.Set("birthdate", patient.GetBirthdate().ToISO());
    writer.Set("gender", patient.GetGender());
    writer.Set("genderIdentity", patient.GetGenderIdentity());
    writer.Set("race", patient.GetRace());
    writer.Set("email", patient.GetEmail());
    writer.Set("title", patient.GetTitle());
    writer.Set("salutation", patient.GetSalutation());
    writer.Set("model", patient.GetModelNumber());
    writer.Set("keywords", patient.GetKeywords());
    writer.Set("notes", patient.GetNotes());
    writer.Set("teeth", patient.GetTeeth());
    writer.Set("office", patient.GetOfficeID());
    writer.Set("status", patient.GetStatusID());
    writer.Set("recordDate", patient.GetDate().ToISO());
    writer.Set("veltrixID", patient.GetVeltrixID());
    writer.Set("norm", patient.GetNorm());
    SetContact(writer, patient.GetAddresses(), patient.GetPhones());
    dbCPerson guardian;
    if (patient.GetPersonInfo(dbPersonGuardian, guardian))
        SetPerson(writer("person", dbPersonGuardian), guardian);
    for (const int kind : {dbPersonTreatingDoctor, dbPersonReferringDoctor})
    {
        dbCPerson doctor; // a link: the doctor's own record is not the patient's
        if (patient.GetPersonInfo(kind, doctor))
            writer("person", kind).Set("doctor", doctor.GetPersonGUID());
    }
    for (int i = 0; i < patient.GetInsurances().GetCount(); ++i)
    {
        const dbCInsurance& insurance = patient.GetInsurances()[i];
        const Writer entry = writer("insurance", i);
        entry.Set("guid", insurance.GetInsuranceGUID());
        entry.Set("companyGUID", insurance.GetCompanyGUID());
        entry.Set("company", insurance.GetCompanyName());
        entry.Set("holder", insurance.GetHolder());
        entry.Set("number", insurance.GetNumber());
        entry.Set("group", insurance.GetGroup());
        entry.Set("note", insurance.GetNote());
    }
    for (int i = 0; i < patient.GetReferrals().GetCount(); ++i)
    {
        const dbCPatientReferralsRow& referral = patient.GetReferrals()[i];
        const Writer entry = writer("referral", i);
        entry.Set("guid", referral.Get_refID());
        entry.Set("doctor", referral.Get_docID());
        entry.Set("type", referral.Get_type());
        entry.Set("date", referral.Get_date().ToISO());
        entry.Set("note", referral.Get_note());
    }
    for (int i = 0; i < patient.GetTimepoints().GetCount(); ++i)
    {
        const patCTimepoint timepoint = patient.GetTimepoint(i);
        const Writer entry = writer("timepoint", i);
        entry.Set("guid", timepoint.GettpID());
        entry.Set("number", timepoint.GetNumber());
        entry.Set("name", timepoint.GetName());
        entry.Set("date", timepoint.GetDate().Format("%Y-%m-%d %H:%M:%S"));
    }
    return image;
}

PatientImage WithoutIdentity(PatientImage image)
{
    std::erase_if(image, [](const auto& entry) {
        return entry.first.ends_with("guid") || entry.first == "recordDate";
    });
    return image;
}

std::vector<std::string> Differences(const PatientImage& expected, const PatientImage& actual)
{
    std::vector<std::string> differences;
    for (const auto& [name, value] : expected)
    {
        const auto found = actual.find(name);
        if (found == actual.end())
            differences.push_back(name + " is missing");
        else if (found->second != value)
            differences.push_back(name + " is \"" + found->second + "\", not \"" + value + "\"");
    }
    for (const auto& [name, value] : actual)
    {
        if (!expected.contains(name))
            differences.push_back(name + " is there: \"" + value + "\"");
    }
    return differences;
}

#include "tests/patient/patientimage.h"

namespace
{

using Values = std::initializer_list<std::pair<const char*, CString>>;

CString Number(__int64 value)
{
    return std::to_string(value).c_str();
}

void Put(PatientImage& image, const std::string& prefix, const Values& values)
{
    for (const auto& [name, value] : values)
        image[prefix + name] = value.GetString();
}

std::string Entry(const std::string& prefix, const char* list, int index)
{
    return prefix + list + "." + std::to_string(index) + ".";
}

template <class T> void PutContact(PatientImage& image, const std::string& prefix, const T& record)
{
    for (int i = 0; i < record.GetAddresses().GetCount(); ++i)
    {
        const dbCAddress& address = record.GetAddresses()[i];
        Put(image, Entry(prefix, "address", i),
            {{"type", address.GetType()},
             {"company", address.GetCompany()},
             {"street", address.GetStreet()},
             {"city", address.GetCity()},
             {"state", address.GetState()},
             {"postalCode", address.GetPostalCode()},
             {"country", address.GetCountry()}});
    }
    for (int i = 0; i < record.GetPhones().GetCount(); ++i)
        Put(image, Entry(prefix, "phone", i),
            {{"number", record.GetPhones()[i].GetNumber()}, {"type", record.GetPhones()[i].GetType()}});
    Put(image, prefix,
        {{"firstname", record.GetFirstname()},
         {"lastname", record.GetLastname()},
         {"title", record.GetTitle()},
         {"nickname", record.GetNickname()},
         {"salutation", record.GetSalutation()},
         {"notes", record.GetNotes()},
         {"email", record.GetEmail()},
         {"birthdate", record.GetBirthdate().ToISO()},
         {"gender", Number(record.GetGender())}});
}

} // namespace

PatientImage ImageOf(const dbCPatient& patient)
{
    PatientImage image;
    PutContact(image, "", patient);
    Put(image, "",
        {{"id", patient.GetID()},
         {"guid", patient.GetGUID()},
         {"genderIdentity", Number(patient.GetGenderIdentity())},
         {"race", Number(patient.GetRace())},
         {"model", patient.GetModelNumber()},
         {"keywords", patient.GetKeywords()},
         {"teeth", patient.GetTeeth()},
         {"office", patient.GetOfficeID()},
         {"status", patient.GetStatusID()},
         {"recordDate", patient.GetDate().ToISO()},
         {"veltrixID", patient.GetVeltrixID()},
         {"norm", Number(patient.GetNorm())}});
    for (const int kind : {dbPersonGuardian, dbPersonTreatingDoctor, dbPersonReferringDoctor})
    {
        dbCPerson person;
        if (!patient.GetPersonInfo(kind, person))
            continue;
        // A doctor is a link: the doctor's own record is not the patient's.
        const std::string prefix = Entry("", "person", kind);
        Put(image, prefix, {{kind == dbPersonGuardian ? "guid" : "doctor", person.GetPersonGUID()}});
        if (kind == dbPersonGuardian)
            PutContact(image, prefix, person);
    }
    for (int i = 0; i < patient.GetInsurances().GetCount(); ++i)
    {
        const dbCInsurance& insurance = patient.GetInsurances()[i];
        Put(image, Entry("", "insurance", i),
            {{"guid", insurance.GetInsuranceGUID()},
             {"companyGUID", insurance.GetCompanyGUID()},
             {"company", insurance.GetCompanyName()},
             {"holder", insurance.GetHolder()},
             {"number", insurance.GetNumber()},
             {"group", insurance.GetGroup()},
             {"note", insurance.GetNote()}});
    }
    for (int i = 0; i < patient.GetReferrals().GetCount(); ++i)
    {
        const dbCPatientReferralsRow& referral = patient.GetReferrals()[i];
        Put(image, Entry("", "referral", i),
            {{"guid", referral.Get_refID()},
             {"doctor", referral.Get_docID()},
             {"type", referral.Get_type()},
             {"date", referral.Get_date().ToISO()},
             {"note", referral.Get_note()}});
    }
    for (int i = 0; i < patient.GetTimepoints().GetCount(); ++i)
    {
        const patCTimepoint timepoint = patient.GetTimepoint(i);
        Put(image, Entry("", "timepoint", i),
            {{"guid", timepoint.GettpID()},
             {"number", Number(timepoint.GetNumber())},
             {"name", timepoint.GetName()},
             {"date", timepoint.GetDate().ToISO()}});
    }
    return image;
}

PatientImage ImageOf(const dbCDoctor& doctor)
{
    PatientImage image;
    PutContact(image, "", doctor.GetPerson());
    Put(image, "", {{"type", doctor.GetType()}, {"treating", Number(doctor.IsTreating())}});
    return image;
}

PatientImage WithoutIdentity(PatientImage image)
{
    std::erase_if(image, [](const auto& entry) {
        return entry.first.ends_with("guid") || entry.first == "recordDate";
    });
    return image;
}

std::vector<std::string> Differences(PatientImage expected, PatientImage actual)
{
    std::vector<std::string> differences;
    for (const PatientImage* const image : {&expected, &actual})
    {
        for (const auto& [name, value] : PatientImage(*image))
        {
            if (expected[name] != actual[name])
                differences.push_back(name + " is \"" + actual[name] + "\", not \"" + expected[name] + "\"");
            expected.erase(name);
            actual.erase(name);
        }
    }
    return differences;
}

#include "host/samplepractice.h"

#include "host/picture.h"
#include "host/samplepeople.h"
#include "suite/patients/velpat.h"
#include "suite/util/velpath.h"

#include <array>
#include <vector>

namespace
{

struct SampleImage
{
    int group;
    char type;
    picSubject subject;
};

// What a timepoint's images are, in the order in which they are taken.
constexpr std::array<SampleImage, 4> kImages = {{{0, 'A', picSubject::profile},
                                                 {0, 'C', picSubject::smile},
                                                 {1, 'B', picSubject::teeth},
                                                 {2, 'A', picSubject::cephalogram}}};
// The first timepoint has a panoramic image in place of the last.
constexpr SampleImage kPanoramic = {2, 'C', picSubject::panoramic};

// In the system code page; a character that it lacks becomes the nearest one it has.
CString ToText(const std::string& utf8)
{
    const int length = ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), length);
    return CString(wide.c_str());
}

velCDate ToDate(const sample::Date& date)
{
    return date.year == 0 ? velCDate() : velCDate(date.year, date.month, date.day);
}

dbCAddress ToAddress(const sample::Address& address, LPCTSTR type)
{
    dbCAddress result;
    result.SetType(type);
    result.SetCompany(ToText(address.company));
    result.SetStreet(ToText(address.street));
    result.SetCity(ToText(address.city));
    result.SetState(ToText(address.state));
    result.SetPostalCode(ToText(address.postalCode));
    result.SetCountry(ToText(address.country));
    return result;
}

dbCPerson ToPerson(const sample::Person& person, LPCTSTR addressType)
{
    dbCPerson result;
    result.SetTitle(ToText(person.title));
    result.SetFirstname(ToText(person.given));
    result.SetLastname(ToText(person.family));
    result.SetEmail(ToText(person.email));
    result.SetBirthdate(ToDate(person.birth));
    result.SetGender(person.female ? 1 : 2);
    if (!person.address.street.empty())
    {
        result.SetAddress(0, ToAddress(person.address, addressType));
    }
    for (std::size_t index = 0; index < person.phones.size(); ++index)
    {
        const sample::Phone& phone = person.phones[index];
        result.SetPhone(static_cast<int>(index), dbCPhone(ToText(phone.number), ToText(phone.kind)));
    }
    return result;
}

void AddKeywords(int list, const std::vector<std::string>& words)
{
    CKeywords keywords;
    keywords.Load(list);
    for (const std::string& word : words)
    {
        keywords.Add(ToText(word));
    }
    keywords.Save();
}

// The practice's lists once they are stored, by their positions in the generator's lists.
struct StoredLists
{
    std::vector<CString> offices;
    std::vector<CString> statuses;
    std::vector<CString> insurances;
    std::vector<dbCPerson> treatingDoctors;
    std::vector<dbCPerson> referringDoctors;
};

std::vector<dbCPerson> StoreDoctors(const std::vector<sample::Person>& people, BOOL treating)
{
    std::vector<dbCPerson> stored;
    for (const sample::Person& person : people)
    {
        dbCDoctor doctor;
        doctor.GetPerson() = ToPerson(person, "O");
        doctor.SetTreating(treating);
        doctor.Save();
        stored.push_back(doctor.GetPerson());
    }
    return stored;
}

StoredLists StoreLists(const sample::Lists& lists)
{
    StoredLists stored;
    dbCOfficeLocations offices;
    for (const std::string& name : lists.offices)
    {
        stored.offices.push_back(offices.AddOffice(ToText(name)));
    }
    dbCPatientStatusList statuses;
    for (const std::string& name : lists.statuses)
    {
        stored.statuses.push_back(statuses.AddStatus(ToText(name)));
    }
    for (const std::string& name : lists.insurances)
    {
        dbCInsuranceCompany company;
        company.SetName(ToText(name));
        company.Save();
        stored.insurances.push_back(company.GetCompanyGUID());
    }
    stored.treatingDoctors = StoreDoctors(lists.treatingDoctors, TRUE);
    stored.referringDoctors = StoreDoctors(lists.referringDoctors, FALSE);
    AddKeywords(dbKeywordsPatient, lists.patientKeywords);
    AddKeywords(dbKeywordsImage, lists.imageKeywords);
    return stored;
}

// What practice management offers for new timepoints.
void AddTreatments()
{
    constexpr const char* kTreatments[][2] = {{"OBS", "Observation"},   {"PH1", "Phase 1"}, {"PH2", "Phase 2"},
                                              {"RET", "Retention"}, {"SUR", "Surgical orthodontics"}};
    for (const auto& [code, description] : kTreatments)
    {
        dbCTreatmentStatusContainer::AddTreatment(code, description);
    }
    dbCTimepointNames names;
    for (const char* name : {"Initial", "Progress", "Phase 1", "Phase 2", "Final", "Retention", "Recall"})
    {
        names.Add(name);
    }
}

// Every patient with images has begun a treatment, some have gone on to a second; every fourth owes something.
void AddPracticeManagement(dbCPatient& patient, int index)
{
    constexpr const char* kHistory[][2] = {{"OBS", "Observation"}, {"PH1", "Phase 1"}};
    patCTimepoints& timepoints = patient.GetTimepoints();
    for (int entry = 0; entry <= index % 2 && entry < timepoints.GetCount(); ++entry)
    {
        dbCPatientTreatmentStatusHistoryRow row;
        row.SetpatID(patient.GetGUID());
        row.SetNewCode(kHistory[entry][0]);
        row.SetDescription(kHistory[entry][1]);
        row.SetDateTime(timepoints[entry].GetDate());
        dbCPatientTreatmentStatusHistoryTable().InsertRow(row);
        timepoints[entry].SetptshID(row.GetptshID());
    }
    patient.Save(dbSaveWithoutFile);
    if (index % 4 == 1)
    {
        patient.SetBalance(12500 + 1000 * index);
    }
}

SampleImage ImageOf(int timepoint, int image)
{
    return timepoint == 0 && image == 3 ? kPanoramic : kImages[static_cast<std::size_t>(image)];
}

void AddTimepoints(dbCPatient& patient, const std::vector<sample::Timepoint>& timepoints)
{
    int number = 0;
    for (const sample::Timepoint& source : timepoints)
    {
        dbCTimepoint timepoint;
        timepoint.SetName(ToText(source.name));
        timepoint.SetDate(ToDate(source.date));
        timepoint.SetNumber(patient.GetID(), number);
        for (int image = 0; image < source.images; ++image)
        {
            const SampleImage kind = ImageOf(number, image);
            timepoint.SetImage(kind.group, patCImageTypes::FindType(kind.group, kind.type));
        }
        patient.GetTimepoints().Add(&patient, timepoint, FALSE, FALSE);
        ++number;
    }
}

dbCPatient ToPatient(const sample::Patient& source, const StoredLists& lists)
{
    dbCPatient patient;
    patient.SetID(source.id.c_str());
    patient.SetFirstname(ToText(source.given));
    patient.SetLastname(ToText(source.family));
    patient.SetNickname(ToText(source.nickname));
    patient.SetTitle(ToText(source.title));
    patient.SetSalutation(ToText(source.salutation));
    patient.SetEmail(ToText(source.email));
    patient.SetModelNumber(ToText(source.modelNumber));
    patient.SetKeywords(ToText(source.keywords));
    patient.SetNotes(ToText(source.notes));
    patient.SetBirthdate(ToDate(source.birth));
    patient.SetGender(source.female ? 1 : 2);
    patient.SetGenderIdentity(source.genderIdentity);
    patient.SetRace(source.race);
    patient.SetAddress(0, ToAddress(source.address, "H"));
    for (const sample::Phone& phone : source.phones)
    {
        patient.GetPhones().Add(dbCPhone(ToText(phone.number), ToText(phone.kind)));
    }
    if (source.hasGuardian)
    {
        patient.AddPersonInfo(dbPersonGuardian, ToPerson(source.guardian, "H"));
    }
    patient.SetOfficeID(lists.offices[static_cast<std::size_t>(source.office)]);
    patient.SetStatusID(lists.statuses[static_cast<std::size_t>(source.status)]);
    patient.SetPersonInfo(dbPersonTreatingDoctor, lists.treatingDoctors[static_cast<std::size_t>(source.treatingDoctor)]);
    if (source.referringDoctor >= 0)
    {
        const dbCPerson& doctor = lists.referringDoctors[static_cast<std::size_t>(source.referringDoctor)];
        patient.GetReferrals().AddReferralDoc(
            doctor.GetPersonGUID(), source.timepoints.empty() ? velCDate() : ToDate(source.timepoints[0].date));
    }
    if (source.insurance >= 0)
    {
        dbCInsurance policy;
        policy.SetCompanyGUID(lists.insurances[static_cast<std::size_t>(source.insurance)]);
        const sample::Person& guardian = source.guardian;
        policy.SetHolder(source.hasGuardian ? ToText(guardian.given + " " + guardian.family)
                                            : ToText(source.given + " " + source.family));
        policy.SetNumber(ToText(source.policyNumber));
        patient.AssignInsurance(policy);
    }
    AddTimepoints(patient, source.timepoints);
    return patient;
}

// Photographs as JPEG, X-rays as BMP files: the suite's image files tell their kind by their content.
void DrawImages(const dbCPatient& patient, const std::vector<sample::Timepoint>& timepoints)
{
    for (int number = 0; number < patient.GetTimepoints().GetCount(); ++number)
    {
        const patCTimepoint& timepoint = patient.GetTimepoints()[number];
        for (int image = 0; image < timepoints[static_cast<std::size_t>(number)].images; ++image)
        {
            const SampleImage kind = ImageOf(number, image);
            const int type = patCImageTypes::FindType(kind.group, kind.type);
            std::uint32_t seed = 17;
            for (const char letter : std::string(patient.GetID()))
            {
                seed = seed * 31 + static_cast<unsigned char>(letter);
            }
            const CString file = velGetDataPath() + timepoint.GetImageFilename(kind.group, type);
            picWriteSample(file.GetString(), kind.subject, seed, timepoint.GetBaseFilename().GetString(), kind.group != 2);
        }
    }
}

} // namespace

void samFillPractice(int patients)
{
    const sample::Generator generator(static_cast<std::size_t>(patients));
    dbCTransaction transaction;
    const StoredLists lists = StoreLists(generator.GetLists());
    AddTreatments();
    for (int index = 0; index < patients; ++index)
    {
        const sample::Patient source = generator.GetPatient(static_cast<std::size_t>(index));
        dbCPatient patient = ToPatient(source, lists);
        const bool withFiles = index < kSamplePatientsWithFiles;
        patient.Save(withFiles ? 0 : dbSaveWithoutFile);
        if (withFiles)
        {
            DrawImages(patient, source.timepoints);
            AddPracticeManagement(patient, index);
        }
    }
    transaction.Commit();
}

void samFillStudy(int number, dbCPatient& patient)
{
    constexpr std::uint64_t kStudySeed = 2;
    const sample::Patient source =
        sample::Generator(1, kStudySeed).GetPatient(static_cast<std::size_t>(number));
    dbCPatients patients;
    CString id;
    int suffix = number;
    do
    {
        id.Format("STUDY-%04d", ++suffix);
    } while (!patients.IsIDFree(id));

    patient.Initialize();
    patient.SetID(id);
    patient.SetFirstname(ToText(source.given));
    patient.SetLastname(ToText(source.family));
    patient.SetBirthdate(ToDate(source.birth));
    patient.SetGender(source.female ? 1 : 2);
}

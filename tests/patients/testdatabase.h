#pragma once

#include "suite/patients/velpat.h"
#include "tests/support/sql.h"
#include "tests/support/temporarypractice.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>

/// What is stored about somebody, by what it is: "0.lastName" of the person, "1.address.0.city" of a
/// patient's guardian, "race", "referral.0.doctor". Independent of the library's own reading.
using PatientImage = std::map<std::string, std::string>;

/// Without what a patient gets only when it is stored: ids of records, and the day.
inline PatientImage WithoutIdentity(PatientImage image)
{
    std::erase_if(image, [](const auto& entry) {
        return entry.first.ends_with("guid") || entry.first == "recordDate";
    });
    return image;
}

/// What the images have differently, one line each; what is missing counts as empty.
inline std::vector<std::string> Differences(PatientImage expected, PatientImage actual)
{
    std::vector<std::string> differences;
    for (const auto& [name, value] : expected)
        actual[name];
    for (const auto& [name, value] : actual)
        if (value != expected[name])
            differences.push_back(name + " is \"" + value + "\", not \"" + expected[name] + "\"");
    return differences;
}

/// To the system code page.
inline std::string FromUtf8(const char* psz)
{
    wchar_t wide[4000] = L"";
    char narrow[4000] = "";
    MultiByteToWideChar(CP_UTF8, 0, psz, -1, wide, std::size(wide));
    WideCharToMultiByte(CP_ACP, 0, wide, -1, narrow, std::size(narrow), nullptr, nullptr);
    return narrow;
}

/// A practice with a new, open patient database, closed at the end.
struct TestDatabase
{
    explicit TestDatabase(bool bWorking = true)
    {
        practice.Set("Environment", "DatabaseTimeout", "300");
        if (!bWorking)
            practice.Set("Environment", "WORKING", "");
        dbCPatients::Create(Path().c_str());
    }
    ~TestDatabase()
    {
        dbCPatients::Close();
    }

    /// Runs SQL past the library, for what it never does itself.
    std::vector<std::string> Execute(const char* pszSql) const
    {
        return veltest::RunSql(Path(), pszSql);
    }

    /// The patient of this ID, or the person of this GUID.
    PatientImage ImageOf(const char* pszID) const
    {
        constexpr const char* FORMAT = R"sql(
CREATE TEMP VIEW me AS SELECT person AS id FROM patients WHERE patientID = '%s'
    UNION SELECT id FROM persons WHERE guid = '%s';
CREATE TEMP VIEW people AS SELECT id FROM me UNION SELECT person FROM patientPersons WHERE patient IN me AND kind = 0;
CREATE TEMP VIEW doctorNames AS SELECT id, lastName || ', ' || firstName AS name FROM persons;
SELECT '', patientID, genderIdentity, race, modelNumber, keywords, teeth, veltrixID, norm, recordDate,
    (SELECT name FROM offices WHERE id = office) AS office,
    (SELECT name FROM statuses WHERE id = status) AS status FROM patients WHERE person IN me;
SELECT (id NOT IN me) || '.', guid, title, firstName, lastName, nickname, salutation, email, notes, birthDate, gender
    FROM persons WHERE id IN people;
SELECT (person NOT IN me) || '.address.' || position || '.', type, company, street, city, state, postalCode, country
    FROM addresses WHERE person IN people;
SELECT (person NOT IN me) || '.phone.' || position || '.', number, type FROM phones WHERE person IN people;
SELECT (person NOT IN me) || '.', group_concat(address, ' ') AS emails FROM emails WHERE person IN people GROUP BY person;
SELECT 'doctor.', treating, (SELECT name FROM doctorTypes WHERE id = doctors.type) AS type FROM doctors WHERE person IN me;
SELECT CASE kind WHEN 1 THEN 'treating.' ELSE 'referring.' END, name AS doctor
    FROM patientPersons JOIN doctorNames ON id = person WHERE patient IN me AND kind > 0;
SELECT 'insurance.' || position || '.', guid, holder, number, groupNumber, note,
    (SELECT name FROM insuranceCompanies WHERE id = insurances.company) AS company FROM insurances WHERE patient IN me;
SELECT 'referral.' || position || '.', guid, type, date, note, name AS doctor
    FROM referrals r JOIN doctorNames d ON d.id = doctor WHERE patient IN me;
SELECT 'timepoint.' || position || '.', guid, number, name, date, active, bits0, bits1, bits2, bits3, bits4, bits5,
    bits6, bits7, (SELECT description FROM treatmentHistory WHERE id = treatment) AS treatment
    FROM timepoints WHERE patient IN me;
SELECT 'image.' || number || '.' || imageGroup || '.' || type || '.', i.guid, title, note
    FROM images i JOIN timepoints t ON t.id = timepoint WHERE patient IN me;
SELECT 'diagnostic.' || lower(code) || '.', category, g.title, number, value, note
    FROM diagnostics d JOIN diagnosticItems i ON i.id = item JOIN diagnosticGroups g ON g.id = diagnosticGroup
    LEFT JOIN timepoints t ON t.id = timepoint WHERE d.patient IN me;
SELECT 'treatment.' || description || '.', code, active, time FROM treatmentHistory WHERE patient IN me;
SELECT 'email.' || position || '.', category, type, salutation, firstName, lastName, address
    FROM patientEmails WHERE patient IN me;
)sql";
        CString strSql;
        strSql.Format(FORMAT, pszID, pszID);
        PatientImage image;
        veltest::RunSql(Path(), strSql.GetString(), [&](int nColumns, char** values, char** names) {
            for (int i = 1; i < nColumns; ++i)
                image[std::string(values[0]) + names[i]] = values[i] != nullptr ? FromUtf8(values[i]) : "";
        });
        return image;
    }

    std::string Path() const
    {
        return practice.Path("patients.db");
    }

    veltest::TemporaryPractice practice;
};

/// A test on a new database.
class DatabaseTest : public testing::Test
{
protected:
    TestDatabase database;
};

/// Waits until another process has made a file.
inline bool WaitFor(const std::string& path)
{
    for (int i = 0; i < 3000 && !std::filesystem::exists(path); ++i)
        Sleep(10);
    return std::filesystem::exists(path);
}

/// The code of the database exception that `action` throws, dbErrNone when it throws none. The exception must
/// have a text for the user.
template <typename Action> dbError ErrorOf(Action action)
{
    try
    {
        action();
    }
    catch (dbCException* e)
    {
        const dbError nError = e->GetError();
        char sz[1000] = "";
        EXPECT_TRUE(e->GetErrorMessage(sz, sizeof(sz)));
        EXPECT_GT(strlen(sz), 20U) << "error " << nError;
        e->Delete();
        return nError;
    }
    return dbErrNone;
}

inline dbCPatient NewPatient(LPCTSTR pszID, LPCTSTR pszLast = "Lee", LPCTSTR pszFirst = "Ann")
{
    dbCPatient patient;
    patient.SetID(pszID);
    patient.SetLastname(pszLast);
    patient.SetFirstname(pszFirst);
    patient.SetBirthdate(velCDate(2010, 2, 28));
    return patient;
}

/// The patient after it has been stored.
inline dbCPatient Saved(dbCPatient patient)
{
    patient.Save();
    return patient;
}

/// The patient of an ID or GUID as it is stored.
inline dbCPatient Loaded(LPCTSTR pszID)
{
    dbCPatient patient;
    EXPECT_TRUE(patient.Load(pszID)) << pszID;
    return patient;
}

/// The names of the files in a folder.
inline std::set<std::string> FilesIn(const std::string& folder)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

inline CString AddDoctor(LPCTSTR pszLast, LPCTSTR pszFirst = "Ida", BOOL bTreating = TRUE)
{
    dbCDoctor doctor;
    doctor.GetPerson().SetLastname(pszLast);
    doctor.GetPerson().SetFirstname(pszFirst);
    doctor.SetTreating(bTreating);
    doctor.SetType("Orthodontist");
    doctor.Save();
    return doctor.GetGUID();
}

/// A serialization of the patient's fields, for comparing two patients as a whole.
inline std::string Image(dbCPatient patient, int nFormat = 1)
{
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    patient.Serialize(ar, nFormat);
    ar.Close();
    return {reinterpret_cast<const char*>(file.GetBufferPtr()), static_cast<size_t>(file.GetLength())};
}

/// Every byte of the code page from 0x80 on, and what would break SQL, patterns or templates.
inline CString HardText()
{
    CString strText = "O'Neil \"%s\" 100% _; DROP TABLE patients; -- \\ <1> %1 &x ";
    for (int ch = 0x80; ch <= 0xFF; ++ch)
        strText += static_cast<char>(ch);
    return strText;
}

/// A patient with something in every field, no text twice.
inline dbCPatient FullPatient(LPCTSTR pszID, const CString& strText = "text")
{
    int nText = 0;
    const auto text = [&] { return strText + std::to_string(nText++).c_str(); };
    const auto fill = [&](auto& record, auto... setters) { ((record.*setters)(text()), ...); };
    dbCPatient patient = NewPatient(pszID);
    fill(patient, &dbCPatient::SetLastname, &dbCPatient::SetFirstname, &dbCPatient::SetNickname,
         &dbCPatient::SetEmail, &dbCPatient::SetTitle, &dbCPatient::SetSalutation, &dbCPatient::SetKeywords);
    patient.SetModelNumber("M-1234567");
    patient.SetNotes(text() + "\r\nsecond line");
    patient.SetTeeth("PPPPPPPPPPPPPPPPPPPPPPPPPPPPPPMX");
    patient.SetVeltrixID("V" + CString(pszID));
    patient.SetDate(velCDate(2019, 8, 7));
    patient.SetGender(2);
    patient.SetGenderIdentity(47); // codes of another system
    patient.SetRace(8'001);
    patient.SetNorm(4);

    for (int i = 0; i < 2; ++i)
    {
        dbCAddress address;
        address.SetType(i == 0 ? "H" : "O");
        fill(address, &dbCAddress::SetCompany, &dbCAddress::SetStreet, &dbCAddress::SetCity,
             &dbCAddress::SetState, &dbCAddress::SetPostalCode, &dbCAddress::SetCountry);
        patient.SetAddress(i, address);
    }
    patient.GetPhones().Add(dbCPhone(text(), "Home"));
    patient.GetPhones().Add(dbCPhone("555-0100", text()));

    dbCPerson guardian;
    fill(guardian, &dbCPerson::SetFirstname, &dbCPerson::SetLastname, &dbCPerson::SetTitle,
         &dbCPerson::SetNickname, &dbCPerson::SetSalutation, &dbCPerson::SetNotes, &dbCPerson::SetEmail);
    guardian.SetBirthdate(velCDate(1975, 12, 31));
    guardian.SetGender(1);
    guardian.SetAddress(0, patient.GetAddress(1));
    guardian.SetPhone(0, dbCPhone("555-0101", "Mobile"));
    patient.AddPersonInfo(dbPersonGuardian, guardian);

    dbCInsurance insurance;
    fill(insurance, &dbCInsurance::SetHolder, &dbCInsurance::SetNumber, &dbCInsurance::SetGroup,
         &dbCInsurance::SetNote);
    patient.AssignInsurance(insurance);

    for (int i = 0; i < 3; ++i)
    {
        dbCTimepoint timepoint;
        timepoint.SetName(text());
        timepoint.SetDate(COleDateTime(2020 + i, 5, 17, 14, 30, 59));
        timepoint.SetImage(0, i);
        timepoint.SetImage(4, 0);
        timepoint.SetImageInfo(0, i, {text(), text(), dbNewGUID()});
        timepoint.SetActive(i != 1);
        EXPECT_EQ(patient.GetTimepoints().Add(&patient, timepoint, TRUE, FALSE), 0);
    }
    return patient;
}

/// The same with an entry of each of the practice's lists: an office, a status, a treating and a referring
/// doctor and an insurance company, all of this name.
inline dbCPatient ListedPatient(LPCTSTR pszID, const CString& strText, const CString& strName)
{
    dbCPatient patient = FullPatient(pszID, strText);
    patient.SetOfficeID(dbCOfficeLocations().AddOffice(strName));
    patient.SetStatusID(dbCPatientStatusList().AddStatus(strName));
    dbCPerson doctor;
    doctor.SetPersonGUID(AddDoctor(strName, strName));
    patient.SetPersonInfo(dbPersonTreatingDoctor, doctor);
    EXPECT_EQ(patient.GetReferrals().AddReferralDoc(AddDoctor(strName, "Tom", FALSE), velCDate(2024, 3, 1),
                                                    strName),
              0);
    patient.GetInsurances()[0].SetCompanyGUID(dbCInsuranceCompanies::FindOrAdd(strName));
    return patient;
}

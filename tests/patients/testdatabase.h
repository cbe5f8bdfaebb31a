#pragma once

#include "suite/patients/velpat.h"
#include "tests/patient/patientimage.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>

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
    void Execute(const char* pszSql) const
    {
        sqlite3* pDb = nullptr;
        EXPECT_EQ(sqlite3_open(Path().c_str(), &pDb), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(pDb, pszSql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(pDb);
        sqlite3_close(pDb);
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
inline std::string Image(dbCPatient patient)
{
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    patient.Serialize(ar);
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

/// Every field of a patient that a caller can read, with what came along in an archive. Needs
/// patientimage.cpp.
inline PatientImage Fields(const dbCPatient& patient)
{
    PatientImage image = ImageOf(patient);
    const auto put = [&](const std::string& name, int nIndex, std::initializer_list<CString> values) {
        for (const CString& strValue : values)
            image[name + std::to_string(nIndex)] += (strValue + "|").GetString();
    };
    const auto number = [](int nValue) { return CString(std::to_string(nValue).c_str()); };
    int n = 0;
    for (const patCTimepoint& row : patient.GetTimepoints())
    {
        put("timepoint", n, {row.GetDate().Format("%H:%M:%S"), row.GetptshID(), row.GetBaseFilename()});
        put("timepoint", n, {number(row.IsActive())});
        for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
            put("timepoint", n, {number(static_cast<int>(row.GetImageBits(nGroup)))});
        for (const auto& [slot, info] : row.GetImageInfos())
        {
            put("timepoint", n, {number(slot.first), number(slot.second), info.strGUID});
            put("title" + std::to_string(n) + ".", slot.second, {info.strTitle});
            put("note" + std::to_string(n) + ".", slot.second, {info.strNote});
        }
        ++n;
    }
    for (const dbCDiagnosticInfo& row : patient.GetArchiveDiagnostics())
        put("diagnostic", n++,
            {row.GetGroupTitle(), row.GetItemCode(), number(row.GetTP()), row.GetValue(), row.GetNote()});
    for (const dbCPatientTreatmentStatusHistoryRow& row : patient.GetArchiveTreatments())
        put("treatment", n++,
            {row.GetptshID(), row.GetDescription(), row.GetNewCode(), number(row.GetActive()),
             row.GetDateTime().ToISO()});
    put("office and status", 0, {patient.GetArchiveOffice(), patient.GetArchiveStatus()});
    return image;
}

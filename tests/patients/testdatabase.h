#pragma once

#include "suite/patients/velpat.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

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

/// A patient with something in every field.
inline dbCPatient FullPatient(LPCTSTR pszID, const CString& strText = "text")
{
    dbCPatient patient = NewPatient(pszID, strText, strText);
    patient.SetNickname(strText);
    patient.SetEmail(strText);
    patient.SetTitle(strText);
    patient.SetSalutation(strText);
    patient.SetModelNumber("M-1234567");
    patient.SetKeywords(strText);
    patient.SetNotes(strText + "\r\nsecond line");
    patient.SetTeeth("PPPPPPPPPPPPPPPPPPPPPPPPPPPPPPMX");
    patient.SetVeltrixID("V" + CString(pszID));
    patient.SetGender(2);
    patient.SetGenderIdentity(3);
    patient.SetRace(8);
    patient.SetNorm(4);

    dbCAddress address;
    address.SetType("O");
    address.SetCompany(strText);
    address.SetStreet(strText);
    address.SetCity(strText);
    address.SetState(strText);
    address.SetPostalCode(strText);
    address.SetCountry(strText);
    patient.SetAddress(1, address);
    patient.GetPhones().Add(dbCPhone(strText, "Home"));
    patient.GetPhones().Add(dbCPhone("555-0100", strText));

    dbCPerson guardian;
    guardian.SetFirstname(strText);
    guardian.SetLastname(strText);
    guardian.SetTitle(strText);
    guardian.SetNickname(strText);
    guardian.SetNotes(strText);
    guardian.SetEmail(strText);
    guardian.SetBirthdate(velCDate(1975, 12, 31));
    guardian.SetGender(1);
    guardian.SetAddress(0, address);
    guardian.SetPhone(0, dbCPhone("555-0101", "Mobile"));
    patient.AddPersonInfo(dbPersonGuardian, guardian);

    dbCInsurance insurance;
    insurance.SetHolder(strText);
    insurance.SetNumber(strText);
    insurance.SetGroup(strText);
    insurance.SetNote(strText);
    patient.AssignInsurance(insurance);

    for (int i = 0; i < 3; ++i)
    {
        dbCTimepoint timepoint;
        timepoint.SetName(strText);
        timepoint.SetDate(COleDateTime(2020 + i, 5, 17, 14, 30, 59));
        timepoint.SetImage(0, i);
        timepoint.SetImage(4, 0);
        timepoint.SetImageInfo(0, i, {strText, strText, dbNewGUID()});
        timepoint.SetActive(i != 1);
        EXPECT_EQ(patient.GetTimepoints().Add(&patient, timepoint, TRUE, FALSE), 0);
    }
    return patient;
}

#pragma once

#include "suite/patients/velpat.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <string>
#include <vector>

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

/// A patient with something in every field, no text twice.
inline dbCPatient FullPatient(LPCTSTR pszID, const CString& strText = "text")
{
    int nText = 0;
    const auto text = [&] { return strText + std::to_string(nText++).c_str(); };
    dbCPatient patient = NewPatient(pszID, text());
    patient.SetFirstname(text());
    patient.SetNickname(text());
    patient.SetEmail(text());
    patient.SetTitle(text());
    patient.SetSalutation(text());
    patient.SetModelNumber("M-1234567");
    patient.SetKeywords(text());
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
        address.SetCompany(text());
        address.SetStreet(text());
        address.SetCity(text());
        address.SetState(text());
        address.SetPostalCode(text());
        address.SetCountry(text());
        patient.SetAddress(i, address);
    }
    patient.GetPhones().Add(dbCPhone(text(), "Home"));
    patient.GetPhones().Add(dbCPhone("555-0100", text()));

    dbCPerson guardian;
    guardian.SetFirstname(text());
    guardian.SetLastname(text());
    guardian.SetTitle(text());
    guardian.SetNickname(text());
    guardian.SetSalutation(text());
    guardian.SetNotes(text());
    guardian.SetEmail(text());
    guardian.SetBirthdate(velCDate(1975, 12, 31));
    guardian.SetGender(1);
    guardian.SetAddress(0, patient.GetAddress(1));
    guardian.SetPhone(0, dbCPhone("555-0101", "Mobile"));
    patient.AddPersonInfo(dbPersonGuardian, guardian);

    dbCInsurance insurance;
    insurance.SetHolder(text());
    insurance.SetNumber(text());
    insurance.SetGroup(text());
    insurance.SetNote(text());
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

/// Collects what a caller can read, a line each.
class FieldLines
{
public:
    FieldLines& operator<<(const CString& strText)
    {
        m_lines.emplace_back(strText.GetString());
        return *this;
    }
    FieldLines& operator<<(int nValue)
    {
        m_lines.push_back(std::to_string(nValue));
        return *this;
    }
    FieldLines& operator<<(const velCDate& date)
    {
        m_lines.emplace_back(date.IsValid() ? date.Format("%Y-%m-%d %H:%M:%S").GetString() : "no date");
        return *this;
    }
    FieldLines& operator<<(const dbCAddress& a)
    {
        return *this << a.GetType() << a.GetCompany() << a.GetStreet() << a.GetCity() << a.GetState()
                     << a.GetPostalCode() << a.GetCountry();
    }
    FieldLines& operator<<(const dbCPhone& phone)
    {
        return *this << phone.GetNumber() << phone.GetType();
    }
    FieldLines& operator<<(const dbCPerson& p)
    {
        return *this << p.GetPersonGUID() << p.GetTitle() << p.GetFirstname() << p.GetLastname()
                     << p.GetNickname() << p.GetSalutation() << p.GetNotes() << p.GetEmail()
                     << p.GetBirthdate() << p.GetGender() << p.GetAddresses() << p.GetPhones();
    }
    FieldLines& operator<<(const dbCInsurance& i)
    {
        return *this << i.GetInsuranceGUID() << i.GetCompanyGUID() << i.GetCompanyName() << i.GetHolder()
                     << i.GetNumber() << i.GetGroup() << i.GetNote();
    }
    FieldLines& operator<<(const dbCPatientReferralsRow& r)
    {
        return *this << r.Get_refID() << r.Get_docID() << r.Get_type() << r.Get_note() << r.Get_date()
                     << r.Get_docFirstname() << r.Get_docLastname() << r.Get_docEmail();
    }
    FieldLines& operator<<(const patCTimepoint& t)
    {
        *this << t.GettpID() << t.GetName() << t.GetDate() << t.GetptshID() << t.GetNumber()
              << t.GetBaseFilename() << t.IsActive();
        for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
            *this << static_cast<int>(t.GetImageBits(nGroup));
        for (const auto& [slot, info] : t.GetImageInfos())
            *this << slot.first << slot.second << info.strTitle << info.strNote << info.strGUID;
        return *this;
    }
    FieldLines& operator<<(const dbCDiagnosticInfo& d)
    {
        return *this << d.GetGroupTitle() << d.GetItemCode() << d.GetTP() << d.GetValue() << d.GetNote();
    }
    FieldLines& operator<<(const dbCPatientTreatmentStatusHistoryRow& t)
    {
        return *this << t.GetptshID() << t.GetDescription() << t.GetNewCode() << t.GetActive()
                     << t.GetDateTime();
    }
    template <typename T> FieldLines& operator<<(const dbTList<T>& list)
    {
        *this << list.GetCount();
        for (const T& item : list)
            *this << item;
        return *this;
    }

    std::vector<std::string> TakeLines()
    {
        return std::move(m_lines);
    }

private:
    std::vector<std::string> m_lines;
};

/// Every field of a patient, with what came along in an archive.
inline std::vector<std::string> Fields(const dbCPatient& p)
{
    FieldLines lines;
    lines << p.GetID() << p.GetGUID() << p.GetLastname() << p.GetFirstname() << p.GetNickname()
          << p.GetEmail() << p.GetTitle() << p.GetSalutation() << p.GetModelNumber() << p.GetKeywords()
          << p.GetNotes() << p.GetTeeth() << p.GetOfficeID() << p.GetStatusID() << p.GetVeltrixID()
          << p.GetBirthdate() << p.GetDate() << p.GetGender() << p.GetGenderIdentity() << p.GetRace()
          << p.GetNorm() << p.GetAddresses() << p.GetPhones() << p.GetInsurances() << p.GetReferrals()
          << p.GetTimepoints() << p.GetArchiveDiagnostics() << p.GetArchiveTreatments()
          << p.GetArchiveOffice() << p.GetArchiveStatus();
    for (const int nKind : {dbPersonGuardian, dbPersonTreatingDoctor, dbPersonReferringDoctor})
    {
        dbCPerson person;
        lines << p.GetPersonInfo(nKind, person) << person;
    }
    return lines.TakeLines();
}

/// Where two patients' fields differ first; empty when they do not.
inline std::string Difference(const std::vector<std::string>& found, const std::vector<std::string>& expected)
{
    for (size_t i = 0; i < std::max(found.size(), expected.size()); ++i)
        if (i >= found.size() || i >= expected.size() || found[i] != expected[i])
            return "line " + std::to_string(i) + ": \"" + (i < found.size() ? found[i] : "") +
                   "\" instead of \"" + (i < expected.size() ? expected[i] : "") + "\"";
    return {};
}

// The sheet against a database that fails, and other users.

#include "tests/patient/sheetfixture.h"

namespace
{

// Some reason follows.
const auto notSaved =
    testing::ContainsRegex("^The patient could not be saved. Nothing was changed.\n\n......");

// A patient list that does something when OK has asked for the ID, once.
class WatchedPatients : public dbCPatients
{
public:
    using Action = std::function<void(LPCTSTR pszID)>;

    BOOL IsIDFree(LPCTSTR pszID) override
    {
        const BOOL bFree = dbCPatients::IsIDFree(pszID);
        if (const Action action = std::exchange(m_onUniqueID, nullptr))
            action(pszID);
        return bFree;
    }

    Action m_onUniqueID;
};

class SheetFailureTest : public SheetTest
{
protected:
    SheetFailureTest()
    {
        m_pPatients = &m_watched;
    }

    WatchedPatients m_watched;
};

TEST_F(SheetFailureTest, ADatabaseThatFailsDuringOKLeavesTheSheetOpen)
{
    const WatchedPatients::Action fail = [](LPCTSTR) { dbCException::Throw(dbErrIO, "the cable is out"); };
    const WatchedPatients::Action close = [](LPCTSTR) { dbCPatients::Close(); };
    for (const WatchedPatients::Action& fault : {fail, close})
    {
        m_watched.m_onUniqueID = fault;
        New(IDCANCEL, [](DialogScript& script, const Dialog& sheet) {
            FillNames(sheet, "A1");
            ExpectRefused(script, sheet, notSaved);
            EXPECT_EQ(sheet.Item(IDC_CHART_FIRSTNAME).Text(), "Ann");
        });
        dbCPatients::Open(database.Path().c_str());
        EXPECT_TRUE(m_patients.IsIDFree("A1"));
    }
}

// The write fails after the pages have added a company and been copied. Nothing of it is left, neither in the
// database nor in the record, and the second OK writes all of it.
TEST_F(SheetFailureTest, AnOKThatFailsLeavesNothingAndLosesNothing)
{
    dbCPatient patient = StorePatient("A1");
    PatientImage expected = database.ImageOf("A1");
    m_watched.m_onUniqueID = [](LPCTSTR pszID) { NewPatient(pszID, "Other").Save(); }; // another user's
    Change(patient, IDOK, [&](DialogScript& script, const Dialog& sheet) {
        sheet.Item(IDC_CHART_ID).SetText("A2");
        sheet.Item(IDC_CHART_TEETH).Focus();
        sheet.Item(IDC_CHART_TEETH).PostKey(VK_SPACE);
        sheet.SelectPage(pat::GuardianPage);
        sheet.Item(IDC_GUARD_TITLE).SetText("Dr");
        sheet.SelectPage(pat::ReferralPage);
        sheet.Item(IDC_REFER_DOCTOR).Choose("Bell, Grace");
        PressSettled(sheet, IDC_ROWS_ADD);
        sheet.SelectPage(pat::InsurancePage);
        sheet.Item(IDC_INSURE_COMPANY).SetText("Northfield");
        PressSettled(sheet, IDC_ROWS_ADD);
        ExpectRefused(script, sheet, "The patient ID already exists. Please enter a unique ID.",
                      IDC_CHART_ID);
        sheet.Item(IDC_CHART_ID).SetText("A3");
    });
    expected["patientID"] = "A3";
    expected["1.title"] = "Dr";
    expected["teeth"] = "M" + std::string(31, 'P');
    for (const auto& [name, value] : database.ImageOf("A3"))
        if (name.starts_with("referral.1.") || name.starts_with("insurance.1."))
            expected[name] = value;
    expected["referral.1.doctor"] = "Bell, Grace";
    expected["insurance.1.company"] = "Northfield";
    ExpectStored("A3", expected);
    dbCInsuranceCompanies companies;
    companies.Load();
    EXPECT_EQ(companies.GetCount(), 2);
    EXPECT_EQ(Loaded("A2").GetLastname(0), "Other");
}

TEST_F(SheetFailureTest, ARecordThatIsHereAlreadySaysSo)
{
    const dbCPatient patient = StorePatient("A1");
    dbCPatient data;
    data.SetGUID(patient.GetGUID());
    NewWithData(data, IDCANCEL, [](DialogScript& script, const Dialog& sheet) {
        FillNames(sheet, "A2", "Bea", "Moor");
        ExpectRefused(
            script, sheet,
            "This record belongs to a patient who is in the patient list already, under another ID. "
            "Nothing was saved.");
    });
    EXPECT_TRUE(m_patients.IsIDFree("A2"));
    EXPECT_TRUE(data.GetID().IsEmpty() && data.GetLastname(0).IsEmpty());
}

// The caller's record takes part in what the caller does with the database around the sheet.
TEST_F(SheetFailureTest, TheCallersTransactionCanUndoTheSheet)
{
    dbCPatient data;
    {
        dbCTransaction outer;
        NewWithData(data, IDOK, [](DialogScript&, const Dialog& sheet) { FillNames(sheet, "A1"); });
        EXPECT_TRUE(data.IsValid());
        EXPECT_EQ(data.GetID(), "A1");
    }
    EXPECT_FALSE(data.IsValid());
    EXPECT_TRUE(m_patients.IsIDFree("A1"));
    data.Save();
    EXPECT_EQ(Loaded("A1").GetFirstname(0), "Ann");
}

TEST_F(SheetFailureTest, ARecordChangedElsewhereIsNotOverwritten)
{
    dbCPatient patient = StorePatient("A1");
    dbCPatient other = Loaded("A1");
    other.SetNickname("other");
    PatientImage expected;
    m_watched.m_onUniqueID = [&](LPCTSTR) {
        other.Save();
        expected = database.ImageOf("A1");
    };
    Change(patient, IDCANCEL, [](DialogScript& script, const Dialog& sheet) {
        FillNames(sheet, "A2", "Anna", "Lee");
        ExpectRefused(script, sheet, notSaved);
    });
    ExpectStored("A1", expected);
}

TEST_F(SheetFailureTest, APatientThatIsGoneCanOnlyBeCancelled)
{
    dbCPatient patient = StorePatient("A1");
    m_patients.DeletePatient("A1");
    const auto result =
        veltest::RunModal([&] { return ChangePatientDlg(nullptr, m_pPatients, &patient); },
                          [](DialogScript& script) {
                              script.AnswerBox("Error occurs when loading patient info", IDOK);
                              const Dialog sheet = script.WaitForDialogWith(IDC_CHART_ID);
                              EXPECT_FALSE(sheet.Item(IDOK).IsEnabled());
                              FillNames(sheet, "A1");
                              sheet.Press(IDCANCEL);
                          });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_TRUE(m_patients.IsIDFree("A1"));
}

// Pages that need the database say so, and the sheet stays.
TEST_F(SheetFailureTest, ALostDatabaseIsReportedByThePagesThatNeedIt)
{
    database.practice.Set("Environment", "DatabaseTimeout", "1");
    New(IDCANCEL, [&](DialogScript& script, const Dialog& sheet) {
        FillNames(sheet, "A2");
        database.Execute("DROP TABLE doctors; DROP TABLE insuranceCompanies");
        for (const int nPage : {pat::DetailPage, pat::ReferralPage, pat::InsurancePage})
        {
            sheet.SelectPage(nPage);
            ExpectBox(script, sheet, testing::HasSubstr("could not be read.\n\n"));
        }
    });
}

} // namespace

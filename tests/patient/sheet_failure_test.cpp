// The sheet against a database that fails, and other users.

#include "tests/patient/patientimage.h"
#include "tests/patient/sheetfixture.h"

using veltest::Dialog;
using veltest::DialogScript;

namespace
{

using SheetFailureTest = SheetTest;

constexpr char takenID[] = "The patient ID already exists. Please enter a unique ID.";
constexpr char notSaved[] = "The patient could not be saved. Nothing was changed.";

void ExpectNotSaved(DialogScript& script, const Dialog& sheet)
{
    sheet.Press(IDOK);
    const Dialog box = script.WaitForBox();
    EXPECT_THAT(box.BoxText(), testing::StartsWith(std::string(notSaved) + "\n\n"));
    EXPECT_GT(box.BoxText().size(), sizeof notSaved + 5); // the reason is given
    box.Press(IDOK);
    script.WaitUntil("the sheet is usable again", [&] { return sheet.IsEnabled(); });
}

// A patient list whose database goes away at a given moment, or that fails outright.
class FailingPatients : public dbCPatients
{
public:
    enum class Moment
    {
        UniqueID,
        SimilarPatient,
        AfterTheChecks
    };

    explicit FailingPatients(Moment moment) : m_moment(moment)
    {
    }
    BOOL IsIDFree(LPCTSTR pszID) override
    {
        Fail(Moment::UniqueID);
        return dbCPatients::IsIDFree(pszID);
    }
    BOOL FindSimilar(LPCTSTR pszFirst, LPCTSTR pszLast, const velCDate& dateBirth, CString* pstrGUID) override
    {
        Fail(Moment::SimilarPatient);
        const BOOL bFound = dbCPatients::FindSimilar(pszFirst, pszLast, dateBirth, pstrGUID);
        if (m_moment == Moment::AfterTheChecks)
            dbCPatients::Close();
        return bFound;
    }

private:
    void Fail(Moment moment) const
    {
        if (m_moment == moment)
            dbCException::Throw(dbErrIO, "the cable is out");
    }

    Moment m_moment;
};

TEST_F(SheetFailureTest, ADatabaseThatFailsDuringOKLeavesTheSheetOpen)
{
    for (const auto moment : {FailingPatients::Moment::UniqueID, FailingPatients::Moment::SimilarPatient,
                              FailingPatients::Moment::AfterTheChecks})
    {
        FailingPatients patients(moment);
        m_pPatients = &patients;
        EXPECT_EQ(RunNew([](DialogScript& script) {
                      const Dialog sheet = WaitForSheet(script);
                      FillNames(sheet, "A1", "Ann", "Lee");
                      ExpectNotSaved(script, sheet);
                      EXPECT_EQ(sheet.Item(IDC_CHART_FIRSTNAME).Text(), "Ann");
                      sheet.Press(IDCANCEL);
                  }),
                  IDCANCEL);
        if (!dbCPatients::IsOpen())
            dbCPatients::Open(DatabasePath().c_str());
        EXPECT_TRUE(m_patients.IsIDFree("A1"));
    }
}

// Answers that an ID is free, and lets another user take it at once, the first time.
class RacingPatients : public dbCPatients
{
public:
    BOOL IsIDFree(LPCTSTR pszID) override
    {
        const BOOL bFree = dbCPatients::IsIDFree(pszID);
        if (bFree && !m_bTaken)
        {
            dbCPatient other;
            other.SetID(pszID);
            other.SetLastname("Other");
            other.Save();
            m_bTaken = true;
        }
        return bFree;
    }

private:
    bool m_bTaken = false;
};

// The write fails after the pages have added a company and been copied. Nothing of it is left, neither in the
// database nor in the record, and the second OK writes all of it.
TEST_F(SheetFailureTest, AnOKThatFailsLeavesNothingAndLosesNothing)
{
    dbCPatient patient = StorePatient("A1");
    const PatientImage before = ImageOf(patient);
    RacingPatients patients;
    m_pPatients = &patients;
    EXPECT_EQ(RunChange(patient,
                        [&](DialogScript& script) {
                            const Dialog sheet = WaitForSheet(script);
                            sheet.Item(IDC_CHART_ID).SetText("A2");
                            sheet.Item(IDC_CHART_TEETH).Focus();
                            sheet.Item(IDC_CHART_TEETH).PostKey(VK_SPACE);
                            sheet.SelectPage(pat::GuardianPage);
                            sheet.Item(IDC_GUARD_TITLE).SetText("Dr");
                            sheet.SelectPage(pat::ReferralPage);
                            sheet.Item(IDC_REFER_DOCTOR).Choose("Bell, Grace");
                            sheet.SettleIdle();
                            sheet.Press(IDC_ROWS_ADD);
                            sheet.SelectPage(pat::InsurancePage);
                            sheet.Item(IDC_INSURE_COMPANY).SetText("Northfield");
                            sheet.SettleIdle();
                            sheet.Press(IDC_ROWS_ADD);
                            ExpectRefused(script, sheet, takenID, IDC_CHART_ID);
                            EXPECT_EQ(SelectedText(sheet.Item(IDC_CHART_ID)), "A2");
                            sheet.Item(IDC_CHART_ID).SetText("A3");
                            sheet.Press(IDOK);
                        }),
              IDOK);
    PatientImage expected = before;
    const dbCPatient changed = Stored("A3");
    const PatientImage after = ImageOf(changed);
    expected["id"] = "A3";
    expected["person.0.title"] = "Dr";
    for (const auto& [name, value] : after)
    {
        if (name.starts_with("referral.1.") || name.starts_with("insurance.1."))
            expected[name] = value;
    }
    expected["teeth"] = std::string("M") + std::string(31, 'P');
    expected["referral.1.doctor"] = m_strGrace.GetString();
    expected["insurance.1.company"] = "Northfield";
    EXPECT_THAT(Differences(expected, after), testing::IsEmpty());
    dbCInsuranceCompanies companies;
    companies.Load();
    EXPECT_EQ(companies.GetCount(), 2);
    EXPECT_EQ(Stored("A2").GetLastname(0), "Other");
}

TEST_F(SheetFailureTest, ARecordThatIsHereAlreadySaysSo)
{
    const dbCPatient patient = StorePatient("A1");
    dbCPatient data;
    data.SetGUID(patient.GetGUID());
    EXPECT_EQ(RunNewWithData(data,
                             [](DialogScript& script) {
                                 const Dialog sheet = WaitForSheet(script);
                                 FillNames(sheet, "A2", "Bea", "Moor");
                                 ExpectRefused(script, sheet,
                                               "This record belongs to a patient who is in the patient list "
                                               "already, under another ID. Nothing was saved.");
                                 sheet.Press(IDCANCEL);
                             }),
              IDCANCEL);
    EXPECT_TRUE(m_patients.IsIDFree("A2"));
}

// The caller's record takes part in what the caller does with the database around the sheet.
TEST_F(SheetFailureTest, TheCallersTransactionCanUndoTheSheet)
{
    dbCPatient data;
    {
        dbCTransaction outer;
        EXPECT_EQ(RunNewWithData(data,
                                 [](DialogScript& script) {
                                     const Dialog sheet = WaitForSheet(script);
                                     FillNames(sheet, "A1", "Ann", "Lee");
                                     sheet.Press(IDOK);
                                 }),
                  IDOK);
        EXPECT_TRUE(data.IsValid());
        EXPECT_EQ(data.GetID(), "A1");
    }
    EXPECT_FALSE(data.IsValid());
    EXPECT_TRUE(m_patients.IsIDFree("A1"));
    data.Save();
    EXPECT_EQ(Stored("A1").GetFirstname(0), "Ann");
}

TEST_F(SheetFailureTest, ARecordChangedElsewhereIsNotOverwritten)
{
    dbCPatient patient = StorePatient("A1");
    dbCPatient other = Stored("A1");

    // Changes the record behind the sheet's back, on the user interface thread, while OK is being handled.
    class : public dbCPatients
    {
    public:
        BOOL IsIDFree(LPCTSTR pszID) override
        {
            if (m_pOther != nullptr)
                m_pOther->Save();
            m_pOther = nullptr;
            return dbCPatients::IsIDFree(pszID);
        }
        dbCPatient* m_pOther = nullptr;
    } patients;
    other.SetNickname("other");
    patients.m_pOther = &other;
    m_pPatients = &patients;
    EXPECT_EQ(RunChange(patient,
                        [](DialogScript& script) {
                            const Dialog sheet = WaitForSheet(script);
                            FillNames(sheet, "A2", "Anna", "Lee");
                            ExpectNotSaved(script, sheet);
                            sheet.Press(IDCANCEL);
                        }),
              IDCANCEL);
    EXPECT_EQ(Stored("A1").GetNickname(), "other");
    EXPECT_EQ(Stored("A1").GetFirstname(0), "Ann");
}

TEST_F(SheetFailureTest, APatientThatIsGoneCanOnlyBeCancelled)
{
    dbCPatient patient = StorePatient("A1");
    m_patients.DeletePatient("A1");
    EXPECT_EQ(RunChange(patient,
                        [](DialogScript& script) {
                            script.AnswerBox("Error occurs when loading patient info", IDOK);
                            const Dialog sheet = WaitForSheet(script);
                            EXPECT_FALSE(sheet.Item(IDOK).IsEnabled());
                            FillNames(sheet, "A1", "Ann", "Lee");
                            sheet.Press(IDCANCEL);
                        }),
              IDCANCEL);
    EXPECT_TRUE(m_patients.IsIDFree("A1"));
}

} // namespace

// What reaches the database through the sheet, and what does not.

#include "tests/patient/sheetfixture.h"

using veltest::Dialog;
using veltest::DialogScript;

namespace
{

using SheetSaveTest = SheetTest;

TEST_F(SheetSaveTest, ListPagesChangeAndRemoveRows)
{
    dbCPatient patient = StorePatient("A1");
    const CString strDoctor = StoreDoctor("Noor", "Abel");
    EXPECT_EQ(RunChange(patient,
                        [](DialogScript& script) {
                            const Dialog sheet = WaitForSheet(script);
                            sheet.SelectPage(pat::ReferralPage);
                            sheet.SettleIdle();
                            EXPECT_FALSE(sheet.Item(IDC_ROWS_CHANGE).IsEnabled());
                            sheet.Item(IDC_ROWS_LIST).SelectRow(0);
                            EXPECT_EQ(sheet.Item(IDC_REFER_DOCTOR).SelectedItem(), "Sorel, Ida");
                            sheet.Item(IDC_REFER_DOCTOR).Choose("Abel, Noor");
                            sheet.Item(IDC_REFER_NOTE).SetText("spacing");
                            sheet.SettleIdle();
                            sheet.Press(IDC_ROWS_CHANGE);
                            sheet.SelectPage(pat::InsurancePage);
                            sheet.Item(IDC_ROWS_LIST).SelectRow(0);
                            sheet.SettleIdle();
                            sheet.Press(IDC_ROWS_REMOVE);
                            EXPECT_TRUE(sheet.Item(IDC_ROWS_LIST).Rows().empty());
                            sheet.SelectPage(pat::GuardianPage); // emptied but for the country
                            for (const int nControl :
                                 {IDC_GUARD_TITLE, IDC_GUARD_FIRSTNAME, IDC_GUARD_LASTNAME,
                                  IDC_GUARD_NICKNAME, IDC_GUARD_COMPANY, IDC_GUARD_STREET, IDC_GUARD_CITY,
                                  IDC_GUARD_STATE, IDC_GUARD_POSTALCODE, IDC_GUARD_PHONE1, IDC_GUARD_PHONE2,
                                  IDC_GUARD_EMAIL, IDC_GUARD_NOTES})
                                sheet.Item(nControl).SetText("");
                            sheet.Press(IDOK);
                        }),
              IDOK);
    const dbCPatient changed = Stored("A1");
    ASSERT_EQ(changed.GetReferrals().GetCount(), 1);
    EXPECT_EQ(changed.GetReferrals()[0].Get_docID(), strDoctor);
    EXPECT_EQ(changed.GetReferrals()[0].Get_note(), "spacing");
    EXPECT_EQ(changed.GetReferrals()[0].Get_date().ToISO(), "2020-05-06");
    EXPECT_EQ(changed.GetInsurances().GetCount(), 0);
    dbCPerson guardian;
    EXPECT_FALSE(changed.GetPersonInfo(dbPersonGuardian, guardian));
}

TEST_F(SheetSaveTest, CancelWritesNothing)
{
    dbCPatient patient = StorePatient("A1");
    const __int64 nBefore = dbCPatients::GetChangeCounter();
    EXPECT_EQ(RunNew([](DialogScript& script) {
                  const Dialog sheet = WaitForSheet(script);
                  FillNames(sheet, "B1", "Bob", "Lee");
                  sheet.Press(IDCANCEL);
              }),
              IDCANCEL);
    EXPECT_TRUE(m_strGUID.IsEmpty());
    EXPECT_EQ(RunChange(patient,
                        [](DialogScript& script) {
                            const Dialog sheet = WaitForSheet(script);
                            FillNames(sheet, "B1", "Bob", "Lee");
                            sheet.Close();
                        }),
              IDCANCEL);
    EXPECT_EQ(dbCPatients::GetChangeCounter(), nBefore);
}

TEST_F(SheetSaveTest, APatientThatIsGoneCanOnlyBeCancelled)
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

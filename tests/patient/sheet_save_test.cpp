// What reaches the database through the sheet, and what does not.

#include "tests/patient/sheetfixture.h"

using veltest::Dialog;
using veltest::DialogScript;

namespace
{

using SheetSaveTest = SheetTest;

std::string LatestEvent()
{
    dbTList<dbSAuditEvent> events;
    return CVeltrixLogin::LoadEvents(events, 1) == 1 ? events[0].strText.GetString() : "";
}

TEST_F(SheetSaveTest, ANewPatientPassesThroughAllFivePages)
{
    StoreDoctor("Ida", "Sorel");
    m_practice.Set("Defaults", "Country", "Ruritania");
    const __int64 nResult = RunNew([](DialogScript& script) {
        const Dialog sheet = WaitForSheet(script);
        EXPECT_EQ(sheet.Title(), "Patient Information");
        EXPECT_EQ(sheet.PageCount(), 5);
        EXPECT_EQ(sheet.Item(IDC_CHART_COUNTRY).Text(), "Ruritania");
        EXPECT_EQ(sheet.Item(IDC_CHART_PHONETYPE1).Items().front(), "");
        EXPECT_FALSE(sheet.Item(IDC_CHART_TEETH).IsEnabled());
        sheet.Item(IDC_CHART_ID).Type("A-1_B");
        sheet.Item(IDC_CHART_FIRSTNAME).Type("Ann");
        sheet.Item(IDC_CHART_LASTNAME).Type("Lee");
        sheet.Item(IDC_CHART_NICKNAME).SetText("Nan");
        sheet.Item(IDC_CHART_BIRTHDATE).SetDate(2012, 3, 4);
        sheet.Press(IDC_CHART_GENDER_FIRST);
        sheet.Item(IDC_CHART_GENDER_IDENTITY).Choose("Non-Binary");
        sheet.Item(IDC_CHART_RACE).Choose("Korean");
        sheet.Press(IDC_CHART_ADDRESS_OFFICE);
        sheet.Item(IDC_CHART_COMPANY).SetText("Lee & Sons");
        sheet.Item(IDC_CHART_STREET).SetText("Quay 1");
        sheet.Item(IDC_CHART_CITY).SetText("Northport");
        sheet.Item(IDC_CHART_STATE).SetText("RU");
        sheet.Item(IDC_CHART_POSTALCODE).SetText("12345");
        sheet.Item(IDC_CHART_PHONE1).SetText("111");
        sheet.Item(IDC_CHART_PHONETYPE1).Choose(1);
        sheet.Item(IDC_CHART_PHONETYPE2).Choose(2); // a type without a number passes
        sheet.Item(IDC_CHART_EMAIL).SetText("ann@example.org");

        sheet.SelectPage(pat::DetailPage);
        sheet.SelectPage(pat::GuardianPage);
        EXPECT_EQ(sheet.Item(IDC_GUARD_COUNTRY).Text(), "Ruritania");
        EXPECT_EQ(sheet.Item(IDC_GUARD_BIRTHDATE).Date().wYear, 0);
        sheet.Item(IDC_GUARD_TITLE).SetText("Dr");
        sheet.Item(IDC_GUARD_FIRSTNAME).SetText("Eve");
        sheet.Item(IDC_GUARD_LASTNAME).SetText("Lee");
        sheet.Item(IDC_GUARD_BIRTHDATE).SetDate(1980, 12, 31);
        sheet.Press(IDC_GUARD_GENDER_FIRST);
        sheet.Item(IDC_GUARD_CITY).SetText("Southport");
        sheet.Item(IDC_GUARD_PHONE2).SetText("222");
        sheet.Item(IDC_GUARD_PHONETYPE2).Choose(1);
        sheet.Item(IDC_GUARD_NOTES).SetText("line 1\r\nline 2");

        sheet.SelectPage(pat::ReferralPage);
        sheet.Item(IDC_REFER_DOCTOR).Choose("Sorel, Ida");
        sheet.Item(IDC_REFER_DATE).SetDate(2020, 5, 6);
        sheet.Item(IDC_REFER_NOTE).SetText("crowding");
        sheet.SettleIdle();
        sheet.Press(IDC_REFER_ADD);
        EXPECT_EQ(sheet.Item(IDC_REFER_LIST).Rows().size(), 1u);

        sheet.SelectPage(pat::InsurancePage);
        for (const char* pszCompany : {"Northfield", "Harbour Mutual"})
        {
            sheet.Item(IDC_INSURE_COMPANY).SetText(pszCompany);
            sheet.Item(IDC_INSURE_HOLDER).SetText("Eve Lee");
            sheet.Item(IDC_INSURE_NUMBER).SetText("17");
            sheet.SettleIdle();
            sheet.Press(IDC_INSURE_ADD);
        }
        sheet.Item(IDC_INSURE_LIST).SelectRow(1);
        sheet.SettleIdle();
        sheet.Press(IDC_INSURE_PRIMARY);
        sheet.Press(IDOK);
    });
    EXPECT_EQ(nResult, IDOK);

    const dbCPatient patient = Stored("A-1_B");
    EXPECT_EQ(patient.GetGUID(), m_strGUID);
    EXPECT_EQ(LatestEvent(), "The patient (A-1_B) Lee, Ann has been created");
    EXPECT_EQ(patient.GetFirstname(0), "Ann");
    EXPECT_EQ(patient.GetLastname(0), "Lee");
    EXPECT_EQ(patient.GetNickname(), "Nan");
    EXPECT_EQ(patient.GetBirthdate().ToISO(), "2012-03-04");
    EXPECT_EQ(patient.GetGender(), 1);
    EXPECT_EQ(patient.GetGenderIdentity(), 3);
    EXPECT_EQ(patient.GetRace(), 9);
    EXPECT_EQ(patient.GetEmail(), "ann@example.org");
    const dbCAddress address = patient.GetAddress(0);
    EXPECT_EQ(address.GetType(), "O");
    EXPECT_EQ(address.GetCompany(), "Lee & Sons");
    EXPECT_EQ(address.GetStreet(), "Quay 1");
    EXPECT_EQ(address.GetCity(), "Northport");
    EXPECT_EQ(address.GetState(), "RU");
    EXPECT_EQ(address.GetPostalCode(), "12345");
    EXPECT_EQ(address.GetCountry(), "Ruritania");
    ASSERT_GE(patient.GetPhones().GetCount(), 1);
    EXPECT_EQ(patient.GetPhones()[0].GetNumber(), "111");
    EXPECT_EQ(patient.GetPhones()[0].GetType(), dbCPhone::GetTypeName(0));

    dbCPerson guardian;
    ASSERT_TRUE(patient.GetPersonInfo(dbPersonGuardian, guardian));
    EXPECT_EQ(guardian.GetTitle(), "Dr");
    EXPECT_EQ(guardian.GetFirstname(), "Eve");
    EXPECT_EQ(guardian.GetLastname(), "Lee");
    EXPECT_EQ(guardian.GetBirthdate().ToISO(), "1980-12-31");
    EXPECT_EQ(guardian.GetGender(), 1);
    EXPECT_EQ(guardian.GetAddress().GetCity(), "Southport");
    EXPECT_EQ(guardian.GetAddress().GetType(), "H");
    EXPECT_EQ(guardian.GetPhone(1).GetNumber(), "222");
    EXPECT_EQ(guardian.GetNotes(), "line 1\r\nline 2");

    ASSERT_EQ(patient.GetReferrals().GetCount(), 1);
    EXPECT_EQ(patient.GetReferrals()[0].Get_docLastname(), "Sorel");
    EXPECT_EQ(patient.GetReferrals()[0].Get_type(), DB_REFERRAL_DOC);
    EXPECT_EQ(patient.GetReferrals()[0].Get_date().ToISO(), "2020-05-06");
    EXPECT_EQ(patient.GetReferrals()[0].Get_note(), "crowding");

    dbCInsuranceCompanies companies;
    companies.Load();
    EXPECT_EQ(companies.GetCount(), 2);
    ASSERT_EQ(patient.GetInsurances().GetCount(), 2);
    const dbCInsurance& primary = patient.GetInsurances()[0];
    const int nCompany = companies.Find(primary.GetCompanyGUID());
    ASSERT_GE(nCompany, 0);
    EXPECT_EQ(companies[nCompany].GetName(), "Harbour Mutual");
    EXPECT_EQ(primary.GetHolder(), "Eve Lee");
    EXPECT_EQ(primary.GetNumber(), "17");
}

TEST_F(SheetSaveTest, AChangeShowsWhatIsStoredAndKeepsWhatIsNotShown)
{
    dbCPatient patient = StorePatient("A1");
    EXPECT_EQ(RunChange(patient,
                        [](DialogScript& script) {
                            const Dialog sheet = WaitForSheet(script);
                            EXPECT_EQ(sheet.Title(), "Patient Information - Ann Lee ID: A1");
                            EXPECT_EQ(sheet.Item(IDC_CHART_ID).Text(), "A1");
                            EXPECT_EQ(sheet.Item(IDC_CHART_BIRTHDATE).Date().wYear, 2012);
                            EXPECT_TRUE(sheet.Item(IDC_CHART_GENDER_FIRST).IsChecked());
                            EXPECT_EQ(sheet.Item(IDC_CHART_GENDER_IDENTITY).SelectedItem(), "Non-Binary");
                            EXPECT_EQ(sheet.Item(IDC_CHART_RACE).SelectedItem(), "Korean");
                            EXPECT_TRUE(sheet.Item(IDC_CHART_ADDRESS_OFFICE).IsChecked());
                            EXPECT_EQ(sheet.Item(IDC_CHART_STREET).Text(), "Quay 1");
                            EXPECT_EQ(sheet.Item(IDC_CHART_PHONE2).Text(), "222");
                            EXPECT_EQ(sheet.Item(IDC_CHART_PHONETYPE2).SelectedItem(), "Pager");
                            sheet.Item(IDC_CHART_FIRSTNAME).SetText("Anna");
                            sheet.Item(IDC_CHART_PHONE1).SetText("");
                            sheet.Item(IDC_CHART_PHONETYPE1).Choose(0);
                            for (int nPage = 1; nPage < pat::PageCount; ++nPage)
                                sheet.SelectPage(nPage);
                            EXPECT_EQ(sheet.Item(IDC_INSURE_LIST).Rows(),
                                      (std::vector<std::vector<std::string>>{
                                          {"Harbour Mutual", "Eve Lee", "17", ""}}));
                            sheet.SelectPage(pat::GuardianPage);
                            EXPECT_EQ(sheet.Item(IDC_GUARD_NOTES).Text(), "line 1\r\nline 2");
                            sheet.Item(IDC_GUARD_TITLE).SetText("Dr");
                            sheet.Press(IDOK);
                        }),
              IDOK);
    EXPECT_EQ(LatestEvent(), "The patient (A1) Lee, Anna data, has been modified");

    const dbCPatient changed = Stored("A1");
    EXPECT_EQ(changed.GetGUID(), patient.GetGUID());
    EXPECT_EQ(changed.GetFirstname(0), "Anna");
    EXPECT_EQ(changed.GetRace(), 9);
    ASSERT_EQ(changed.GetPhones().GetCount(), 3);
    EXPECT_EQ(changed.GetPhones()[0].GetNumber(), "");
    EXPECT_EQ(changed.GetPhones()[1].GetType(), "Pager");
    EXPECT_EQ(changed.GetPhones()[2].GetNumber(), "333");
    EXPECT_EQ(changed.GetNotes(), "first note");
    dbCPerson before;
    dbCPerson after;
    ASSERT_TRUE(patient.GetPersonInfo(dbPersonGuardian, before));
    ASSERT_TRUE(changed.GetPersonInfo(dbPersonGuardian, after));
    EXPECT_EQ(after.GetPersonGUID(), before.GetPersonGUID());
    EXPECT_EQ(after.GetTitle(), "Dr");
    EXPECT_EQ(after.GetNotes(), "line 1\r\nline 2");
    ASSERT_EQ(changed.GetInsurances().GetCount(), 1);
    EXPECT_EQ(changed.GetInsurances()[0].GetNote(), "kept");
    ASSERT_EQ(changed.GetReferrals().GetCount(), 1);
    EXPECT_EQ(changed.GetReferrals()[0].Get_refID(), patient.GetReferrals()[0].Get_refID());
}

TEST_F(SheetSaveTest, PagesNeverOpenedContributeNothing)
{
    dbCPatient patient = StorePatient("A1");
    EXPECT_EQ(RunChange(patient,
                        [](DialogScript& script) {
                            const Dialog sheet = WaitForSheet(script);
                            sheet.Item(IDC_CHART_ID).SetText("A2");
                            sheet.Press(IDOK);
                        }),
              IDOK);
    EXPECT_TRUE(m_patients.IsIDFree("A1"));
    const dbCPatient changed = Stored("A2");
    EXPECT_EQ(changed.GetTitle(), "Ms");
    EXPECT_EQ(changed.GetNotes(), "first note");
    dbCPerson guardian;
    ASSERT_TRUE(changed.GetPersonInfo(dbPersonGuardian, guardian));
    EXPECT_EQ(guardian.GetFirstname(), "Eve");
    EXPECT_EQ(changed.GetInsurances().GetCount(), 1);
    EXPECT_EQ(changed.GetReferrals().GetCount(), 1);
}

TEST_F(SheetSaveTest, ListPagesChangeAndRemoveRows)
{
    dbCPatient patient = StorePatient("A1");
    const CString strDoctor = StoreDoctor("Noor", "Abel");
    EXPECT_EQ(RunChange(patient,
                        [](DialogScript& script) {
                            const Dialog sheet = WaitForSheet(script);
                            sheet.SelectPage(pat::ReferralPage);
                            sheet.SettleIdle();
                            EXPECT_FALSE(sheet.Item(IDC_REFER_CHANGE).IsEnabled());
                            sheet.Item(IDC_REFER_LIST).SelectRow(0);
                            EXPECT_EQ(sheet.Item(IDC_REFER_DOCTOR).SelectedItem(), "Sorel, Ida");
                            sheet.Item(IDC_REFER_DOCTOR).Choose("Abel, Noor");
                            sheet.Item(IDC_REFER_NOTE).SetText("spacing");
                            sheet.SettleIdle();
                            sheet.Press(IDC_REFER_CHANGE);
                            sheet.SelectPage(pat::InsurancePage);
                            sheet.Item(IDC_INSURE_LIST).SelectRow(0);
                            sheet.SettleIdle();
                            sheet.Press(IDC_INSURE_REMOVE);
                            EXPECT_TRUE(sheet.Item(IDC_INSURE_LIST).Rows().empty());
                            sheet.SelectPage(pat::GuardianPage); // emptied but for the country
                            for (const int nControl :
                                 {IDC_GUARD_FIRSTNAME, IDC_GUARD_LASTNAME, IDC_GUARD_NOTES, IDC_GUARD_PHONE1})
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

TEST_F(SheetSaveTest, InitialDataFillTheChartPage)
{
    dbCPatient data;
    data.SetID("D1");
    data.SetFirstname("Dee");
    data.SetLastname("Com");
    data.SetBirthdate(velCDate(1999, 9, 9));
    data.SetGender(1);
    EXPECT_EQ(RunNewWithData(data,
                             [](DialogScript& script) {
                                 const Dialog sheet = WaitForSheet(script);
                                 EXPECT_EQ(sheet.Item(IDC_CHART_ID).Text(), "D1");
                                 EXPECT_EQ(sheet.Item(IDC_CHART_LASTNAME).Text(), "Com");
                                 EXPECT_EQ(sheet.Item(IDC_CHART_BIRTHDATE).Date().wYear, 1999);
                                 EXPECT_TRUE(sheet.Item(IDC_CHART_GENDER_FIRST).IsChecked());
                                 sheet.Press(IDOK);
                             }),
              IDOK);
    EXPECT_EQ(LatestEvent(), "The patient from DICOM (D1) Com, Dee has been created");
    EXPECT_EQ(Stored("D1").GetGUID(), m_strGUID);

    dbCPatient empty;
    EXPECT_EQ(RunNewWithData(empty,
                             [](DialogScript& script) {
                                 const Dialog sheet = WaitForSheet(script);
                                 for (const int nControl :
                                      {IDC_CHART_ID, IDC_CHART_FIRSTNAME, IDC_CHART_LASTNAME,
                                       IDC_CHART_STREET, IDC_CHART_PHONE1, IDC_CHART_EMAIL})
                                     EXPECT_EQ(sheet.Item(nControl).Text(), "");
                                 EXPECT_EQ(sheet.Item(IDC_CHART_BIRTHDATE).Date().wYear, 0);
                                 sheet.Press(IDCANCEL);
                             }),
              IDCANCEL);
    EXPECT_TRUE(m_strGUID.IsEmpty());
}

// A caller's record that is in the database lends its values; it is not turned into another patient.
TEST_F(SheetSaveTest, AStoredRecordAsInitialDataStaysThePatientItIs)
{
    dbCPatient data = StorePatient("A1");
    EXPECT_EQ(RunNewWithData(data,
                             [](DialogScript& script) {
                                 const Dialog sheet = WaitForSheet(script);
                                 EXPECT_EQ(sheet.Item(IDC_CHART_FIRSTNAME).Text(), "Ann");
                                 FillNames(sheet, "A2", "Bea", "Lee");
                                 sheet.Press(IDOK);
                             }),
              IDOK);
    EXPECT_EQ(Stored("A1").GetFirstname(0), "Ann");
    EXPECT_NE(Stored("A2").GetGUID(), data.GetGUID());
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

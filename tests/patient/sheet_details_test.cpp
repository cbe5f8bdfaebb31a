// The details page, which shares the referring doctor with the referral page, and the doctor editor.

#include "maintenance/maintenanceres.h"
#include "patient/detailsres.h"
#include "suite/patients/records/dbemails.h"
#include "tests/patient/patientimage.h"
#include "tests/patient/sheetfixture.h"

using testing::ElementsAre;

namespace
{

constexpr char noTreating[] = "<Please select a Treating Doctor>";
constexpr char noReferring[] = "<Please select a Referring Doctor>";

class SheetDetailsTest : public SheetTest
{
protected:
    // Opens the details page of the stored patient A1 and presses a button in the end.
    void OnDetails(const Script& script, int nButton = IDOK)
    {
        dbCPatient patient = Stored("A1");
        Change(patient, nButton, [&](DialogScript& s, const Dialog& sheet) {
            sheet.SelectPage(pat::DetailPage);
            script(s, sheet);
        });
    }

    // Opens the editor of the referring doctor, which the script closes.
    void InDoctorEditor(const Script& script)
    {
        const auto edit = [&](DialogScript& s, const Dialog& sheet) {
            sheet.Press(IDC_DETAIL_EDIT_REFERRING);
            const Dialog editor = s.WaitForDialog("Doctor");
            script(s, editor);
            editor.WaitForClosed();
            s.Settle(sheet.Handle());
        };
        OnDetails(edit, IDCANCEL);
    }

    static CString LinkedDoctor(int nKind)
    {
        dbCPerson person;
        return Stored("A1").GetPersonInfo(nKind, person) ? person.GetPersonGUID() : CString();
    }

    // All of a doctor, addresses behind the first included.
    static PatientImage DoctorImage(const CString& strGUID)
    {
        dbCDoctor doctor;
        EXPECT_TRUE(doctor.Load(strGUID));
        PatientImage image = ImageOf(doctor);
        dbCPersonEmails emails;
        emails.LoadByPersonGUID(strGUID);
        for (const CString& strEmail : emails)
            image["emails"] += std::string(strEmail.GetString()) + " ";
        return image;
    }

    // The patient has one referral, with its date and note, by this doctor.
    static void ExpectReferralBy(const CString& strDoctor)
    {
        const dbCPatient patient = Stored("A1");
        ASSERT_EQ(patient.GetReferrals().GetCount(), 1);
        const dbCPatientReferralsRow& row = patient.GetReferrals()[0];
        EXPECT_EQ(row.Get_docID(), strDoctor);
        EXPECT_EQ(row.Get_date().ToISO(), "2020-05-06");
        EXPECT_EQ(row.Get_note(), "crowding");
    }
};

TEST_F(SheetDetailsTest, ListsHoldWhatThePracticeHasAndStartWithNone)
{
    StoreDoctor("Hugo", "Stone");
    New(IDCANCEL, [](DialogScript& script, const Dialog& sheet) {
        FillNames(sheet, "N1", "New", "Born");
        sheet.SelectPage(pat::DetailPage);
        const std::pair<int, testing::Matcher<std::vector<std::string>>> lists[] = {
            {IDC_DETAIL_TREATING, ElementsAre(noTreating, "Bell, Grace", "Sorel, Ida")},
            {IDC_DETAIL_REFERRING, ElementsAre(noReferring, "Bell, Grace", "Sorel, Ida", "Stone, Hugo")},
            {IDC_DETAIL_OFFICE, ElementsAre("<none>", "North", "South")},
            {IDC_DETAIL_STATUS, testing::IsSupersetOf({"<none>", "Urgent", "Waiting"})}};
        for (const auto& [nList, expected] : lists)
        {
            EXPECT_THAT(sheet.Item(nList).Items(), expected);
            EXPECT_EQ(sheet.Item(nList).Selection(), 0);
        }
        for (const int nField :
             {IDC_DETAIL_TITLE, IDC_DETAIL_MODEL, IDC_DETAIL_SALUTATION, IDC_DETAIL_KEYWORDS,
              IDC_DETAIL_NOTES, IDC_DETAIL_TREATING_SUMMARY, IDC_DETAIL_REFERRING_SUMMARY})
            EXPECT_EQ(sheet.Item(nField).Text(), "") << nField;
        sheet.Press(IDC_DETAIL_EDIT_KEYWORDS);
        const Dialog editor = script.WaitForDialog("Edit Keywords");
        editor.Press(IDCANCEL);
        editor.WaitForClosed();
    });
}

TEST_F(SheetDetailsTest, PlaceholdersMeanNoneButTakeNoReferralAway)
{
    dbCPatient patient = StorePatient("A1");
    dbCPerson doctor;
    doctor.SetPersonGUID(m_strGrace);
    patient.SetPersonInfo(dbPersonReferringDoctor, doctor);
    patient.Save();
    OnDetails([&](DialogScript&, const Dialog& sheet) {
        const auto onReferralPage = [&] {
            sheet.SelectPage(pat::ReferralPage);
            const auto rows = sheet.Item(IDC_ROWS_LIST).Rows();
            sheet.SelectPage(pat::DetailPage);
            return rows.size() == 1 ? rows[0][0] : std::string("not one row");
        };
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), "Sorel, Ida"); // not the linked one
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Bell, Grace");
        EXPECT_EQ(onReferralPage(), "Bell, Grace");
        sheet.Item(IDC_DETAIL_REFERRING).Choose(noReferring);
        EXPECT_EQ(onReferralPage(), "Sorel, Ida") << "the row has its own doctor back";
        for (const int nList :
             {IDC_DETAIL_OFFICE, IDC_DETAIL_STATUS, IDC_DETAIL_TREATING, IDC_DETAIL_REFERRING})
            sheet.Item(nList).Choose(0);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING_SUMMARY).Text(), "");
    });
    ExpectReferralBy(m_strIda);
    EXPECT_EQ(LinkedDoctor(dbPersonReferringDoctor), "");
    EXPECT_EQ(LinkedDoctor(dbPersonTreatingDoctor), "");
    EXPECT_EQ(Stored("A1").GetOfficeID(), "");
    EXPECT_EQ(Stored("A1").GetStatusID(), "");
}

TEST_F(SheetDetailsTest, BothPagesShowTheSameReferringDoctor)
{
    StorePatient("A1");
    OnDetails(
        [](DialogScript&, const Dialog& sheet) { sheet.Item(IDC_DETAIL_REFERRING).Choose("Bell, Grace"); });
    ExpectReferralBy(m_strGrace);
    EXPECT_EQ(LinkedDoctor(dbPersonReferringDoctor), "") << "the row says it";
    OnDetails([](DialogScript&, const Dialog& sheet) {
        sheet.SelectPage(pat::ReferralPage);
        sheet.Item(IDC_ROWS_LIST).SelectRow(0);
        sheet.Item(IDC_REFER_DOCTOR).Choose("Sorel, Ida");
        sheet.SettleIdle();
        sheet.Press(IDC_ROWS_CHANGE);
        sheet.SelectPage(pat::DetailPage);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), "Sorel, Ida");
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING_SUMMARY).Text(), "(Address is not entered)");
        sheet.SelectPage(pat::ReferralPage);
        sheet.Item(IDC_ROWS_LIST).SelectRow(0);
        sheet.SettleIdle();
        sheet.Press(IDC_ROWS_REMOVE);
        sheet.SelectPage(pat::DetailPage);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), noReferring);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING_SUMMARY).Text(), "");
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Bell, Grace");
    });
    EXPECT_EQ(Stored("A1").GetReferrals().GetCount(), 0);
    EXPECT_EQ(LinkedDoctor(dbPersonReferringDoctor), m_strGrace) << "without referrals there is the link";
}

TEST_F(SheetDetailsTest, TheDoctorEditorFeedsBothLists)
{
    StorePatient("A1");
    OnDetails([&](DialogScript& script, const Dialog& sheet) {
        const auto edit = [&](int nButton) {
            sheet.Press(nButton);
            return script.WaitForDialog("Doctor");
        };
        const auto confirm = [&](const Dialog& editor) {
            editor.Press(IDOK);
            editor.WaitForClosed();
            script.Settle(sheet.Handle());
        };
        sheet.Item(IDC_DETAIL_TREATING).Choose(noTreating);
        Dialog editor = edit(IDC_DETAIL_EDIT_TREATING); // a new doctor
        EXPECT_TRUE(editor.Item(IDC_DOCTOR_TREATING).IsChecked());
        EXPECT_TRUE(editor.Item(IDC_DOCTOR_ADDRESS_OFFICE).IsChecked());
        editor.Press(IDC_DOCTOR_EDIT_TYPES);
        const Dialog types = script.WaitForDialog("Edit Doctor Types");
        types.Item(IDC_DOCTYPE_NAME).Type("Surgeon");
        types.SettleIdle();
        types.Press(IDC_DOCTYPE_ADD);
        types.Press(IDCANCEL);
        types.WaitForClosed();
        script.Settle(editor.Handle());
        editor.Item(IDC_DOCTOR_TYPE).Choose("Surgeon");
        editor.Item(IDC_DOCTOR_FIRSTNAME).Type("Nina");
        editor.Item(IDC_DOCTOR_LASTNAME).Type("Novak");
        editor.Item(IDC_DOCTOR_CITY).Type("Salem");
        confirm(editor);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_TREATING).SelectedItem(), "Novak, Nina");
        EXPECT_EQ(sheet.Item(IDC_DETAIL_TREATING_SUMMARY).Text(), "\n\nSalem,  ");
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), "Sorel, Ida") << "the other keeps its own";
        EXPECT_THAT(sheet.Item(IDC_DETAIL_REFERRING).Items(), testing::Contains("Novak, Nina"));

        editor = edit(IDC_DETAIL_EDIT_TREATING); // the same, whose address goes
        editor.Item(IDC_DOCTOR_CITY).Replace("");
        confirm(editor);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_TREATING_SUMMARY).Text(), "(Address is not entered)");

        sheet.Item(IDC_DETAIL_REFERRING).Choose(noReferring);
        editor = edit(IDC_DETAIL_EDIT_REFERRING);
        EXPECT_FALSE(editor.Item(IDC_DOCTOR_TREATING).IsChecked());
        editor.Item(IDC_DOCTOR_LASTNAME).Type("Roe");
        editor.Item(IDC_DOCTOR_STREET).Type("5 Hill Road");
        confirm(editor);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), "Roe");
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING_SUMMARY).Text(), "\n5 Hill Road\n,  ");
        EXPECT_THAT(sheet.Item(IDC_DETAIL_TREATING).Items(), testing::Not(testing::Contains("Roe")));
    });
    dbCDoctor doctor;
    ASSERT_TRUE(doctor.Load(LinkedDoctor(dbPersonTreatingDoctor)));
    EXPECT_EQ(doctor.GetPerson().GetLastname(), "Novak");
    EXPECT_EQ(doctor.GetType(), "Surgeon");
    ASSERT_TRUE(doctor.Load(Stored("A1").GetReferrals()[0].Get_docID()));
    EXPECT_EQ(doctor.GetPerson().GetLastname(), "Roe");
    ExpectReferralBy(doctor.GetGUID());
}

TEST_F(SheetDetailsTest, TheDoctorEditorRefusesWhatIsIncompleteOrChangedElsewhere)
{
    StorePatient("A1");
    InDoctorEditor([&](DialogScript& script, const Dialog& editor) {
        veltest::ExpectWellMade(editor, "edit-doctor");
        const struct
        {
            int nField;
            const char* pszText;
            const char* pszTold;
            int nFocus;
            const char* pszThen;
        } cases[] = {
            {IDC_DOCTOR_LASTNAME, "", "Please enter the doctor's family name.", IDC_DOCTOR_LASTNAME,
             "Sorell"},
            {IDC_DOCTOR_PHONE2, "555 0100", "Please select a type for phone 2", IDC_DOCTOR_PHONETYPE2, ""},
            {IDC_DOCTOR_EMAIL, "ida",
             "Please enter the e-mail address in full, for example name@practice.com.", IDC_DOCTOR_EMAIL, ""},
        };
        for (const auto& c : cases)
        {
            editor.Item(c.nField).Replace(c.pszText);
            ExpectRefused(script, editor, c.pszTold, c.nFocus);
            editor.Item(c.nField).Replace(c.pszThen);
        }
        dbCDoctor other;
        ASSERT_TRUE(other.Load(m_strIda));
        other.GetPerson().SetTitle("Prof.");
        other.Save();
        ExpectRefused(script, editor,
                      testing::StartsWith("The doctor could not be saved. Nothing was changed."));
        EXPECT_EQ(editor.Item(IDC_DOCTOR_LASTNAME).Text(), "Sorell");
        editor.Press(IDCANCEL);
    });
}

TEST_F(SheetDetailsTest, TheDoctorEditorStoresTheEmailAddressesWithTheDoctorOrNotAtAll)
{
    StorePatient("A1");
    dbCPersonEmails stored;
    for (const char* pszEmail : {"a@x.org", "b@x.org"})
        stored.Add(pszEmail);
    stored.Save(m_strIda);
    const PatientImage before = DoctorImage(m_strIda);
    // Expects these addresses, adds another one as the first and presses the button.
    const auto addFirst = [](DialogScript& script, const Dialog& editor,
                             const std::vector<std::string>& listed, const char* pszEmail, int nButton) {
        editor.Press(IDC_DOCTOR_EDIT_EMAILS);
        const Dialog emails = script.WaitForDialog("E-mail Addresses");
        EXPECT_EQ(emails.Item(IDC_EMAIL_LIST).Items(), listed);
        emails.Item(IDC_EMAIL_ADDRESS).Type(pszEmail);
        emails.SettleIdle();
        emails.Press(IDC_EMAIL_ADD);
        emails.Item(IDC_EMAIL_LIST).Choose(static_cast<int>(listed.size()));
        emails.SettleIdle();
        emails.Press(IDC_EMAIL_FIRST);
        emails.Press(nButton);
        emails.WaitForClosed();
        script.Settle(editor.Handle());
    };

    InDoctorEditor([&](DialogScript& script, const Dialog& editor) {
        addFirst(script, editor, {"a@x.org", "b@x.org"}, "c@x.org", IDCANCEL);
        EXPECT_EQ(editor.Item(IDC_DOCTOR_EMAIL).Text(), "a@x.org");
        addFirst(script, editor, {"a@x.org", "b@x.org"}, "c@x.org", IDOK);
        EXPECT_EQ(editor.Item(IDC_DOCTOR_EMAIL).Text(), "c@x.org");
        editor.Press(IDCANCEL);
    });
    EXPECT_THAT(Differences(before, DoctorImage(m_strIda)), testing::IsEmpty());

    Sql("CREATE TRIGGER fault BEFORE INSERT ON emails BEGIN SELECT RAISE(ABORT, 'the cable is out'); END");
    InDoctorEditor([&](DialogScript& script, const Dialog& editor) {
        editor.Item(IDC_DOCTOR_TITLE).Type("Prof.");
        editor.Item(IDC_DOCTOR_EMAIL).Replace("n@x.org");
        addFirst(script, editor, {"n@x.org", "b@x.org"}, "d@x.org", IDOK);
        ExpectRefused(script, editor,
                      testing::StartsWith("The doctor could not be saved. Nothing was changed.\n\n"));
        EXPECT_THAT(Differences(before, DoctorImage(m_strIda)), testing::IsEmpty());
        Sql("DROP TRIGGER fault");
        addFirst(script, editor, {"d@x.org", "n@x.org", "b@x.org"}, "e@x.org", IDOK);
        editor.Press(IDOK);
    });
    PatientImage expected = before;
    expected["title"] = "Prof.";
    expected["email"] = "e@x.org";
    expected["emails"] = "e@x.org d@x.org n@x.org b@x.org ";
    EXPECT_THAT(Differences(expected, DoctorImage(m_strIda)), testing::IsEmpty());

    Sql("DROP TABLE emails"); // as a database of one address a person is
    InDoctorEditor([&](DialogScript&, const Dialog& editor) {
        EXPECT_FALSE(editor.Item(IDC_DOCTOR_EDIT_EMAILS).IsEnabled());
        editor.Item(IDC_DOCTOR_EMAIL).Replace("f@x.org");
        editor.Press(IDOK);
    });
    dbCDoctor doctor;
    ASSERT_TRUE(doctor.Load(m_strIda));
    EXPECT_EQ(doctor.GetPerson().GetEmail(), "f@x.org");
}

} // namespace

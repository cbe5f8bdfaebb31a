// The details page, which shares the referring doctor with the referral page, and the doctor editor.

#include "maintenance/maintenanceres.h"
#include "tests/patient/sheetfixture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr char noTreating[] = "<Please select a Treating Doctor>";
constexpr char noReferring[] = "<Please select a Referring Doctor>";
constexpr char invalidEmail[] = "Please enter the e-mail address in full, for example name@practice.com.";
const auto notSaved = testing::StartsWith("The doctor could not be saved. Nothing was changed.\n\n");

class SheetDetailsTest : public SheetTest
{
protected:
    SheetDetailsTest()
    {
        StorePatient("A1");
        dbCPersonEmails emails;
        emails.Add("a@x.org");
        emails.Add("b@x.org");
        emails.Save(m_strIda);
    }

    // Opens the editor of the addresses from a doctor's, plays in it and presses the button.
    static void EditEmails(DialogScript& script, const Dialog& doctor, int nButton,
                           const std::function<void(const Dialog&)>& play)
    {
        doctor.Press(IDC_DOCTOR_EDIT_EMAILS);
        const Dialog dialog = script.WaitForDialog("E-mail Addresses");
        play(dialog);
        dialog.Press(nButton);
        dialog.WaitForClosed();
        script.Settle(doctor.Handle());
    }
};

TEST_F(SheetDetailsTest, ListsHoldWhatThePracticeHasAndStartWithNone)
{
    AddDoctor("Stone", "Hugo", FALSE);
    New(IDCANCEL, [](DialogScript& script, const Dialog& sheet) {
        FillNames(sheet, "N1");
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
        sheet.Press(IDC_DETAIL_EDIT_KEYWORDS);
        const Dialog editor = script.WaitForDialog("Edit Keywords");
        editor.Press(IDCANCEL);
        editor.WaitForClosed();
    });
}

// What a patient refers to by the details page and by the referral page.
TEST_F(SheetDetailsTest, PlaceholdersMeanNoneButTakeNoReferralAway)
{
    dbCPatient patient = Loaded("A1");
    PatientImage expected = database.ImageOf("A1");
    dbCPerson doctor;
    doctor.SetPersonGUID(m_strGrace);
    patient.SetPersonInfo(dbPersonReferringDoctor, doctor);
    patient.Save();
    const auto onReferralPage = [](const Dialog& sheet) {
        sheet.SelectPage(pat::ReferralPage);
        const auto rows = sheet.Item(IDC_ROWS_LIST).Rows();
        sheet.SelectPage(pat::DetailPage);
        return rows.size() == 1 ? rows[0][0] : std::string("not one row");
    };
    OnDetails(IDOK, [&](DialogScript&, const Dialog& sheet) {
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), "Sorel, Ida"); // not the linked one
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Bell, Grace");
        EXPECT_EQ(onReferralPage(sheet), "Bell, Grace");
        sheet.Item(IDC_DETAIL_REFERRING).Choose(noReferring);
        EXPECT_EQ(onReferralPage(sheet), "Sorel, Ida") << "the row has its own doctor back";
        for (const int nList :
             {IDC_DETAIL_OFFICE, IDC_DETAIL_STATUS, IDC_DETAIL_TREATING, IDC_DETAIL_REFERRING})
            sheet.Item(nList).Choose(0);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING_SUMMARY).Text(), "");
    });
    expected["office"] = expected["status"] = expected["treating.doctor"] = "";
    ExpectStored("A1", expected);

    // What the referral page has changed stays too, and so does a row that it has added.
    AddDoctor("Abel", "Noor");
    OnDetails(IDCANCEL, [&](DialogScript&, const Dialog& sheet) {
        const Control referring = sheet.Item(IDC_DETAIL_REFERRING);
        for (const auto& [pszDoctor, nButton] :
             {std::pair("Abel, Noor", IDC_ROWS_CHANGE), std::pair("Sorel, Ida", IDC_ROWS_ADD)})
        {
            referring.Choose("Bell, Grace");
            sheet.SelectPage(pat::ReferralPage);
            sheet.Item(IDC_ROWS_LIST).SelectRow(0);
            sheet.Item(IDC_REFER_DOCTOR).Choose(pszDoctor);
            PressSettled(sheet, nButton);
            if (nButton == IDC_ROWS_ADD)
            {
                sheet.Item(IDC_ROWS_LIST).SelectRow(0);
                PressSettled(sheet, IDC_ROWS_REMOVE);
            }
            sheet.SelectPage(pat::DetailPage);
            for (const char* pszChosen : {noReferring, "Bell, Grace", "Abel, Noor", noReferring})
                referring.Choose(pszChosen);
            EXPECT_EQ(onReferralPage(sheet), pszDoctor);
        }
    });
}

TEST_F(SheetDetailsTest, BothPagesShowTheSameReferringDoctor)
{
    PatientImage expected = database.ImageOf("A1");
    OnDetails(IDOK, [](DialogScript&, const Dialog& sheet) {
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Bell, Grace");
    });
    expected["referral.0.doctor"] = "Bell, Grace"; // the row says it, without a link
    ExpectStored("A1", expected);
    OnDetails(IDOK, [](DialogScript&, const Dialog& sheet) {
        const auto onRow = [&](int nButton, const char* pszDoctor, const char* pszSummary) {
            sheet.SelectPage(pat::ReferralPage);
            sheet.Item(IDC_ROWS_LIST).SelectRow(0);
            sheet.Item(IDC_REFER_DOCTOR).Choose("Sorel, Ida");
            PressSettled(sheet, nButton);
            sheet.SelectPage(pat::DetailPage);
            EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), pszDoctor);
            EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING_SUMMARY).Text(), pszSummary);
        };
        onRow(IDC_ROWS_CHANGE, "Sorel, Ida", "(Address is not entered)");
        onRow(IDC_ROWS_REMOVE, noReferring, "");
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Bell, Grace");
    });
    std::erase_if(expected, [](const auto& entry) { return entry.first.starts_with("referral."); });
    expected["referring.doctor"] = "Bell, Grace"; // without referrals there is the link
    ExpectStored("A1", expected);
}

TEST_F(SheetDetailsTest, TheDoctorEditorFeedsBothLists)
{
    PatientImage expected = database.ImageOf("A1");
    OnDetails(IDOK, [&](DialogScript& script, const Dialog& sheet) {
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
        PressSettled(types, IDC_DOCTYPE_ADD);
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
        EXPECT_THAT(sheet.Item(IDC_DETAIL_REFERRING).Items(), Contains("Novak, Nina"));

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
        EXPECT_THAT(sheet.Item(IDC_DETAIL_TREATING).Items(), testing::Not(Contains("Roe")));
    });
    dbCPerson treating;
    ASSERT_TRUE(Loaded("A1").GetPersonInfo(dbPersonTreatingDoctor, treating));
    EXPECT_EQ(database.ImageOf(treating.GetPersonGUID())["doctor.type"], "Surgeon");
    expected["treating.doctor"] = "Novak, Nina";
    expected["referral.0.doctor"] = "Roe, ";
    ExpectStored("A1", expected);
}

TEST_F(SheetDetailsTest, TheDoctorEditorRefusesWhatIsIncompleteChangedElsewhereOrGone)
{
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
            {IDC_DOCTOR_PHONE2, "555", "Please select a type for phone 2", IDC_DOCTOR_PHONETYPE2, ""},
            {IDC_DOCTOR_EMAIL, "ida", invalidEmail, IDC_DOCTOR_EMAIL, ""}};
        for (const auto& c : cases)
        {
            editor.Item(c.nField).Replace(c.pszText);
            ExpectRefused(script, editor, c.pszTold, c.nFocus);
            editor.Item(c.nField).Replace(c.pszThen);
        }
        database.Execute("UPDATE doctors SET rowVersion = rowVersion + 100"); // as another user's change does
        ExpectRefused(script, editor, notSaved);
        EXPECT_EQ(editor.Item(IDC_DOCTOR_LASTNAME).Text(), "Sorell");
        editor.Press(IDCANCEL);
    });
    OnDetails(IDCANCEL, [&](DialogScript& script, const Dialog& sheet) {
        sheet.Item(IDC_DETAIL_TREATING).Choose("Bell, Grace");
        dbCDoctor removed;
        removed.Load(m_strGrace);
        removed.Delete();
        ExpectRefused(script, sheet,
                      "The doctor could not be read. It may have been removed on another computer.", 0,
                      IDC_DETAIL_EDIT_TREATING);
    });
}

TEST_F(SheetDetailsTest, TheEmailEditorLosesNothing)
{
    InDoctorEditor([&](DialogScript& script, const Dialog& editor) {
        EditEmails(script, editor, IDOK, [&](const Dialog& dialog) {
            const Control field = dialog.Item(IDC_EMAIL_ADDRESS), list = dialog.Item(IDC_EMAIL_LIST);
            veltest::ExpectWellMade(dialog, "edit-emails");
            dialog.SettleIdle();
            for (const int nButton : {IDC_EMAIL_ADD, IDC_EMAIL_CHANGE, IDC_EMAIL_REMOVE, IDC_EMAIL_FIRST})
                EXPECT_FALSE(dialog.Item(nButton).IsEnabled()) << nButton;
            EXPECT_EQ(field.Send(EM_GETLIMITTEXT), 60);
            field.Type("ida");
            ExpectRefused(script, dialog, invalidEmail, IDC_EMAIL_ADDRESS, IDC_EMAIL_ADD);
            ExpectRefused(script, dialog,
                          "The address being entered is not in the list yet. Press Add or Change to take it "
                          "over, or empty the field to drop it.",
                          IDC_EMAIL_ADDRESS);
            field.Replace("B@x.org");
            ExpectRefused(script, dialog, "B@x.org is already listed.", IDC_EMAIL_ADDRESS, IDC_EMAIL_ADD);
            for (const int nAnswer : {IDNO, IDYES})
            {
                list.Choose(1);
                ExpectBox(script, dialog,
                          "What stands in the fields has not been added to the list. Do you want to drop it?",
                          0, nAnswer);
                EXPECT_EQ(field.Text(), nAnswer == IDNO ? "B@x.org" : "b@x.org");
                EXPECT_EQ(list.Selection(), nAnswer == IDNO ? -1 : 1);
            }
            field.Replace("c@x.org");
            PressSettled(dialog, IDC_EMAIL_CHANGE);
            field.Type("d@x.org");
            PressSettled(dialog, IDC_EMAIL_ADD);
            EXPECT_THAT(list.Items(), ElementsAre("a@x.org", "c@x.org", "d@x.org"));
            list.Choose(2);
            field.Replace("e@x.org");
            PressSettled(dialog, IDC_EMAIL_FIRST);
            EXPECT_EQ(list.Selection(), 0);
            PressSettled(dialog, IDC_EMAIL_CHANGE);
            list.Choose(1);
            PressSettled(dialog, IDC_EMAIL_REMOVE);
            EXPECT_EQ(field.Text(), "");
        });
        editor.Press(IDOK);
    });
    PatientImage image = database.ImageOf(m_strIda);
    EXPECT_EQ(image["0.email"] + " " + image["0.emails"], "e@x.org c@x.org");
}

TEST_F(SheetDetailsTest, EmailAddressesAreStoredWithTheDoctorOrNotAtAll)
{
    const PatientImage before = database.ImageOf(m_strIda);
    // Expects these addresses, adds another one as the first and presses the button.
    const auto addFirst = [](DialogScript& script, const Dialog& editor,
                             const std::vector<std::string>& listed, const char* pszEmail, int nButton) {
        EditEmails(script, editor, nButton, [&](const Dialog& dialog) {
            EXPECT_EQ(dialog.Item(IDC_EMAIL_LIST).Items(), listed);
            dialog.Item(IDC_EMAIL_ADDRESS).Type(pszEmail);
            PressSettled(dialog, IDC_EMAIL_ADD);
            dialog.Item(IDC_EMAIL_LIST).Choose(static_cast<int>(listed.size()));
            PressSettled(dialog, IDC_EMAIL_FIRST);
        });
    };
    InDoctorEditor([&](DialogScript& script, const Dialog& editor) {
        addFirst(script, editor, {"a@x.org", "b@x.org"}, "c@x.org", IDCANCEL);
        EXPECT_EQ(editor.Item(IDC_DOCTOR_EMAIL).Text(), "a@x.org");
        addFirst(script, editor, {"a@x.org", "b@x.org"}, "c@x.org", IDOK);
        EXPECT_EQ(editor.Item(IDC_DOCTOR_EMAIL).Text(), "c@x.org");
        editor.Press(IDCANCEL);
    });
    EXPECT_THAT(Differences(before, database.ImageOf(m_strIda)), IsEmpty());

    database.Execute(
        "CREATE TRIGGER fault BEFORE INSERT ON emails BEGIN SELECT RAISE(ABORT, 'the cable is out'); END");
    InDoctorEditor([&](DialogScript& script, const Dialog& editor) {
        editor.Item(IDC_DOCTOR_TITLE).Type("Prof.");
        editor.Item(IDC_DOCTOR_EMAIL).Replace("n@x.org");
        addFirst(script, editor, {"n@x.org", "b@x.org"}, "d@x.org", IDOK);
        ExpectRefused(script, editor, notSaved);
        EXPECT_THAT(Differences(before, database.ImageOf(m_strIda)), IsEmpty());
        database.Execute("DROP TRIGGER fault");
        addFirst(script, editor, {"d@x.org", "n@x.org", "b@x.org"}, "e@x.org", IDOK);
        editor.Press(IDOK);
    });
    PatientImage expected = before;
    expected["0.title"] = "Prof.";
    expected["0.email"] = "e@x.org";
    expected["0.emails"] = "d@x.org n@x.org b@x.org";
    EXPECT_THAT(Differences(expected, database.ImageOf(m_strIda)), IsEmpty());

    database.Execute("DROP TABLE emails"); // as a database of one address a person is
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

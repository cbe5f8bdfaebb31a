#include "patient/detailsres.h"
#include "tests/maintenance/patientpractice.h"

namespace
{

class DoctorTypes : public PatientPractice
{
protected:
    std::vector<std::string> Stored() const
    {
        return Sql("SELECT name FROM doctorTypes ORDER BY nameKey");
    }

    // Runs the editor as the doctor editor opens it; returns the types that the doctor editor offers
    // afterwards.
    std::vector<std::string> Edit(const Script& script)
    {
        std::vector<std::string> offered;
        dbCPatients patients;
        const auto play = [&](DialogScript& s, const Dialog& sheet) {
            sheet.SelectPage(1);
            sheet.Press(IDC_DETAIL_EDIT_REFERRING);
            const Dialog doctor = s.WaitForDialog("Doctor");
            doctor.Press(IDC_DOCTOR_EDIT_TYPES);
            const Dialog types = s.WaitForDialog("Edit Doctor Types");
            script(s, types);
            types.Press(IDCANCEL);
            types.WaitForClosed();
            s.Settle(doctor.Handle());
            offered = doctor.Item(IDC_DOCTOR_TYPE).Items();
            doctor.Press(IDCANCEL);
            doctor.WaitForClosed();
            sheet.Press(IDCANCEL);
        };
        veltest::RunDialog([&] { return ChangePatientDlg(nullptr, &patients, &m_patient); }, "", play);
        return offered;
    }
};

TEST_F(DoctorTypes, AreAddedRenamedAndDeletedAtOnce)
{
    const auto offered = Edit([&](DialogScript& script, const Dialog& dialog) {
        const auto name = dialog.Item(IDC_DOCTYPE_NAME);
        const auto list = dialog.Item(IDC_DOCTYPE_LIST);
        const auto before = Stored();
        const auto expectButtons = [&](bool add, bool others) {
            EXPECT_EQ(dialog.Item(IDC_DOCTYPE_ADD).IsEnabled(), add);
            EXPECT_EQ(dialog.Item(IDC_DOCTYPE_MODIFY).IsEnabled(), others);
            EXPECT_EQ(dialog.Item(IDC_DOCTYPE_DELETE).IsEnabled(), others);
        };
        expectButtons(false, false);
        for (const char* type : {"Zahn & \"%1\"", "Arzt", "arzt"}) // the last is refused
        {
            name.Replace(type);
            expectButtons(true, false);
            dialog.Item(IDC_DOCTYPE_ADD).Click();
            expectButtons(false, false);
            EXPECT_EQ(name.Text(), "");
            EXPECT_TRUE(name.HasFocus()); // for the next one
        }
        EXPECT_EQ(Stored().size(), before.size() + 2);

        const auto modify = [&](const char* type, int button) {
            const Dialog window = script.WaitForDialog("Modify Doctor Type");
            EXPECT_EQ(window.Item(IDC_DOCTYPE_CURRENT).Text(), "Arzt");
            veltest::ExpectWellMade(window, "modify-doctor-type");
            window.Item(IDC_DOCTYPE_NEW).Replace(type);
            window.Press(button);
            window.WaitForClosed();
        };
        list.Notify(LBN_DBLCLK); // beside the entries
        list.Choose("Arzt");
        expectButtons(false, true);
        list.Notify(LBN_DBLCLK);
        modify("ZAHN & \"%1\"", IDOK); // is refused
        dialog.Press(IDC_DOCTYPE_MODIFY);
        modify("Doc", IDCANCEL);
        EXPECT_EQ(list.Items(), Stored());
        expectButtons(false, true);
        dialog.Press(IDC_DOCTYPE_MODIFY);
        modify("Doc", IDOK);
        expectButtons(false, false); // refilled
        EXPECT_TRUE(list.HasFocus()) << "not the button that is disabled";
        EXPECT_EQ(list.Items(), Stored());
        list.Choose("Zahn & \"%1\"");
        veltest::ExpectWellMade(dialog, "doctor-types");
        dialog.Press(IDC_DOCTYPE_DELETE);
        expectButtons(false, false);
        EXPECT_FALSE(script.FindBox());
        EXPECT_EQ(list.Items(), Stored());
    });
    auto expected = Stored();
    EXPECT_THAT(expected, testing::Contains("Doc"));
    EXPECT_THAT(expected, testing::Not(testing::Contains("Arzt")));
    ASSERT_FALSE(offered.empty());
    EXPECT_EQ(std::vector<std::string>(offered.begin() + 1, offered.end()), expected);
}

TEST_F(DoctorTypes, AFailureIsToldAndTheEditorStays)
{
    Sql("CREATE TRIGGER refuse BEFORE INSERT ON doctorTypes BEGIN SELECT RAISE(FAIL, 'full'); END");
    Edit([](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_DOCTYPE_NAME).Replace("Arzt");
        dialog.Press(IDC_DOCTYPE_ADD);
        EXPECT_THAT(script.AnswerBox("", IDOK),
                    testing::StartsWith("The doctor types could not be changed."));
        EXPECT_TRUE(dialog.IsOpen());
    });
}

} // namespace

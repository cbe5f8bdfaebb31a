#include "maintenance/maintenanceres.h"
#include "patient/detailsres.h"
#include "tests/maintenance/patientpractice.h"

namespace
{

using testing::ElementsAre;
using veltest::Dialog;
using veltest::DialogScript;

class DoctorTypes : public PatientPractice
{
protected:
    static std::vector<std::string> Stored()
    {
        dbCDoctorTypes types;
        types.Load();
        std::vector<std::string> names;
        for (const CString& name : types)
            names.emplace_back(name.GetString());
        return names;
    }

    // Runs the editor as the doctor editor opens it; returns the types that the doctor editor offers
    // afterwards.
    std::vector<std::string> Edit(const std::function<void(DialogScript&, const Dialog&)>& script)
    {
        std::vector<std::string> offered;
        dbCPatients patients;
        veltest::RunModal([&] { return ChangePatientDlg(nullptr, &patients, &m_patient); },
                          [&](DialogScript& s) {
                              const Dialog sheet = s.WaitForDialog("");
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
                          });
        return offered;
    }
};

TEST_F(DoctorTypes, AreAddedRenamedAndDeletedAtOnce)
{
    const auto offered = Edit([](DialogScript& script, const Dialog& dialog) {
        const auto name = dialog.Item(IDC_DOCTYPE_NAME);
        const auto list = dialog.Item(IDC_DOCTYPE_LIST);
        const auto before = Stored();
        for (const int id : {IDC_DOCTYPE_ADD, IDC_DOCTYPE_MODIFY, IDC_DOCTYPE_DELETE})
            EXPECT_FALSE(dialog.Item(id).IsEnabled()) << id;
        for (const char* type : {"Zahn & \"%1\"", "Arzt", "arzt"}) // the last is refused
        {
            name.Replace(type);
            dialog.Item(IDC_DOCTYPE_ADD).Click();
            script.Settle(dialog.Handle());
            EXPECT_EQ(name.Text(), "");
            EXPECT_TRUE(name.HasFocus()); // for the next one
            EXPECT_FALSE(dialog.Item(IDC_DOCTYPE_ADD).IsEnabled());
        }
        EXPECT_EQ(Stored().size(), before.size() + 2);

        list.Choose("Arzt");
        for (const char* type : {"ZAHN & \"%1\"", "Doc"}) // the first is refused
        {
            dialog.Press(IDC_DOCTYPE_MODIFY);
            const Dialog modify = script.WaitForDialog("Modify Doctor Type");
            EXPECT_EQ(modify.Item(IDC_DOCTYPE_CURRENT).Text(), "Arzt");
            EXPECT_EQ(veltest::DialogFindings(modify.Handle()), "");
            EXPECT_TRUE(veltest::SavePicture(modify.Handle(), "modify-doctor-type"));
            modify.Item(IDC_DOCTYPE_NEW).Replace(type);
            modify.Press(IDOK);
            modify.WaitForClosed();
            script.Settle(dialog.Handle());
            EXPECT_EQ(dialog.Item(IDC_DOCTYPE_MODIFY).IsEnabled(), list.Selection() >= 0);
        }
        EXPECT_EQ(list.Items(), Stored());
        EXPECT_EQ(list.Selection(), -1); // refilled
        list.Choose("Zahn & \"%1\"");
        EXPECT_EQ(veltest::DialogFindings(dialog.Handle()), "");
        EXPECT_TRUE(veltest::SavePicture(dialog.Handle(), "doctor-types"));
        dialog.Press(IDC_DOCTYPE_DELETE);
        script.Settle(dialog.Handle());
        EXPECT_FALSE(script.FindBox());
        EXPECT_EQ(list.Items(), Stored());
        EXPECT_FALSE(dialog.Item(IDC_DOCTYPE_DELETE).IsEnabled());
    });
    auto expected = Stored();
    EXPECT_THAT(expected, testing::Contains("Doc"));
    EXPECT_THAT(expected, testing::Not(testing::Contains("Arzt")));
    ASSERT_FALSE(offered.empty());
    EXPECT_EQ(std::vector<std::string>(offered.begin() + 1, offered.end()), expected);
}

} // namespace

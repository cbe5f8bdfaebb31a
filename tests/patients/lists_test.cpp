// What the library fills in dialogs' lists, with real windows.

#include "tests/patients/testdatabase.h"

#include <afxwin.h>

namespace
{
/// A drop-down list with a window.
struct Combo : CComboBox
{
    Combo()
    {
        EXPECT_TRUE(Attach(CreateWindowExA(0, "COMBOBOX", "", WS_POPUP | CBS_DROPDOWNLIST, 0, 0, 200, 200,
                                           nullptr, nullptr, GetModuleHandleA(nullptr), nullptr)));
    }
    ~Combo() override
    {
        DestroyWindow();
    }
    CString Text(int nItem) const
    {
        CString strText;
        GetLBText(nItem, strText);
        return strText;
    }
};

TEST(Lists, TreatingDoctorsByNameWithTheirGUIDs)
{
    TestDatabase database;
    const CString strZora = AddDoctor("Zora", ""), strAbel = AddDoctor("Abel", "Ida");
    AddDoctor("Only", "Referring", FALSE);
    Combo list;
    list.AddString("<none>");
    dbCTreatingDoctors doctors;
    ASSERT_EQ(doctors.EnumTreatingDoctors(list), 2);
    ASSERT_EQ(list.GetCount(), 3);
    EXPECT_EQ(list.Text(1), "Abel, Ida");
    EXPECT_EQ(list.Text(2), "Zora");
    EXPECT_EQ(strAbel, reinterpret_cast<const char*>(list.GetItemData(1)));
    EXPECT_EQ(strZora, reinterpret_cast<const char*>(list.GetItemData(2)));
}

TEST(Lists, TreatmentsWithTheEntryForANewOne)
{
    TestDatabase database;
    dbCPatient patient = NewPatient("A1");
    patient.Save();
    dbCPatientTreatmentStatusHistoryTable history;
    std::vector<CString> ids;
    for (int i = 0; i < 3; ++i)
    {
        dbCPatientTreatmentStatusHistoryRow row;
        row.SetpatID(patient.GetGUID());
        row.SetDescription("Phase");
        row.SetActive(i == 1 ? 0 : -1);
        row.SetDateTime(velCDate(2024, 3 - i, 1));
        history.InsertRow(row);
        ids.push_back(row.GetptshID());
    }
    Combo list;
    CStringArray ptshIDs;
    ASSERT_EQ(patient.FillTreatmentList(list, ptshIDs, TRUE, TRUE), 3);
    EXPECT_EQ(ptshIDs[0], ids[2]) << "oldest first";
    EXPECT_EQ(ptshIDs[1], ids[0]);
    EXPECT_EQ(ptshIDs[2], "");
    EXPECT_EQ(list.GetItemData(2), 2U);
    EXPECT_EQ(patient.FillTreatmentList(list, ptshIDs, FALSE, FALSE), 3);
    EXPECT_EQ(list.GetCount(), 3);
}
} // namespace

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
} // namespace

#include "tests/patient/sheetfixture.h"

using veltest::Control;
using veltest::Dialog;
using veltest::DialogScript;

dbCPatient SheetTest::StorePatient(const char* pszID, const char* pszFirstname, const char* pszLastname)
{
    dbCPatient patient;
    patient.SetID(pszID);
    patient.SetFirstname(pszFirstname);
    patient.SetLastname(pszLastname);
    patient.SetNickname("Nan");
    patient.SetEmail("ann@example.org");
    patient.SetBirthdate(velCDate(2012, 3, 4));
    patient.SetGender(1);
    patient.SetGenderIdentity(3);
    patient.SetRace(9);
    patient.SetTitle("Ms");
    patient.SetNotes("first note");
    dbCAddress address;
    address.SetType("O");
    address.SetStreet("Quay 1");
    address.SetCity("Northport");
    address.SetCountry("Ruritania");
    patient.SetAddress(0, address);
    patient.GetPhones().Add(dbCPhone("111", dbCPhone::GetTypeName(0)));
    patient.GetPhones().Add(dbCPhone("222", "Pager"));
    patient.GetPhones().Add(dbCPhone("333", dbCPhone::GetTypeName(1)));

    dbCPerson guardian;
    guardian.SetFirstname("Eve");
    guardian.SetLastname("Lee");
    guardian.SetNotes("line 1\r\nline 2");
    guardian.SetPhone(0, dbCPhone("444", dbCPhone::GetTypeName(0)));
    patient.AddPersonInfo(dbPersonGuardian, guardian);

    dbCInsuranceCompany company;
    company.SetName("Harbour Mutual");
    company.Save();
    dbCInsurance insurance;
    insurance.SetCompanyGUID(company.GetCompanyGUID());
    insurance.SetHolder("Eve Lee");
    insurance.SetNumber("17");
    insurance.SetNote("kept");
    patient.AssignInsurance(insurance);

    patient.GetReferrals().AddReferralDoc(StoreDoctor("Ida", "Sorel"), velCDate(2020, 5, 6), "crowding");
    patient.Save();
    return patient;
}

CString SheetTest::StoreDoctor(const char* pszFirstname, const char* pszLastname)
{
    dbCDoctor doctor;
    doctor.GetPerson().SetFirstname(pszFirstname);
    doctor.GetPerson().SetLastname(pszLastname);
    doctor.Save();
    return doctor.GetGUID();
}

Dialog WaitForSheet(DialogScript& script)
{
    return script.WaitForDialogWith(IDC_CHART_ID);
}

void FillNames(const Dialog& sheet, const std::string& id, const std::string& firstname,
               const std::string& lastname)
{
    sheet.Item(IDC_CHART_ID).SetText(id);
    sheet.Item(IDC_CHART_FIRSTNAME).SetText(firstname);
    sheet.Item(IDC_CHART_LASTNAME).SetText(lastname);
}

void ExpectRefused(DialogScript& script, const Dialog& sheet, const std::string& text, int focusedControl)
{
    sheet.Press(IDOK);
    EXPECT_EQ(script.WaitForBox().BoxText(), text);
    script.AnswerBox("", IDOK);
    script.WaitUntil("the sheet is usable again", [&] { return sheet.IsEnabled(); });
    if (focusedControl != 0)
    {
        const HWND focus = sheet.Focused().Handle();
        const bool bInside =
            IsChild(sheet.Item(focusedControl).Handle(), focus); // the edit part of a combo box
        EXPECT_EQ(GetDlgCtrlID(bInside ? GetParent(focus) : focus), focusedControl) << text;
    }
}

std::string SelectedText(const Control& field)
{
    const LRESULT selection = field.Send(EM_GETSEL);
    return field.Text().substr(LOWORD(selection), HIWORD(selection) - LOWORD(selection));
}

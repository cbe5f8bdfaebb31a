#include "host/tour/tour.h"

#include "host/hostcommands.h"
#include "host/hostpractice.h"
#include "host/hostres.h"
#include "host/tour/archivesteps.h"
#include "host/tour/exchangesteps.h"
#include "host/tour/maintenancesteps.h"
#include "maintenance/maintenanceres.h"
#include "patient/detailsres.h"
#include "patient/patientres.h"
#include "suite/patients/records/dbkeywords.h"
#include "suite/patients/records/dbpatients.h"

#include <array>

using veltest::Dialog;

namespace
{

constexpr int kSelectAll = -1;

int CountRows(tourCGuide& guide, int list)
{
    return static_cast<int>(guide.Child(list).Send(LVM_GETITEMCOUNT));
}

std::vector<std::string> FirstRow(tourCGuide& guide, int list)
{
    const auto rows = guide.Child(list).Rows();
    return rows.empty() ? std::vector<std::string>() : rows.front();
}

// Finds the tour's own patient by the search box; the search selects the first hit.
void SelectPatient(tourCGuide& guide, const std::string& id)
{
    guide.Child(IDC_SEARCH_BY).Choose(1);
    guide.Child(IDC_SEARCH).Replace(id);
    guide.GetScript().WaitUntil("the patient in the list", [&] { return CountRows(guide, IDC_PATIENTS) == 1; });
    guide.GetScript().Settle(guide.GetFrame());
}

void ClearSearch(tourCGuide& guide)
{
    guide.Child(IDC_SEARCH).Replace("");
    guide.Child(IDC_SEARCH_BY).Choose(0);
    guide.GetScript().Settle(guide.GetFrame());
}

Dialog OpenDialog(tourCGuide& guide, int command, const std::string& title)
{
    guide.Choose(command);
    return guide.GetScript().WaitForDialog(title);
}

void Cancel(const Dialog& dialog)
{
    dialog.Press(IDCANCEL);
    dialog.WaitForClosed();
}

void Confirm(const Dialog& dialog)
{
    dialog.Press(IDOK);
    dialog.WaitForClosed();
}

void PlayOpen(tourCGuide& guide)
{
    const HWND frame = guide.GetFrame();
    guide.ExpectText("title", "Tour Practice - Veltrix Imaging", veltest::WindowText(frame));
    guide.ExpectResult("Ready");
    guide.Expect(CountRows(guide, IDC_PATIENTS) == hostCPractice::kSamplePatients,
                 std::to_string(CountRows(guide, IDC_PATIENTS)) + " patients in the list");
    guide.Expect(CountRows(guide, IDC_AUDIT) == 0, "the audit log is empty");
    // A patient with images, so that the picture shows some.
    guide.Child(IDC_PATIENTS).SelectRow(2);
    guide.GetScript().Settle(frame);
    guide.Expect(CountRows(guide, IDC_TIMEPOINTS) > 0, std::to_string(CountRows(guide, IDC_TIMEPOINTS)) + " timepoints");
    guide.Expect(CountRows(guide, IDC_IMAGES) > 0, std::to_string(CountRows(guide, IDC_IMAGES)) + " images");
    guide.Child(IDC_TIMEPOINTS).SelectRow(0);
    guide.WaitForThumbnails();
    guide.Expect(CountRows(guide, IDC_IMAGES) == 4, "4 thumbnails");
    guide.Picture(frame, "main-window");
}

void PlayGreyed(tourCGuide& guide)
{
    for (const hostSCommand& command : hostGetCommands())
    {
        const bool offered = hostIsOffered(command, true, 1);
        char tip[128] = {};
        ::LoadString(::GetModuleHandle(nullptr), static_cast<UINT>(command.id), tip, sizeof tip);
        const std::string text(tip);
        const std::string exportName = command.exportName != nullptr ? std::string(command.exportName) + ": " : "";
        guide.Expect(guide.IsGreyed(command.id) != offered,
                     exportName + text.substr(text.find('\n') + 1) + (offered ? "" : " (greyed)"));
    }
}

void PlaySearch(tourCGuide& guide)
{
    const auto first = FirstRow(guide, IDC_PATIENTS);
    const std::string begin = first.at(0).substr(0, 2);
    guide.Child(IDC_SEARCH).Replace(begin);
    guide.GetScript().Settle(guide.GetFrame());
    const int found = CountRows(guide, IDC_PATIENTS);
    guide.Expect(found > 0 && found < hostCPractice::kSamplePatients,
                 "\"" + begin + "\" finds " + std::to_string(found) + " patients");
    for (const auto& row : guide.Child(IDC_PATIENTS).Rows())
    {
        guide.Expect(row.at(0).substr(0, 2) == begin, row.at(0) + ", " + row.at(1));
    }
    guide.Picture(guide.GetFrame(), "search");
    ClearSearch(guide);
    guide.Expect(CountRows(guide, IDC_PATIENTS) == hostCPractice::kSamplePatients, "an empty search shows all again");
}

void PlayNewCancelled(tourCGuide& guide)
{
    const Dialog sheet = OpenDialog(guide, ID_PATIENT_NEW, "Patient Information");
    sheet.Item(IDC_CHART_ID).Replace("NEVER-1");
    Cancel(sheet);
    guide.ExpectResult("NewPatientDlg: cancelled");
    guide.ExpectNoEvent();
    guide.Expect(CountRows(guide, IDC_PATIENTS) == hostCPractice::kSamplePatients, "the patient list is unchanged");
}

void FillChart(const Dialog& sheet, const std::string& id)
{
    sheet.Item(IDC_CHART_ID).Replace(id);
    sheet.Item(IDC_CHART_FIRSTNAME).Replace("Ann");
    sheet.Item(IDC_CHART_LASTNAME).Replace("Leeward");
    sheet.Item(IDC_CHART_NICKNAME).Replace("Annie");
    sheet.Item(IDC_CHART_BIRTHDATE).SetDate(2012, 5, 17);
    sheet.Item(IDC_CHART_GENDER_IDENTITY).Choose("Female");
    sheet.Item(IDC_CHART_RACE).Choose(2);
    sheet.Item(IDC_CHART_STREET).Replace("12 Willow Walk");
    sheet.Item(IDC_CHART_CITY).Replace("Ashmere");
    sheet.Item(IDC_CHART_STATE).Replace("WA");
    sheet.Item(IDC_CHART_POSTALCODE).Replace("98960");
    sheet.Item(IDC_CHART_PHONE1).Replace("(360) 555-0142");
    sheet.Item(IDC_CHART_PHONETYPE1).Choose(1);
    sheet.Item(IDC_CHART_EMAIL).Replace("ann.leeward@example.com");
}

void FillDetails(const Dialog& sheet)
{
    sheet.Item(IDC_DETAIL_TITLE).Replace("Miss");
    sheet.Item(IDC_DETAIL_MODEL).Replace("M-2044");
    sheet.Item(IDC_DETAIL_OFFICE).Choose(1);
    sheet.Item(IDC_DETAIL_STATUS).Choose(1);
    sheet.Item(IDC_DETAIL_NOTES).Replace("Entered on the tour.");
    sheet.Item(IDC_DETAIL_TREATING).Choose(1);
    sheet.Item(IDC_DETAIL_REFERRING).Choose(1);
}

void FillGuardian(const Dialog& sheet)
{
    sheet.Item(IDC_GUARD_FIRSTNAME).Replace("Ruth");
    sheet.Item(IDC_GUARD_LASTNAME).Replace("Leeward");
    sheet.Item(IDC_GUARD_PHONE1).Replace("(360) 555-0143");
    sheet.Item(IDC_GUARD_PHONETYPE1).Choose(1);
}

void FillReferral(const Dialog& sheet)
{
    sheet.Item(IDC_REFER_DOCTOR).Choose(2);
    sheet.Item(IDC_REFER_NOTE).Replace("Second opinion");
    sheet.Item(IDC_ROWS_ADD).Click();
}

void FillInsurance(const Dialog& sheet)
{
    sheet.Item(IDC_INSURE_COMPANY).Choose(0);
    sheet.Item(IDC_INSURE_HOLDER).Replace("Ruth Leeward");
    sheet.Item(IDC_INSURE_NUMBER).Replace("P7700412");
    sheet.Item(IDC_ROWS_ADD).Click();
}

void PlayNew(tourCGuide& guide)
{
    const Dialog sheet = OpenDialog(guide, ID_PATIENT_NEW, "Patient Information");
    guide.Expect(sheet.PageCount() == 5, std::to_string(sheet.PageCount()) + " pages");
    FillChart(sheet, "lower-case");
    sheet.Press(IDOK);
    guide.GetScript().AnswerBox(
        "The patient ID has some invalid characters. The only valid characters are A-Z, 0-9, _ and -.", IDOK);
    guide.Expect(sheet.IsOpen(), "an ID with lower-case letters is refused, the sheet stays open");

    guide.m_patientID = "TOUR-1";
    sheet.Item(IDC_CHART_ID).Replace(guide.m_patientID);
    sheet.SelectPage(1);
    FillDetails(sheet);
    sheet.SelectPage(2);
    FillGuardian(sheet);
    sheet.SelectPage(3);
    FillReferral(sheet);
    sheet.SelectPage(4);
    FillInsurance(sheet);
    guide.PagePictures(sheet, "new-patient");
    Confirm(sheet);
    guide.ExpectResult("NewPatientDlg: OK");
    guide.ExpectEvent(dbAuditNewPatient, "The patient (TOUR-1) Leeward, Ann has been created");
    guide.Expect(CountRows(guide, IDC_PATIENTS) == hostCPractice::kSamplePatients + 1, "one patient more in the list");
}

// What all five pages have left in the database.
void PlayReadBack(tourCGuide& guide)
{
    dbCPatient patient;
    BOOL loaded = FALSE;
    std::string treating;
    std::string guardian;
    guide.OnUi(
        [&]
        {
            loaded = patient.Load(guide.m_patientID.c_str());
            dbCPerson person;
            treating = patient.GetPersonInfo(dbPersonTreatingDoctor, person) ? person.GetLastname().GetString() : "";
            guardian = patient.GetPersonInfo(dbPersonGuardian, person)
                           ? std::string(person.GetFirstname()) + " " + person.GetLastname().GetString()
                           : "";
        });
    guide.Expect(loaded != FALSE, "the patient is in the database");
    guide.ExpectText("name", "Ann Leeward",
                     std::string(patient.GetFirstname()) + " " + patient.GetLastname().GetString());
    guide.ExpectText("birth date", "2012-05-17", patient.GetBirthdate().ToISO().GetString());
    guide.ExpectText("street", "12 Willow Walk", patient.GetAddress(0).GetStreet().GetString());
    guide.ExpectText("model number", "M-2044", patient.GetModelNumber().GetString());
    guide.ExpectText("notes", "Entered on the tour.", patient.GetNotes().GetString());
    guide.ExpectText("guardian", "Ruth Leeward", guardian);
    guide.Expect(!treating.empty(), "treating doctor: " + treating);
    guide.Expect(!patient.GetOfficeID().IsEmpty() && !patient.GetStatusID().IsEmpty(), "office and status are stored");
    guide.Expect(patient.GetReferrals().GetCount() > 0,
                 std::to_string(patient.GetReferrals().GetCount()) + " referrals");
    guide.Expect(patient.GetInsurances().GetCount() == 1 &&
                     patient.GetInsurances()[0].GetNumber() == "P7700412",
                 "one insurance policy");
}

void PlayTakenID(tourCGuide& guide)
{
    const Dialog sheet = OpenDialog(guide, ID_PATIENT_NEW, "Patient Information");
    FillChart(sheet, guide.m_patientID);
    sheet.Press(IDOK);
    const Dialog box = guide.GetScript().WaitForBox("The patient ID already exists. Please enter a unique ID.");
    guide.Picture(box.Handle(), "taken-id");
    box.Press(IDOK);
    box.WaitForClosed();
    guide.Expect(sheet.Focused().Id() == IDC_CHART_ID, "the focus is on the ID");
    Cancel(sheet);
    guide.ExpectResult("NewPatientDlg: cancelled");
    guide.ExpectNoEvent();
}

void PlayStudy(tourCGuide& guide)
{
    const Dialog sheet = OpenDialog(guide, ID_PATIENT_NEWFROM, "Patient Information");
    const std::string id = sheet.Item(IDC_CHART_ID).Text();
    const std::string given = sheet.Item(IDC_CHART_FIRSTNAME).Text();
    const std::string family = sheet.Item(IDC_CHART_LASTNAME).Text();
    guide.Expect(id == "STUDY-0001" && !given.empty() && !family.empty(), "prefilled: " + id + " " + given + " " + family);
    guide.Picture(sheet.Handle(), "new-from-study");
    Confirm(sheet);
    guide.ExpectResult("NewPatientDlgWithData: OK");
    guide.ExpectEvent(dbAuditNewPatient,
                      "The patient from DICOM (" + id + ") " + family + ", " + given + " has been created");
}

void PlayChange(tourCGuide& guide)
{
    SelectPatient(guide, guide.m_patientID);
    const Dialog sheet =
        OpenDialog(guide, ID_PATIENT_CHANGE, "Patient Information - Ann Leeward ID: " + guide.m_patientID);
    guide.ExpectText("nickname", "Annie", sheet.Item(IDC_CHART_NICKNAME).Text());
    sheet.Item(IDC_CHART_NICKNAME).Replace("Nan");
    sheet.Item(IDC_CHART_CITY).Replace("Greyhaven");
    guide.PagePictures(sheet, "change-patient");
    Confirm(sheet);
    guide.ExpectResult("ChangePatientDlg: OK");
    guide.ExpectEvent(dbAuditPatientModified, "The patient (TOUR-1) Leeward, Ann data, has been modified");
    dbCPatient patient;
    guide.OnUi([&] { patient.Load(guide.m_patientID.c_str()); });
    guide.ExpectText("nickname in the database", "Nan", patient.GetNickname().GetString());
    guide.ExpectText("city in the database", "Greyhaven", patient.GetAddress(0).GetCity().GetString());
}

void PlayChangeCancelled(tourCGuide& guide)
{
    const Dialog sheet =
        OpenDialog(guide, ID_PATIENT_CHANGE, "Patient Information - Ann Leeward ID: " + guide.m_patientID);
    sheet.Item(IDC_CHART_NICKNAME).Replace("Never");
    Cancel(sheet);
    guide.ExpectResult("ChangePatientDlg: cancelled");
    guide.ExpectNoEvent();
    dbCPatient patient;
    guide.OnUi([&] { patient.Load(guide.m_patientID.c_str()); });
    guide.ExpectText("nickname in the database", "Nan", patient.GetNickname().GetString());
    ClearSearch(guide);
}

bool HasKeyword(tourCGuide& guide, const std::string& word)
{
    bool found = false;
    guide.OnUi(
        [&]
        {
            CKeywords keywords;
            keywords.Load(dbKeywordsPatient);
            keywords.MoveFirst();
            CString keyword;
            while (keywords.GetNext(keyword))
            {
                found = found || keyword == word.c_str();
            }
        });
    return found;
}

void PlayKeywords(tourCGuide& guide)
{
    const Dialog dialog = OpenDialog(guide, ID_KEYWORDS_PATIENT, "Edit Keywords");
    guide.Expect(!dialog.Item(IDC_KEYWORD_ADD).IsEnabled(), "Add is disabled while the field is empty");
    dialog.Item(IDC_KEYWORD_TEXT).Replace("class ii");
    dialog.SettleIdle();
    dialog.Press(IDC_KEYWORD_ADD);
    guide.GetScript().AnswerBox("The specified keyword is already in the list.", IDOK);
    dialog.Item(IDC_KEYWORD_TEXT).Replace("Aligner");
    dialog.SettleIdle();
    dialog.Press(IDC_KEYWORD_ADD);
    guide.Picture(dialog.Handle(), "edit-keywords");
    Confirm(dialog);
    guide.ExpectResult("EditKeywords: OK");
    guide.Expect(HasKeyword(guide, "Aligner"), "the new keyword is in the database");
}

void PlayKeywordsCancelled(tourCGuide& guide)
{
    const Dialog dialog = OpenDialog(guide, ID_KEYWORDS_IMAGE, "Edit Keywords");
    dialog.Item(IDC_KEYWORD_TEXT).Replace("Never");
    dialog.SettleIdle();
    dialog.Press(IDC_KEYWORD_ADD);
    Cancel(dialog);
    guide.ExpectResult("EditKeywords: cancelled");
    guide.Expect(!HasKeyword(guide, "Never"), "a cancelled change is not in the database");
    guide.ExpectNoEvent();
}

void PlayModule(tourCGuide& guide)
{
    const Dialog dialog = OpenDialog(guide, ID_HELP_MODULE, "Dialog Module");
    const auto rows = dialog.Item(IDC_MODULE_LIST).Rows();
    int found = 0;
    for (const auto& row : rows)
    {
        found += row.at(1) == "found";
    }
    guide.Expect(found == 13, std::to_string(found) + " exports found");
    guide.Picture(dialog.Handle(), "module");
    Confirm(dialog);
}

void PlaySeveral(tourCGuide& guide)
{
    guide.Child(IDC_PATIENTS).Focus();
    guide.OnUi(
        [&]
        {
            const HWND list = ::GetDlgItem(guide.GetFrame(), IDC_PATIENTS);
            LVITEM item = {};
            item.stateMask = LVIS_SELECTED;
            ::SendMessage(list, LVM_SETITEMSTATE, static_cast<WPARAM>(kSelectAll), reinterpret_cast<LPARAM>(&item));
            item.state = LVIS_SELECTED;
            for (WPARAM row : {1u, 3u, 4u})
            {
                ::SendMessage(list, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
            }
        });
    guide.GetScript().Settle(guide.GetFrame());
    guide.ExpectText("selection", "3 patients selected", guide.Child(IDC_PATIENT_NAME).Text());
    guide.Expect(guide.IsGreyed(ID_PATIENT_CHANGE), "Change is greyed for several patients");
    guide.Picture(guide.GetFrame(), "several-patients");
}

void PlayAuditLog(tourCGuide& guide)
{
    guide.Choose(ID_PRACTICE_REFRESH);
    guide.GetScript().Settle(guide.GetFrame());
    guide.Expect(CountRows(guide, IDC_AUDIT) == 8, std::to_string(CountRows(guide, IDC_AUDIT)) + " events in the audit log");
    for (const auto& row : guide.Child(IDC_AUDIT).Rows())
    {
        guide.Print("   log      " + row.at(1) + ": " + row.at(2));
    }
    guide.Picture(guide.GetFrame(), "audit-log");
}

constexpr std::array<tourSStep, 40> kSteps = {{
    {"The practice opens", PlayOpen},
    {"Every command is offered for one patient", PlayGreyed},
    {"The search finds patients while it is typed", PlaySearch},
    {"A new patient, cancelled", PlayNewCancelled},
    {"A new patient through all five pages", PlayNew},
    {"The new patient is read back from the database", PlayReadBack},
    {"A taken patient ID", PlayTakenID},
    {"A new patient from a received study", PlayStudy},
    {"A patient is changed", PlayChange},
    {"A change, cancelled", PlayChangeCancelled},
    {"The keyword list is edited", PlayKeywords},
    {"Keywords, cancelled", PlayKeywordsCancelled},
    {"A timepoint is added", tourPlayNewTimepoint},
    {"A timepoint is added for a new treatment", tourPlayNewTreatment},
    {"A timepoint is renamed", tourPlayRenameTimepoint},
    {"A patient is renamed", tourPlayRenamePatient},
    {"A change of name, cancelled", tourPlayRenameCancelled},
    {"Diagnostics are imported", tourPlayImportDiagnostics},
    {"The images of a timepoint are deleted", tourPlayDeleteImages},
    {"A timepoint is deleted", tourPlayDeleteTimepoint},
    {"A patient who owes something is not deleted, then is", tourPlayDeletePatient},
    {"The dialog module and its settings", PlayModule},
    {"Several patients are selected", PlaySeveral},
    {"The audit log", PlayAuditLog},
    {"Saving to archives is forbidden and allowed again", tourPlayArchiveForbidden},
    {"Without the transfer program nothing goes to the internet", tourPlayExchangeUnavailable},
    {"The selected patients are saved to archives", tourPlayArchiveSeveral},
    {"One patient is saved to an archive", tourPlayArchiveOne},
    {"A self-starting disc", tourPlayArchiveDisc},
    {"A patient is saved as a volume archive", tourPlayArchiveVolumes},
    {"A patient is saved in the earlier format", tourPlayArchiveEarlier},
    {"The archives are loaded into a second practice", tourPlayArchiveLoad},
    {"The volume archive is loaded there", tourPlayLoadVolumes},
    {"The archive of the earlier format is loaded there", tourPlayLoadEarlier},
    {"A patient that is there is not loaded over", tourPlayLoadExisting},
    {"Timepoints are merged from another patient's archive", tourPlayArchiveMerge},
    {"A patient is removed after archiving and loaded again", tourPlayArchiveRemove},
    {"A patient is sent to the record-sharing service", tourPlayExchangeSend},
    {"Another practice takes the patient from there", tourPlayExchangeReceive},
    {"The record has grown, is sent again and merged", tourPlayExchangeAgain},
}};

} // namespace

std::span<const tourSStep> tourGetSteps()
{
    return kSteps;
}

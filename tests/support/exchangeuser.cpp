// Before anything that brings windows.h.
#include "suite/patients/velpat.h"

#include "tests/support/exchangeuser.h"

#include "suite/patients/records/dbemails.h"
#include "suite/rasko/program/raskores.h"
#include "suite/rasko/raskoapi.h"
#include "suite/util/velpath.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <process.h>
#include <set>

namespace veltest
{

bool WaitFor(const std::function<bool()>& condition)
{
    for (const DWORD start = GetTickCount(); GetTickCount() - start < ProgramPatience; Sleep(5))
        if (condition())
            return true;
    return false;
}

std::string ProgramFolder()
{
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path().string();
}

HANDLE StartTransferProgram(const char* commandSwitch)
{
    const std::string program = ProgramFolder() + "\\" + rasko::ProgramFile;
    return reinterpret_cast<HANDLE>(
        _spawnl(_P_NOWAIT, program.c_str(), rasko::ProgramFile, commandSwitch, nullptr));
}

void EnterTransferOptions(DialogScript& script, const std::string& user, const std::string& password,
                          const std::string& service, const std::string& folder)
{
    HWND options = nullptr;
    script.WaitUntil("the transfer program's options", [&] {
        options = FindWindowA("#32770", "Veltrix Rasko Options");
        return options != nullptr && IsWindowVisible(options);
    });
    const std::pair<int, std::string> fields[] = {
        {IDC_USER, user}, {IDC_PASSWORD, password}, {IDC_SERVICE, service}, {IDC_FOLDER, folder}};
    for (const auto& [id, text] : fields)
        SendMessageTimeoutA(GetDlgItem(options, id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()),
                            SMTO_NORMAL, 5'000, nullptr);
    PostMessageA(options, WM_COMMAND, IDOK, 0);
    script.WaitUntil("the options are closed", [&] { return !IsWindow(options); });
}

void EndTransferProgram()
{
    const HWND window = FindWindowA(rasko::WindowClass, nullptr);
    DWORD id = 0;
    if (window == nullptr || GetWindowThreadProcessId(window, &id) == 0)
        return;
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, id);
    PostMessageA(window, WM_COMMAND, rasko::QuitCommand, 0);
    const DWORD ended = WaitForSingleObject(process, 30'000);
    CloseHandle(process);
    if (ended != WAIT_OBJECT_0)
        throw std::runtime_error("the transfer program does not end");
}

void AddCarried(dbCPatient& patient)
{
    dbCDoctor doctor;
    doctor.GetPerson().SetPersonGUID("{0D000000-0000-0000-0000-000000000001}");
    doctor.GetPerson().SetLastname("O'Hara & <Co>");
    doctor.GetPerson().SetFirstname("\"Ren\xe9\"");
    doctor.GetPerson().SetTitle("Dr.");
    dbCAddress office;
    office.SetType("O");
    office.SetCompany("Smile");
    office.SetCity("K\xf6ln");
    doctor.GetPerson().SetAddress(0, office);
    doctor.Save();
    dbCPersonEmails emails;
    emails.Add("rene@one.example");
    emails.Add("office@one.example");
    emails.Save(doctor.GetGUID());
    patient.AddPersonInfo(dbPersonTreatingDoctor, doctor.GetPerson());
    dbCDoctor referrer;
    referrer.GetPerson().SetPersonGUID("{0D000000-0000-0000-0000-000000000002}");
    referrer.GetPerson().SetLastname("van der Berg");
    referrer.GetPerson().SetFirstname("Jan");
    referrer.GetPerson().SetEmail("jan@two.example");
    referrer.Save();
    patient.GetReferrals().AddReferralDoc(referrer.GetGUID(), velCDate(2020, 1, 2));
    patient.SetTitle("Ms.");
    patient.SetSalutation("Dear Zo\xeb");
    patient.SetNickname("\x80uro");
    patient.SetNorm(3);
    patient.SetEmail("zoe@four.example");
    dbCAddress second;
    second.SetType("O");
    second.SetStreet("Second \"Street\"");
    second.SetState("BW");
    second.SetPostalCode("89073");
    second.SetCountry("Norway");
    patient.SetAddress(1, second);
    patient.Save();
    dbCPatientEmailsContainer rows;
    rows.Add({"{P}", "guardian", "home", "Mrs.", "Eve", "Lee", "eve@three.example"});
    rows.Save(patient.GetGUID());
}

std::string CarriedFields(const dbCPatient& patient)
{
    std::string text;
    const auto line = [&](const CString& str) { text += std::string(str) + "\n"; };
    const auto addresses = [&](const dbCAddresses& list) {
        for (const dbCAddress& a : list)
            line(a.GetType() + "|" + a.GetCompany() + "|" + a.GetStreet() + "|" + a.GetCity() + "|" +
                 a.GetState() + "|" + a.GetPostalCode() + "|" + a.GetCountry());
    };
    for (const CString& str :
         {patient.GetGUID(), patient.GetLastname(), patient.GetFirstname(), patient.GetBirthdate().ToISO(),
          patient.GetTitle(), patient.GetNickname(), patient.GetNotes()})
        line(str);
    text += std::to_string(patient.GetGender()) + " " + std::to_string(patient.GetNorm()) + "\n";
    for (const dbCPhone& phone : patient.GetPhones())
        line(phone.GetNumber() + " " + phone.GetType());
    addresses(patient.GetAddresses());
    dbCPerson link;
    dbCDoctor doctor;
    if (patient.GetPersonInfo(dbPersonTreatingDoctor, link) && doctor.Load(link.GetPersonGUID()))
    {
        const dbCPerson& person = doctor.GetPerson();
        line(person.GetLastname() + person.GetFirstname() + person.GetTitle());
        addresses(person.GetAddresses());
        dbCPersonEmails emails;
        emails.LoadByPersonGUID(person.GetPersonGUID());
        for (const CString& email : emails)
            line(email);
    }
    for (const dbCPatientReferralsRow& row : patient.GetReferrals())
        line(row.Get_docFirstname() + " " + row.Get_docLastname() + row.Get_docEmail());
    dbCPatientEmailsContainer emails;
    emails.LoadByPatID(patient.GetGUID());
    for (const dbSPatientEmail& row : emails)
        line(row.strPersonID + row.strCategory + row.strType + row.strSalutation + row.strFirstname +
             row.strLastname + row.strAddress);
    for (const patCTimepoint& timepoint : patient.GetTimepoints())
    {
        line(timepoint.GetName() + "|" + timepoint.GettpID() + "|" + timepoint.GetDate().ToISO() + "|" +
             timepoint.GetBaseFilename().Mid(patient.GetID().GetLength()));
        for (int group = 0; group < patCImageTypes::GROUP_COUNT; ++group)
        {
            text += std::to_string(timepoint.GetImageBits(group)) + " ";
            for (int type = 0; type < patCImageTypes::GetTypeCount(group); ++type)
            {
                const patSImageInfo info = timepoint.GetImageInfo(group, type);
                text += std::string(info.strTitle + "|" + info.strNote);
            }
        }
        text += "\n";
    }
    return text;
}

std::map<std::string, std::string> CarriedFiles(const std::string& id)
{
    const std::set<std::string> own = {".PF", ".DF0", ".DF1", ".DF2", ".DF3", ".2DMORPH"};
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(velGetDataPath().GetString()))
    {
        std::string name = entry.path().filename().string();
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char ch) { return static_cast<char>(toupper(ch)); });
        if (!name.starts_with(id) || own.contains(std::filesystem::path(name).extension().string()))
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        files[name.substr(id.size())] = {std::istreambuf_iterator<char>(file),
                                         std::istreambuf_iterator<char>()};
    }
    return files;
}

} // namespace veltest

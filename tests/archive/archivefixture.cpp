#include "tests/archive/archivefixture.h"

#include "tests/archive/rawzip.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/sql.h"

#include <filesystem>
#include <memory>

using veltest::Dialog;
using veltest::DialogScript;

VEL_MFC_TEST_PROGRAM();

BOOL HostWindow::Open()
{
    return CreateEx(0, AfxRegisterWndClass(0), "Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 700, 500,
                    nullptr, nullptr);
}

LRESULT HostWindow::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != VELDLGS_PATIENT_CHANGED)
        return CWnd::DefWindowProc(message, wParam, lParam);
    const std::unique_ptr<char[]> guid(reinterpret_cast<char*>(lParam));
    m_told.emplace_back(static_cast<int>(wParam), guid.get());
    return 0;
}

ArchiveDialogTest::ArchiveDialogTest()
{
    m_practice.Set("Environment", "DatabaseTimeout", "2000"); // milliseconds
    m_practice.Set("Environment", "TEMP", m_practice.Path("temp"));
    m_practice.Set("Defaults", "ArchiveFilePath", m_practice.Path("archive"));
    ChangeWorkers();
    UsePractice(1);
    EXPECT_TRUE(m_host.Open());
    SetArchivingAllowed(true);
}

ArchiveDialogTest::~ArchiveDialogTest()
{
    SetArchivingAllowed(false);
    m_host.DestroyWindow();
    dbCPatients::Close();
    ::SetCurrentDirectory("C:\\");
}

void ArchiveDialogTest::ChangeWorkers()
{
    static int s_nTurn = 0;
    const char* const workers[] = {"1", "2", "7"};
    m_practice.Set("Defaults", "ArchiveThreads", workers[s_nTurn++ % 3]);
}

void ArchiveDialogTest::UsePractice(int nPractice)
{
    m_working = "working" + std::to_string(nPractice);
    m_database = m_practice.Path("patients" + std::to_string(nPractice) + ".db");
    std::filesystem::create_directories(m_practice.Path(m_working));
    m_practice.Set("Environment", "WORKING", m_practice.Path(m_working + "\\"));
    (std::filesystem::exists(m_database) ? dbCPatients::Open : dbCPatients::Create)(m_database.c_str());
    m_lastEvent = "0";
    NewEvents();
}

__int64 RunArchiveDialog(HostWindow& host, ARCHIVE_OP nOperation, const std::vector<std::string>& ids,
                         const std::vector<std::string>& given, const DialogScript::Script& script,
                         int nPracticeManagement)
{
    CStringArray selected, archives, more2, more3, more4;
    for (const std::string& id : ids)
        selected.Add(id.c_str());
    for (const std::string& path : given)
        archives.Add(path.c_str());
    dbCPatients patients;
    dbCPatient patient;
    const bool bHasPatient = !ids.empty() && patient.Load(ids.front().c_str());
    return veltest::RunModal(
        [&] {
            return ArchiveDlg(&host, nPracticeManagement, bHasPatient ? &patient : nullptr, nOperation,
                              selected, &patients, archives, more2, more3, more4, 0, 0);
        },
        script);
}

__int64 ArchiveDialogTest::Run(ARCHIVE_OP nOperation, const std::vector<std::string>& ids,
                               const std::vector<std::string>& given, const Script& script,
                               int nPracticeManagement)
{
    const __int64 nResult = RunArchiveDialog(m_host, nOperation, ids, given, script, nPracticeManagement);
    MSG message;
    while (::PeekMessage(&message, nullptr, 0, 0, PM_REMOVE))
    {
        if (message.message == WM_QUIT)
            m_nQuit = static_cast<int>(message.wParam);
        ::DispatchMessage(&message);
    }
    EXPECT_TRUE(m_host.GetSafeHwnd() == nullptr || m_host.IsWindowEnabled());
    for (const std::string& id : ids)
        EXPECT_TRUE(m_bStaysLocked || !m_patients.Unlock(id.c_str())) << "still locked: " << id;
    return nResult;
}

void ArchiveDialogTest::Play(ARCHIVE_OP nOperation, const std::vector<std::string>& ids,
                             const std::vector<std::string>& given, const Script& asked,
                             int nPracticeManagement)
{
    const auto play = [&](DialogScript& script) {
        WaitForChoice(script).Press(IDOK);
        asked(script);
    };
    EXPECT_EQ(Run(nOperation, ids, given, play, nPracticeManagement), IDOK);
}

void ArchiveDialogTest::SaveSeveral(const std::vector<std::string>& ids, int nRemove, const Script& asked,
                                    int nPracticeManagement)
{
    const auto play = [&](DialogScript& script) {
        const Dialog box =
            script.WaitForBox("You are about to save multiple patients to Archive, do you want to delete the "
                              "patients from the patient list when the operation is finished?");
        EXPECT_EQ(box.DefaultButton(), "No");
        box.Press(nRemove);
        TakeOfferedName(script);
        asked(script);
    };
    Play(ARCHIVE_OP_SAVE, ids, {}, play, nPracticeManagement);
}

void ArchiveDialogTest::SaveWith(const std::string& id, const Script& asked, int nFilter,
                                 int nPracticeManagement)
{
    const auto play = [&](DialogScript& script) {
        TakeOfferedName(script, nFilter);
        asked(script);
    };
    Play(ARCHIVE_OP_SAVE, {id}, {}, play, nPracticeManagement);
}

void ArchiveDialogTest::Save(const std::string& id, int nFilter)
{
    const auto answer = [&](DialogScript& script) {
        if (nFilter != 1)
            script.AnswerBox("", nFilter == 2 ? IDYES : IDNO);
    };
    SaveWith(id, answer, nFilter);
    ASSERT_TRUE(std::filesystem::exists(Archive(id, nFilter)));
}

void ArchiveDialogTest::ExpectRefused(int nFilter, const std::string& text)
{
    const auto refused = [&](DialogScript& script) {
        WaitForChoice(script).Press(IDOK);
        TakeOfferedName(script, nFilter);
        script.AnswerBox(text, IDOK);
        WaitForChoice(script).Press(IDCANCEL);
    };
    EXPECT_EQ(Run(ARCHIVE_OP_SAVE, {"A1"}, {}, refused), IDCANCEL);
}

void ArchiveDialogTest::SaveAndChange(const std::string& id)
{
    Save(id);
    UsePractice(2);
}

void ArchiveDialogTest::Load(const std::string& path, const std::vector<std::string>& boxes,
                             int nPracticeManagement)
{
    const auto play = [&](DialogScript& script) {
        for (const std::string& text : boxes)
            script.AnswerBox(text, IDOK);
    };
    Play(ARCHIVE_OP_LOAD, {}, {path}, play, nPracticeManagement);
}

void ArchiveDialogTest::Merge(const std::string& id, const std::string& path, const Script& asked)
{
    Play(ARCHIVE_OP_MERGE, {id}, {path}, asked);
}

dbCPatient ArchiveDialogTest::StorePatient(const std::string& id, int nTimepoints, std::size_t nImageBytes)
{
    dbCPatient patient;
    patient.SetID(id.c_str());
    patient.SetFirstname("Zo\xeb");
    patient.SetLastname(("Lee " + id).c_str());
    patient.SetBirthdate(velCDate(2012, 3, 4));
    patient.SetGender(1);
    patient.SetRace(9);
    patient.SetNotes("first\r\nsecond");
    patient.SetModelNumber("M17");
    patient.SetKeywords("crowding");
    dbCAddress address;
    address.SetStreet("Quay 1");
    patient.SetAddress(0, address);
    patient.GetPhones().Add(dbCPhone("111", "Pager"));
    dbCPerson guardian;
    guardian.SetFirstname("Eve");
    guardian.SetLastname("Lee");
    patient.AddPersonInfo(dbPersonGuardian, guardian);
    for (int i = 0; i < nTimepoints; ++i)
    {
        dbCTimepoint timepoint;
        timepoint.SetNumber(id.c_str(), i);
        timepoint.SetName(("T" + std::to_string(i)).c_str());
        timepoint.SetDate(velCDate(2020, 1, 1 + i % 28));
        timepoint.SetImage(2, 0);
        timepoint.SetImage(4, 0);
        patSImageInfo info;
        info.strTitle = "lateral";
        timepoint.SetImageInfo(2, 0, info);
        EXPECT_EQ(patient.GetTimepoints().Add(&patient, timepoint, FALSE, FALSE), 0);

        const std::string base = timepoint.GetBaseFilename().GetString();
        const std::string contents = base + std::string(nImageBytes, static_cast<char>('a' + i % 26));
        // The last: the simulation's other name. Together one file of each way to find it.
        for (const char* pszRest : {".I2A", ".V2A", ".I2A.AVI", ".DF0", ".DF3", ".M", ".C01"})
            m_practice.WriteFile(m_working + "\\" + base + pszRest, contents + pszRest);
    }
    m_practice.WriteFile(m_working + "\\" + id + "$00$movie.avi", "extra");
    m_practice.WriteFile(m_working + "\\" + id + "grow.2dmorph", "");
    patient.Save();
    return patient;
}

bool ArchiveDialogTest::IsStored(const std::string& id)
{
    dbCPatient patient;
    return patient.Load(id.c_str()) != FALSE;
}

std::string Sum(const std::string& bytes)
{
    return std::to_string(bytes.size()) + " " + std::to_string(Crc(bytes));
}

std::map<std::string, std::string> ArchiveDialogTest::FilesIn(const std::string& folder) const
{
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(m_practice.Path(folder)))
    {
        const CString strName = CString(entry.path().filename().string().c_str()).MakeUpper();
        files[strName.GetString()] = m_practice.ReadFile(folder + "\\" + strName.GetString());
    }
    return files;
}

std::map<std::string, std::string> ArchiveDialogTest::WorkingFiles() const
{
    auto files = FilesIn(m_working);
    for (auto& [name, bytes] : files)
        bytes = Sum(bytes);
    return files;
}

std::vector<std::string> ArchiveDialogTest::NewEvents()
{
    const std::string since = " FROM auditEvents WHERE id > " + m_lastEvent;
    const auto texts = veltest::RunSql(m_database, "SELECT kind || ' ' || text" + since + " ORDER BY id");
    m_lastEvent = veltest::RunSql(m_database, "SELECT ifnull(max(id), 0) FROM auditEvents").at(0);
    return texts;
}

std::string Describe(dbCPatient patient, int nFormat)
{
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    patient.Serialize(archive, nFormat);
    archive.Close();
    return {reinterpret_cast<const char*>(file.GetBufferPtr()), static_cast<std::size_t>(file.GetLength())};
}

Dialog WaitForChoice(DialogScript& script)
{
    return script.WaitForDialog("Archive Patient Files");
}

void TakeOfferedName(DialogScript& script, int nFilter, const std::string& typed)
{
    constexpr int FileTypes = 0x470; // cmb1 of the common dialogs
    const Dialog dialog = script.WaitForDialog("Save archive file...");
    script.WaitUntil("a name is offered",
                     [&] { return dialog.Has(FileNameField) && !dialog.Item(FileNameField).Text().empty(); });
    script.Settle(dialog.Handle());
    if (nFilter != 0)
        dialog.Item(FileTypes).Choose(nFilter);
    if (!typed.empty())
        dialog.Item(FileNameField).SetText(typed);
    dialog.Press("Save"); // the list of files has the number of OK too
}

// Two practices and a host window for the archive dialog, and a user who works with them.
#pragma once

#include "app/exports/veldlgs.h"
#include "archive/res/archivedlgres.h"
#include "archive/res/archiveres.h"
#include "suite/patients/velpat.h"
#include "tests/support/childprocess.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

// The window that the archive dialog is opened over; notes what it is told about patients.
class HostWindow : public CWnd
{
public:
    BOOL Open();
    std::vector<std::pair<int, std::string>> m_told; // ARCHIVE_NOTIFY and GUID

protected:
    LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
};

// The archive dialog over the host window, for these patients and archives.
__int64 RunArchiveDialog(HostWindow& host, ARCHIVE_OP nOperation, const std::vector<std::string>& ids,
                         const std::vector<std::string>& given, const veltest::DialogScript::Script& script,
                         int nPracticeManagement = 0);

// Runs on the user interface thread; scripts run on their own. Archiving is allowed at the start of each
// test.
class ArchiveDialogTest : public testing::Test
{
protected:
    using Script = veltest::DialogScript::Script;

    ArchiveDialogTest();
    ~ArchiveDialogTest() override;

    // The next archives are packed and unpacked by one, two or seven threads, in turn.
    void ChangeWorkers();
    // Changes to the practice of that number (1 or 2) on the same computer; the archives' folder stays.
    void UsePractice(int nPractice);

    // The same; afterwards the window must be enabled and no lock of this process left.
    __int64 Run(ARCHIVE_OP nOperation, const std::vector<std::string>& ids,
                const std::vector<std::string>& given, const Script& script, int nPracticeManagement = 0);
    // The same, begun with the OK of the choice and ended as done; asked plays what comes between.
    void Play(ARCHIVE_OP nOperation, const std::vector<std::string>& ids,
              const std::vector<std::string>& given, const Script& asked, int nPracticeManagement = 0);
    // Saves several patients so, with the answer whether to remove them.
    void SaveSeveral(const std::vector<std::string>& ids, int nRemove, const Script& asked,
                     int nPracticeManagement = 0);
    // Saves one patient as a user does who takes the offered name; asked plays what comes then.
    void SaveWith(const std::string& id, const Script& asked, int nFilter = 0, int nPracticeManagement = 0);
    // Saves one patient to Archive(id, nFilter), keeping the patient.
    void Save(const std::string& id, int nFilter = 0);
    // Saves A1, which is refused with this box; nothing is begun, so that the dialog stays.
    void ExpectRefused(int nFilter, const std::string& text);
    // Saves the patient to ID.kaz and changes to the second practice.
    void SaveAndChange(const std::string& id);
    // Loads an archive without questions; expects these boxes, answered with OK.
    void Load(const std::string& path, const std::vector<std::string>& boxes = {},
              int nPracticeManagement = 0);

    // Merges an archive into the patient; asked plays what comes after the choice.
    void Merge(const std::string& id, const std::string& path, const Script& asked);

    // A stored patient with something of everything and the files of that many timepoints.
    dbCPatient StorePatient(const std::string& id, int nTimepoints = 2, std::size_t nImageBytes = 5000);
    bool IsStored(const std::string& id);
    std::string Archive(const std::string& id, int nFilter = 0) const
    {
        const char* const extensions[] = {".kaz", ".kar", ".PF"};
        return m_practice.Path("archive\\" + id + extensions[nFilter]);
    }
    // The files of a folder of the practice: bytes by names in upper case.
    std::map<std::string, std::string> FilesIn(const std::string& folder) const;
    // The same of the working folder, with sums for the bytes.
    std::map<std::string, std::string> WorkingFiles() const;
    // The texts of all audit events in UTF-8 with their kinds in front, oldest first, since the last call.
    std::vector<std::string> NewEvents();

    veltest::TemporaryPractice m_practice;
    dbCPatients m_patients;
    HostWindow m_host;
    bool m_bStaysLocked = false; // a patient of the next operation may
    int m_nQuit = -1;            // the exit code of a WM_QUIT that the dialog left behind
    std::string m_working;       // folder and database of the practice that is used
    std::string m_database;

private:
    std::string m_lastEvent; // its id
};

// All that is recorded of a patient, byte by byte.
std::string Describe(dbCPatient patient, int nFormat = 1);

// Stands for contents in comparisons.
std::string Sum(const std::string& bytes);

// In a script: the choice dialog.
veltest::Dialog WaitForChoice(veltest::DialogScript& script);
constexpr int FileNameField = 0x47C; // cmb13 of the common dialogs
// Takes the name that the save dialog offers, or types one; nFilter is the file type from 0.
void TakeOfferedName(veltest::DialogScript& script, int nFilter = 0, const std::string& typed = {});

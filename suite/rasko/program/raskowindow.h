// The transfer program's window: the tasks of this computer, and the transfer that is under way.
#pragma once

#include "suite/dialogs/mfcdialog.h"
#include "suite/patients/velpat.h"
#include "suite/rasko/program/raskores.h"
#include "suite/rasko/program/settings.h"

#include <memory>
#include <set>
#include <vector>

/// Lives as long as the program, hidden or not, on the main thread, which alone uses the database. The rows
/// of the table are what counts: whatever the window shows is read from them or written to them at once.
class CRaskoWindow : public mfcCDialog
{
public:
    CRaskoWindow() = default;

    BOOL Open();

    // For the automation object.
    void OpenOptions();
    CString RegisterPatient(const CString& patientGuid, __int64 bytes);
    CString SetRecipients(const CString& patientGuid, const CString& recipients, const CString& notes);
    void Quit();

    /// Registers the window's class. Before Open.
    static void RegisterWindowClass();

protected:
    BOOL OnInitDialog() override;
    void OnCancel() override; ///< hides: transfers go on
    void OnOK() override
    {
    }
    afx_msg void OnExit();
    afx_msg void OnStop();
    afx_msg void OnRetry();
    afx_msg void OnOptions();
    afx_msg void OnSelection(NMHDR* header, LRESULT* result);
    afx_msg void OnTimer(UINT_PTR timer);
    afx_msg void OnDestroy();
    afx_msg LRESULT OnWake(WPARAM, LPARAM);
    afx_msg LRESULT OnShowWindowCommand(WPARAM, LPARAM);
    afx_msg LRESULT OnOptionsCommand(WPARAM, LPARAM);
    afx_msg LRESULT OnProgress(WPARAM, LPARAM);
    afx_msg LRESULT OnDone(WPARAM, LPARAM);
    DECLARE_MESSAGE_MAP()

private:
    void ReadTasks();
    void StartNext();
    void Save(const dbSRaskoTask& task);
    dbSRaskoTask* Find(__int64 number);
    dbSRaskoTask* Selected();
    void ShowTask(const dbSRaskoTask& task);
    void ShowCurrent();
    void UpdateButtons();
    CString StateText(const dbSRaskoTask& task) const;
    rasko::Folders Folders(const rasko::Settings& settings) const;

    std::unique_ptr<rasko::Worker> m_worker;
    std::vector<dbSRaskoTask> m_tasks; ///< pending ones, and those that ended while the program ran
    std::set<__int64> m_waiting;       ///< tried and cut; again at the next wake or timer
    __int64 m_current = 0;             ///< the task under way; 0: none
    rasko::Progress m_progress;
};

/// Sent to the window by a second start of the program.
inline constexpr UINT RaskoMessageShow = WM_APP + 10;
inline constexpr UINT RaskoMessageOptions = WM_APP + 11; ///< posted: opens the options

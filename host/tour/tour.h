// Plays a user of the host: the menus, the dialogs behind them, and what they leave in the database.
#pragma once

#include "suite/patients/records/veltrixlogin.h"
#include "tests/support/dialogscript.h"

#include <afxwin.h>

#include <filesystem>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

/// A patient as a practice has it, for comparing practices.
struct tourSPatient
{
    std::string name;                         // "Given Family"
    std::string auditName;                    // as audit events begin
    std::string basics;                       // what every archive format carries
    std::string details;                      // what the database record carries beside it
    int timepoints = 0;
    std::map<std::string, std::string> files; // contents by name, images of all timepoints
};

/// What the steps of the tour use. Lives on the script's thread; what concerns the database runs on the user interface
/// thread through OnUi. Prints every line as it happens.
class tourCGuide
{
public:
    tourCGuide(veltest::DialogScript& script, HWND frame);

    veltest::DialogScript& GetScript()
    {
        return m_script;
    }
    HWND GetFrame() const
    {
        return m_frame;
    }

    /// Opens the menu by its access key and chooses the command by the keyboard, as a user would.
    void Choose(int command);
    /// Whether the command is greyed in the menu.
    bool IsGreyed(int command);

    /// Prints what was found; one that differs from what is expected fails the tour.
    void Expect(bool holds, const std::string& what);
    void ExpectText(const std::string& what, const std::string& expected, const std::string& found);
    /// The program's own account of the last call: the first part of the status bar.
    void ExpectResult(const std::string& expected);
    /// The events recorded since the last call, read from the database: none, or the one with this text.
    void ExpectNoEvent();
    void ExpectEvent(dbAuditKind kind, const std::string& text);
    /// The events recorded since the last call, in the order of recording.
    struct Event
    {
        dbAuditKind kind;
        std::string text;
    };
    void ExpectEvents(const std::vector<Event>& expected);
    /// Another practice is open now: what its audit log holds already is not new.
    void PracticeChanged();

    /// Returns when the images of the shown timepoint have been read.
    void WaitForThumbnails();
    /// Saves a picture under a running number.
    void Picture(HWND window, const std::string& name);
    /// One picture of every page.
    void PagePictures(const veltest::Dialog& sheet, const std::string& name);

    veltest::Control Child(int id);
    /// Runs on the user interface thread and returns when it is done.
    void OnUi(const std::function<void()>& work);
    void Print(const std::string& line);

    int GetFailures() const
    {
        return m_failures;
    }
    void BeginStep(const std::string& title);

    /// What the user entered for the tour's own patient and later steps use.
    std::string m_patientID;
    /// Where the archives are, and what was saved there by patient ID.
    std::filesystem::path m_archives;
    std::map<std::string, tourSPatient> m_saved;

private:
    struct MenuPlace
    {
        HMENU popup;
        int index;
        std::string title;
        std::string item;
    };
    MenuPlace FindCommand(int command) const;
    std::vector<dbSAuditEvent> NewEvents();
    std::string PictureName(const std::string& name);

    veltest::DialogScript& m_script;
    HWND m_frame;
    __int64 m_lastEvent = 0;
    int m_failures = 0;
    int m_step = 0;
    int m_pictures = 0;
};

/// One part of the tour. Later dialogs add their steps to the table in toursteps.cpp.
struct tourSStep
{
    const char* title;
    void (*play)(tourCGuide& guide);
};

std::span<const tourSStep> tourGetSteps();

/// Lets the guide's OnUi work reach the main window. Call on the user interface thread.
void tourAttach(HWND frame);

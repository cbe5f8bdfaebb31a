// A practice: the folder that holds the settings file, the patient database and the folder of patient files.
#pragma once

#include <afxwin.h>

#include <functional>

/// What is asked before anything is written into a folder.
enum class hostQuestion
{
    createPractice,
    createSettings,
};

/// Answers whether the folder may be written to.
using hostAsk = std::function<bool(hostQuestion question, const CString& folder)>;

/// The open practice of the process: its settings file is the one that all libraries read, its database the current
/// one. At most one exists with a practice open. User interface thread.
class hostCPractice
{
public:
    hostCPractice() = default;
    ~hostCPractice();
    hostCPractice(const hostCPractice&) = delete;
    hostCPractice& operator=(const hostCPractice&) = delete;

    /// Opens the practice in a folder. Whatever is missing is made only where `ask` allows it; what exists and
    /// cannot be read is never replaced. FALSE with a message for the user, which is empty when the user said no;
    /// no practice is open then.
    BOOL Open(LPCTSTR folder, const hostAsk& ask, CString& error);
    void Close();

    BOOL IsOpen() const
    {
        return !m_folder.IsEmpty();
    }

    /// The folder, without a backslash at its end; empty while none is open.
    const CString& GetFolder() const
    {
        return m_folder;
    }

    /// The last part of the folder, which the title shows.
    CString GetName() const;

    /// Makes a practice with that many invented patients. The folder may exist but must hold no database. The
    /// database appears when it is complete, so that a run that was cut short leaves none. FALSE with a message.
    static BOOL Create(LPCTSTR folder, int patients, CString& error);

    /// Where the sample practice of this user is made at first start.
    static CString GetSampleFolder();

    static CString GetSettingsPath(LPCTSTR folder);
    static CString GetDatabasePath(LPCTSTR folder);

    /// Patients of the sample practice.
    static constexpr int kSamplePatients = 60;

private:
    CString m_folder;
};

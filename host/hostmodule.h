// The dialog module VelDlgs.dll, loaded at run time.
#pragma once

#include "app/exports/veldlgs.h"

#include <span>

/// The module's exports, found by their decorated names. Owns the loaded library. User interface thread.
class hostCModule
{
public:
    hostCModule() = default;
    ~hostCModule();
    hostCModule(const hostCModule&) = delete;
    hostCModule& operator=(const hostCModule&) = delete;

    /// Loads the library; null takes the one beside the program. It reads its settings now, so the practice's
    /// settings file must have been set. FALSE with a message that says what is missing.
    BOOL Load(LPCTSTR path, CString& error);
    /// No pointer got from here may be used afterwards.
    void Unload();

    BOOL IsLoaded() const
    {
        return m_module != nullptr;
    }

    /// Where the loaded library lies.
    CString GetPath() const;

    struct Exports
    {
        decltype(&::NewPatientDlg) NewPatientDlg;
        decltype(&::NewPatientDlgWithData) NewPatientDlgWithData;
        decltype(&::ChangePatientDlg) ChangePatientDlg;
        decltype(&::NewTimepointDlg) NewTimepointDlg;
        decltype(&::DeleteDlg) DeleteDlg;
        decltype(&::ArchiveDlg) ArchiveDlg;
        decltype(&::RenameDlg) RenameDlg;
        decltype(&::EditKeywords) EditKeywords;
        decltype(&::ImportPatientDiagnostics) ImportPatientDiagnostics;
        decltype(&::SetArchivingAllowed) SetArchivingAllowed;
        decltype(&::nameMakeFullname) nameMakeFullname;
        decltype(&::GrayStringProc) GrayStringProc;
        const CVelIniSettingsContainer* settings;
    };

    /// All of them are there while the module is loaded.
    const Exports* operator->() const
    {
        return &m_exports;
    }

    /// One line of the table of exports.
    struct Name
    {
        const char* name;
        const char* decorated;
    };
    static std::span<const Name> GetNames();

private:
    HMODULE m_module = nullptr;
    Exports m_exports = {};
};

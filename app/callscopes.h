#pragma once

class dbCPatients;

/// What an exported function sets for the length of its dialog. Each scope puts it back when it ends, however
/// it ends. They live on the stack of the exported function, on the user interface thread, and own nothing.

/// The caller's patient list, in the application object; null afterwards.
class CPatientsScope
{
public:
    explicit CPatientsScope(dbCPatients* pPatients);
    ~CPatientsScope();
    CPatientsScope(const CPatientsScope&) = delete;
    CPatientsScope& operator=(const CPatientsScope&) = delete;
};

/// The practice-management flag, in the application object; afterwards what it was before.
class CPracticeManagementScope
{
public:
    explicit CPracticeManagementScope(int nPracticeManagement);
    ~CPracticeManagementScope();
    CPracticeManagementScope(const CPracticeManagementScope&) = delete;
    CPracticeManagementScope& operator=(const CPracticeManagementScope&) = delete;

private:
    const int m_nPrevious;
};

/// Tells the audit log that a new patient is being entered.
class CNewPatientScope
{
public:
    CNewPatientScope();
    ~CNewPatientScope();
    CNewPatientScope(const CNewPatientScope&) = delete;
    CNewPatientScope& operator=(const CNewPatientScope&) = delete;
};

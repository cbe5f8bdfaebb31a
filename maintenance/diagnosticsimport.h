#pragma once

/// Copies the diagnostic entries of a serialized patient file, in the present or the earlier format, to the
/// "Clinical" records of a stored patient; entries whose item the practice does not have are left out. All
/// records are made in one transaction: when one cannot be, none is, and the audit log tells why.
///
/// False when no patient has the GUID, or that cannot be asked; true otherwise, also for a file that cannot
/// be read. Shows nothing and throws nothing. User interface thread.
bool velImportDiagnostics(const char* pszPatientFile, const char* pszPatientGUID) noexcept;

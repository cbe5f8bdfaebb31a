#pragma once

// The live patient files in the working folder; inside the library only.
//
// The database is what counts; files follow it. Renaming and removing files is noted in the database within
// the transaction that calls for it and done when that is committed; what a crash or a file in use leaves
// undone is done when the database is next opened.

#include "suite/patients/records/patpatient.h"

#include <string>

/// Content of a patient's ".PF" file: the header line (family name, given name, ID, each at most 25
/// characters and ended by byte 1, then a line feed) and a line per timepoint.
std::string patPatientFileText(const patCPatient& patient);

/// Writes the ".PF" file into a folder, the working folder when null or empty; nothing when there is none.
/// The file there is replaced as a whole. Throws dbErrIO, dbErrDiskFull.
void patWritePatientFile(const patCPatient& patient, LPCTSTR pszFolder);

/// Writes the file beside its place now and puts it there when the open transaction is committed.
void patWritePatientFileAtCommit(const patCPatient& patient);

/// Renames a patient's files when the open transaction is committed. Throws dbErrIO, before anything is
/// changed, when a file is in use or a new name is taken.
void patRenameFilesAtCommit(LPCTSTR pszOldID, LPCTSTR pszNewID);

/// Throws dbErrIO when files of another patient that had this ID are still waiting to be renamed.
void patRequireNoPendingRename(LPCTSTR pszID);

/// Whether a file name belongs to a patient, by the naming of the suite's files; "belongs" is exact: A12's
/// files are not A1's. Names ending in ".2dmorph" can fit two IDs, the longer one owns them (`pbShared` is
/// set).
bool patIsPatientFile(const std::string& name, const std::string& id, bool* pbShared);

/// Finishes what was noted: renames, and removal of patients marked as deleted with their files. Throws
/// nothing.
void patFinishFileWork() noexcept;

/// Removes the patient files that processes of this computer were about to put in place when they ended. For the
/// opening of a database: nothing of this process may be under way.
void patRemoveAbandonedTexts() noexcept;

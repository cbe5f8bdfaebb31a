// Archives that are no zip: volume streams on disks and diskettes, and the earlier format.
#pragma once

#include "archive/operations/archivemanager.h"
#include "archive/files/filenames.h"

/// A file of an archive that a save to this path would replace; empty when there is none. Throws
/// dbCException*.
CString arcExistingArchive(LPCTSTR pszID, arcFormat nFormat, LPCTSTR pszArchivePath);

/// Work for the status thread: saves the patient as a volume stream or in the earlier format. The archive has
/// been read back and compared, and what it replaces has gone, when it answers 0; what a failed save has
/// written is removed again, except on diskettes. bConfirmed: the user has agreed to lose what the diskette
/// in the drive holds. The record is copied.
arcWork arcOtherSave(const dbCPatient& patient, arcFormat nFormat, LPCTSTR pszArchivePath, bool bConfirmed);

/// Work for the status thread: reads such an archive into the scratch folder.
arcWork arcOtherLoad(arc::ArchiveKind kind, LPCTSTR pszArchivePath, const std::string& scratchFolder);

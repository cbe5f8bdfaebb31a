// Patients as archives know them.
#pragma once

#include "archive/files/filesystem.h"
#include "suite/patients/records/dbpatient.h"

#include <afxwin.h>

#include <string>
#include <vector>

/// The full name as captions show it, in the user's order.
CString arcFullName(const patCPatient& patient);

/// An audit sentence of the string table (IDS_ARC_EVENT_...) for a patient.
CString arcEventText(UINT nText, const patCPatient& patient);

/// The names of a patient's files as its timepoints list them; whether they exist is not asked.
std::vector<std::string> arcListedFiles(const patCPatient& patient);

/// Full paths of what the list names and no archive pattern matches, as far as the working folder has it.
std::vector<std::string> arcFilesBesidePatterns(const patCPatient& patient);

/// Of the unpacked files those that an archive of this patient holds and that may become files of the working
/// folder.
std::vector<std::string> arcFilesToTake(const dbCPatient& archived, const std::vector<std::string>& names);

/// The patient that was unpacked into a folder: from its ".ACV" record, or from the ".PF" file of an archive
/// without one. False when there is none, more than one, or what is there contradicts itself or could not be
/// a patient here.
bool arcReadUnpackedRecord(arc::FileSystem& files, const std::string& folder, dbCPatient& patient);

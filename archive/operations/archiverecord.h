// Patients as archives know them.
#pragma once

#include "archive/files/filesystem.h"
#include "suite/patients/records/dbpatient.h"

#include <afxwin.h>

#include <optional>
#include <string>
#include <vector>

/// The full name as captions show it, in the user's order.
CString arcFullName(const patCPatient& patient);

/// An audit sentence of the string table (IDS_ARC_EVENT_...) for a patient.
CString arcEventText(UINT nText, const patCPatient& patient);

/// Names line by line for a message, at most ten of them.
CString arcNameList(const std::vector<std::string>& names);

/// The names of a patient's files as its timepoints list them; whether they exist is not asked.
std::vector<std::string> arcListedFiles(const patCPatient& patient);

/// Full paths of what the list names and no archive pattern matches, as far as the working folder has it;
/// nothing when one of the files cannot be asked.
std::optional<std::vector<std::string>> arcFilesBesidePatterns(const patCPatient& patient);

/// Whether the file is a patient file that a load would take for this ID. Any thread.
bool arcIsPatientFileOf(const std::string& path, const std::string& id);

/// Reads of a zipped archive what a load would read, and nothing else: true when it holds exactly one patient
/// file and one database record, both of this ID, and the record is that of the patient with this GUID and
/// could be loaded. Any thread.
bool arcTrialReading(const std::string& archivePath, const std::string& id, const std::string& guid);

/// The bytes of a patient's database record. Throws CException*.
std::string arcRecordBytes(dbCPatient& patient);

/// The patient that was unpacked into a folder: from its ".ACV" record, or from the ".PF" file of an archive
/// without one. False when there is none, more than one, or what is there contradicts itself or could not be
/// a patient here.
bool arcReadUnpackedRecord(arc::FileSystem& files, const std::string& folder, dbCPatient& patient);

#pragma once

// What the exchange of records is played with: the transfer program, a process of its own on this desktop,
// and the comparing of what left one practice with what came to another.

#include "tests/support/dialogscript.h"

#include <functional>
#include <map>
#include <string>

class dbCPatient;

namespace veltest
{

// Of the other program and the service: a busy machine is not a failure.
inline constexpr DWORD ProgramPatience = 60'000; // milliseconds

bool WaitFor(const std::function<bool()>& condition); // false when that patience is over

// Where this program and the transfer program are.
std::string ProgramFolder();

// The caller closes the process's handle.
HANDLE StartTransferProgram(const char* commandSwitch);

// Fills the transfer program's options when they come up, and confirms them.
void EnterTransferOptions(DialogScript& script, const std::string& user, const std::string& password,
                          const std::string& service, const std::string& folder);

// Ends the running transfer program, if there is one, and waits for its end.
void EndTransferProgram();

// Gives a patient everything that a record has a place for besides name, dates and images, with texts that markup
// and code page make hard, and stores it.
void AddCarried(dbCPatient& patient);

// All fields of a stored patient that a shared record carries, line by line, without the patient's ID.
// Doctors by their names: a practice that has one of the name keeps its own.
std::string CarriedFields(const dbCPatient& patient);

// The contents of the files in the open practice's working folder that a shared record takes, by what follows
// the ID in their names, in upper case.
std::map<std::string, std::string> CarriedFiles(const std::string& id);

} // namespace veltest

// The suite's transfer program, as far as a host has to do with it.
#pragma once

#include <afxwin.h>

/// Where programs that this process starts find the practice: the settings file of the open one, nullptr for
/// none. The dialog module starts the transfer program.
void hostTellPractice(LPCTSTR settings);

/// Ends a running transfer program, which works for the practice that it was started with. A transfer under
/// way goes on when the program is started for that practice again. Waits a few seconds at most.
void hostEndTransferProgram();

// The commands of the main window in one table: the menu, the toolbar and the tour all go by it.
// Plain C++: ids only, no windows.
#pragma once

#include <cstddef>
#include <span>

// What must be there for a command to be offered.
enum class hostNeed
{
    nothing,    // offered always
    practice,   // an open practice and the dialog module
    patient,    // exactly one selected patient
    patients,   // at least one selected patient
};

// The pictures of the toolbar; none for commands that stand in the menu alone.
enum class hostIcon
{
    none,
    newPatient,
    newFromStudy,
    changePatient,
    renamePatient,
    deletePatient,
    newTimepoint,
    saveArchive,
    loadArchive,
    keywords,
    auditLog,
};

struct hostSCommand
{
    int id;
    // The exported function of VelDlgs.dll that the command calls, null for the host's own commands.
    const char* exportName;
    hostNeed need;
    hostIcon icon;
    // A gap before the command's button.
    bool startsGroup;
};

// All commands, in the order of the menu.
std::span<const hostSCommand> hostGetCommands();

// Null for an id that is no command.
const hostSCommand* hostFindCommand(int id);

// Whether the command can be used now.
bool hostIsOffered(const hostSCommand& command, bool practiceOpen, std::size_t selectedPatients);

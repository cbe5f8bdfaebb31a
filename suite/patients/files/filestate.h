#pragma once

#include "suite/patients/store/patdefs.h"

#include <string>
#include <vector>

/// A file as it was when it was listed.
struct patSFileState
{
    std::string name; ///< without folder
    __int64 nSize = 0;
    __int64 nWritten = 0; ///< time of the last write, 100 ns since 1601

    bool operator==(const patSFileState&) const = default;
};
using patFileStates = std::vector<patSFileState>;

/// Which of a patient's files are meant.
enum class patFileSet
{
    Patient,         ///< all
    Timepoint,       ///< all of a timepoint
    TimepointImages, ///< images of a timepoint with what belongs to them
};

/// The patient's files in the working folder; empty when there is no such folder set. Files that fit the IDs
/// of several patients are left to the one with the longest. Throws dbErrIO when the folder cannot be read.
VELPAT_API patFileStates patListFiles(LPCTSTR pszID, patFileSet set = patFileSet::Patient, int nTimepoint = -1);

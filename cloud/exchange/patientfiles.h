// The files of a patient in the working folder, by timepoint and image.
#pragma once

#include "cloud/exchange/filechoice.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace cloud
{
struct ImageFiles
{
    std::string image; ///< empty: only further files are there
    std::string companion;
    std::vector<std::pair<std::string, FileKind>>
        further; ///< 3D files first, then other documents, each by name
};

struct TimepointFiles
{
    std::vector<std::pair<std::string, FileKind>> files; ///< 3D files by name, then the measurements
    std::map<std::pair<int, char>, ImageFiles> images;   ///< by group and type
};

/// Sorts a folder's names (any order, other patients' among them) into the timepoints 0 to 99 of the patient.
/// The image of slot 4/'0' may have its other name. Takes time in proportion to the names.
std::map<int, TimepointFiles> GroupPatientFiles(const std::vector<std::string>& names, const std::string& id);
} // namespace cloud

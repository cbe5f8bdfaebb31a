#pragma once

#include "tests/patients/testdatabase.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

/// The files of a folder with their contents.
inline std::map<std::string, std::string> FilesOf(const std::string& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
    {
        std::ifstream file(entry.path(), std::ios::binary);
        files[entry.path().filename().string()] = {std::istreambuf_iterator<char>(file), {}};
    }
    return files;
}

/// Everything that a practice holds, by the patients' IDs and the names of the files: every field of every
/// patient, every file of the working folder, each as a number that stands for its bytes.
using PracticeState = std::map<std::string, size_t>;

/// The state of the open database and of its working folder.
inline PracticeState StateOf(const std::string& folder)
{
    PracticeState state;
    const std::hash<std::string> numberOf;
    dbTList<dbSPatientListRow> rows;
    dbCPatients().GetPage(dbSearchName, "", nullptr, 1000, rows);
    for (const dbSPatientListRow& row : rows)
        state[row.strID.GetString()] = numberOf(Image(Loaded(row.strGUID)));
    for (const auto& [name, content] : FilesOf(folder))
        state["working/" + name] = numberOf(content);
    return state;
}

#pragma once

#include "tests/patients/testdatabase.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

/// Everything that a practice holds: every field of every patient, every file of the working folder.
struct PracticeState
{
    std::map<std::string, std::string> patients; ///< images by ID
    std::map<std::string, std::string> files;    ///< contents by name

    bool operator==(const PracticeState&) const = default;
};

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

/// The state of the open database and of its working folder.
inline PracticeState StateOf(const std::string& folder)
{
    PracticeState state;
    dbTList<dbSPatientListRow> rows;
    dbCPatients().GetPage(dbSearchName, "", nullptr, 1000, rows);
    for (const dbSPatientListRow& row : rows)
    {
        dbCPatient patient;
        EXPECT_TRUE(patient.Load(row.strGUID));
        state.patients[row.strID.GetString()] = Image(patient);
    }
    state.files = FilesOf(folder);
    return state;
}

/// What a failed comparison shows.
inline void PrintTo(const PracticeState& state, std::ostream* out)
{
    for (const auto& [id, image] : state.patients)
        *out << "patient " << id << " (" << std::hash<std::string>()(image) << ")\n";
    for (const auto& [name, content] : state.files)
        *out << "  " << name << " (" << std::hash<std::string>()(content) << ")\n";
}

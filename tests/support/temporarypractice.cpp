#include "tests/support/temporarypractice.h"

#include <windows.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace veltest
{

namespace
{

constexpr const char* iniVariable = "VELTRIX_INI";

void SetVariable(const std::string& value)
{
    // The C runtime keeps a copy of its own; this sets both.
    _putenv_s(iniVariable, value.c_str());
    SetEnvironmentVariableA(iniVariable, value.empty() ? nullptr : value.c_str());
}

void RemoveTree(const std::filesystem::path& folder)
{
    std::error_code error;
    for (auto entry = std::filesystem::recursive_directory_iterator(folder, error);
         entry != std::filesystem::recursive_directory_iterator(); entry.increment(error))
        SetFileAttributesA(entry->path().string().c_str(), FILE_ATTRIBUTE_NORMAL);
    std::filesystem::remove_all(folder, error);
}

} // namespace

TemporaryPractice::TemporaryPractice()
{
    static std::atomic<int> counter = 0;
    std::array<char, MAX_PATH> temp = {};
    GetTempPathA(static_cast<DWORD>(temp.size()), temp.data());
    m_folder = std::filesystem::path(temp.data()) /
               ("veltest-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++counter));
    RemoveTree(m_folder);
    for (const char* part : {"working", "sys", "archive", "temp"})
        std::filesystem::create_directories(m_folder / part);
    if (const char* const previous = std::getenv(iniVariable))
        m_previousIni = previous;
    SetVariable(IniFile());
    Set("Environment", "WORKING", Working());
    Set("Environment", "SYS", Path("sys\\"));
    Set("Environment", "archive", Path("archive\\"));
}

TemporaryPractice::~TemporaryPractice()
{
    SetVariable(m_previousIni);
    RemoveTree(m_folder);
}

void TemporaryPractice::Set(const std::string& section, const std::string& key,
                            const std::string& value) const
{
    if (!WritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(), IniFile().c_str()))
        throw std::runtime_error("the setting " + key + " could not be written");
}

std::string TemporaryPractice::Get(const std::string& section, const std::string& key) const
{
    std::array<char, 4096> value = {};
    GetPrivateProfileStringA(section.c_str(), key.c_str(), "", value.data(), static_cast<DWORD>(value.size()),
                             IniFile().c_str());
    return value.data();
}

void TemporaryPractice::WriteFile(const std::string& relative, const std::string& bytes) const
{
    std::filesystem::create_directories((m_folder / relative).parent_path());
    std::ofstream file(m_folder / relative, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
        throw std::runtime_error("could not write " + relative);
}

std::string TemporaryPractice::ReadFile(const std::string& relative) const
{
    std::ifstream file(m_folder / relative, std::ios::binary);
    if (!file)
        throw std::runtime_error("could not read " + relative);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace veltest

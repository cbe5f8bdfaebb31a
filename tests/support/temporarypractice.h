#pragma once

#include <filesystem>
#include <string>

namespace veltest
{

// A folder of its own for one test with a settings file that this process and its children use (VELTRIX_INI).
// The folder holds "working", "sys", "archive" and "temp", named in the settings as a practice's are.
// Everything is removed at the end, and the settings variable restored.
class TemporaryPractice
{
public:
    TemporaryPractice();
    ~TemporaryPractice();
    TemporaryPractice(const TemporaryPractice&) = delete;
    TemporaryPractice& operator=(const TemporaryPractice&) = delete;

    const std::filesystem::path& Folder() const
    {
        return m_folder;
    }
    std::string IniFile() const
    {
        return (m_folder / "veltrix.ini").string();
    }
    std::string Path(const std::string& relative) const
    {
        return (m_folder / relative).string();
    }
    std::string Working() const
    {
        return Path("working\\");
    }

    void Set(const std::string& section, const std::string& key, const std::string& value) const;
    std::string Get(const std::string& section, const std::string& key) const; // empty when not set

    // Whole files by their path below the folder; bytes as they are. Throw std::runtime_error on failure.
    void WriteFile(const std::string& relative, const std::string& bytes) const;
    std::string ReadFile(const std::string& relative) const;

private:
    std::filesystem::path m_folder;
    std::string m_previousIni;
};

} // namespace veltest

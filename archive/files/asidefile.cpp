#include "archive/files/asidefile.h"

namespace arc
{
AsideFile::AsideFile(FileSystem& files) : m_files(files)
{
}

bool AsideFile::MoveAway(const std::string& path)
{
    m_aside.clear();
    m_path = path;
    const auto existing = m_files.Query(path);
    if (existing.IsAbsent())
    {
        return true;
    }
    if (!existing || existing->IsFolder() || (existing->attributes & attribute::ReadOnly) != 0)
    {
        return false;
    }
    constexpr int attempts = 1000;
    for (int number = 1; number < attempts; ++number)
    {
        const std::string aside = path + ".previous" + (number == 1 ? "" : std::to_string(number));
        if (m_files.Query(aside).IsAbsent())
        {
            // Should somebody take the name meanwhile, the move fails and nothing is lost.
            const bool moved = m_files.Move(path, aside);
            m_aside = moved ? aside : std::string();
            return moved;
        }
    }
    return false;
}

void AsideFile::Discard()
{
    if (!m_aside.empty())
    {
        m_files.RemoveFile(m_aside);
        m_aside.clear();
    }
}

bool AsideFile::PutBack()
{
    if (!m_aside.empty() && m_files.Move(m_aside, m_path))
    {
        m_aside.clear();
    }
    return m_aside.empty();
}

const std::string& AsideFile::Path() const
{
    return m_aside;
}
} // namespace arc

#include "tests/archive/memoryfilesystem.h"

#include "archive/files/bufferedfile.h"
#include "archive/files/filenames.h"

#include <algorithm>
#include <cstring>

namespace attribute = arc::attribute;

static std::uint64_t Clusters(std::uint64_t bytes, const arc::DiskSpace& space)
{
    return (bytes + space.bytesPerCluster - 1) / space.bytesPerCluster;
}

class MemoryFileSystem::MemoryFile : public arc::RawFile
{
public:
    // Made under the lock of Open.
    MemoryFile(MemoryFileSystem& files, std::string key, const std::shared_ptr<Node>& node, bool alone)
        : m_files(files), m_key(std::move(key))
    {
        ++node->readers;
        node->alone |= alone;
        m_node = {node.get(), [&files, node, alone](Node*) {
                      const std::lock_guard lock(files.m_mutex);
                      --node->readers;
                      node->alone &= !alone;
                  }};
    }

    std::optional<std::size_t> ReadAt(std::uint64_t position, void* buffer, std::size_t bytes) override
    {
        const std::lock_guard lock(m_files.m_mutex);
        if (m_files.Fails())
            return std::nullopt;
        return m_node->bytes.copy(static_cast<char*>(buffer), bytes,
                                  std::min<std::size_t>(position, m_node->bytes.size()));
    }

    bool WriteAt(std::uint64_t position, const void* data, std::size_t bytes) override
    {
        const std::lock_guard lock(m_files.m_mutex);
        std::string& to = m_node->bytes;
        const std::size_t end = std::max<std::size_t>(position + bytes, to.size());
        const arc::DiskSpace space = m_files.SpaceOf(m_key[0]);
        if (m_files.Fails() || Clusters(end, space) - Clusters(to.size(), space) > space.freeClusters)
            return false;
        to.resize(end);
        std::memcpy(to.data() + position, data, bytes);
        ++m_node->stamp;
        m_node->onMedium = false;
        if (m_files.m_bGarbles && bytes > 0)
            to[end - 1] ^= 1;
        return true;
    }

    std::optional<std::uint64_t> Size() override
    {
        const std::lock_guard lock(m_files.m_mutex);
        const std::uint64_t size = m_node->bytes.size();
        if (m_files.m_sized)
            m_files.m_sized(m_key);
        return m_files.Fails() ? std::nullopt : std::optional(size);
    }

    bool FlushToDisk() override
    {
        const std::lock_guard lock(m_files.m_mutex);
        m_node->onMedium = !m_files.Fails();
        return m_node->onMedium;
    }

    bool SetWritten(const arc::LocalTime& time) override
    {
        const std::lock_guard lock(m_files.m_mutex);
        m_node->written = time;
        return !m_files.Fails();
    }

    bool Close() override
    {
        const std::lock_guard lock(m_files.m_mutex);
        m_node.reset();
        return !m_files.Fails();
    }

private:
    MemoryFileSystem& m_files;
    std::string m_key;
    std::shared_ptr<Node> m_node; // in use until it is let go
};

MemoryFileSystem::MemoryFileSystem()
{
    AddDrive('C');
}

void MemoryFileSystem::AddDrive(char letter, std::uint64_t clusters, std::uint64_t bytesPerCluster)
{
    m_drives[letter] = {bytesPerCluster, clusters, clusters};
    Make(std::string(1, letter) + ":\\", attribute::Folder);
}

// "C:\\a\\b", without a separator at the end but that of a drive's root; empty when it is too long.
std::string MemoryFileSystem::Full(const std::string& path)
{
    const bool drive = arc::HasDriveLetter(path);
    std::string full = drive ? arc::FoldCase(path.substr(0, 2)) : "C:";
    for (std::size_t start = drive ? 2 : 0, end = 0; start <= path.size(); start = end + 1)
    {
        end = std::min(path.find_first_of("\\/", start), path.size());
        const std::string part = path.substr(start, end - start);
        if (part == "..")
            full.resize(std::min(full.rfind('\\'), full.size()));
        else if (!part.empty() && part != ".")
            full += "\\" + part;
    }
    full += full.size() == 2 ? "\\" : "";
    return full.size() > 259 ? std::string() : full;
}

std::string MemoryFileSystem::Key(const std::string& path)
{
    const std::string full = Full(path);
    return arc::FoldCase(full.size() == 3 ? full.substr(0, 2) : full);
}

MemoryFileSystem::Node& MemoryFileSystem::Make(const std::string& path, std::uint32_t attributes)
{
    auto node = std::make_shared<Node>();
    node->name = arc::FileNameOf(Full(path));
    node->attributes = attributes;
    return *(m_nodes[Key(path)] = std::move(node));
}

void MemoryFileSystem::Put(const std::string& path, const std::string& bytes, std::uint32_t attributes)
{
    const std::string full = Full(path);
    for (std::size_t end = full.find('\\', 3); end != std::string::npos; end = full.find('\\', end + 1))
    {
        if (!Exists(full.substr(0, end)))
            Make(full.substr(0, end), attribute::Folder);
    }
    Make(path, attributes).bytes = bytes;
}

void MemoryFileSystem::Clear(const std::string& folder)
{
    for (const std::string& path : Tree(folder))
        m_nodes.erase(path);
}

MemoryFileSystem::Node* MemoryFileSystem::Find(const std::string& path) const
{
    const auto found = m_nodes.find(Key(path));
    return found == m_nodes.end() ? nullptr : found->second.get();
}

bool MemoryFileSystem::Exists(const std::string& path) const
{
    return Find(path) != nullptr;
}

std::string MemoryFileSystem::Bytes(const std::string& path) const
{
    const Node* node = Find(path);
    return node ? node->bytes : std::string();
}

std::vector<std::string> MemoryFileSystem::Tree(const std::string& folder) const
{
    std::vector<std::string> tree;
    const std::string begin = Key(folder) + "\\";
    for (const auto& [key, node] : m_nodes)
    {
        if (key.starts_with(begin) && !node->Info().IsFolder())
            tree.push_back(key);
    }
    return tree;
}

void MemoryFileSystem::FailFrom(int call, int times)
{
    m_calls = 0;
    m_failFrom = call;
    m_failTimes = times;
}

bool MemoryFileSystem::Fails()
{
    ++m_calls;
    return m_failFrom != 0 && m_calls >= m_failFrom &&
           (m_failTimes == 0 || m_calls < m_failFrom + m_failTimes);
}

arc::DiskSpace MemoryFileSystem::SpaceOf(char drive) const
{
    arc::DiskSpace space = m_drives.at(drive);
    for (const auto& [key, node] : m_nodes)
    {
        if (key[0] == drive)
            space.freeClusters -= Clusters(node->bytes.size(), space);
    }
    return space;
}

std::unique_ptr<arc::File> MemoryFileSystem::Open(const std::string& path, arc::Access access)
{
    const std::lock_guard lock(m_mutex);
    if (m_opening)
        m_opening();
    const std::string key = Key(path);
    if (Fails() || key.empty())
        return nullptr;
    const bool alone = !arc::SharesReading(access);
    const bool creates = access == arc::Access::Replace || access == arc::Access::CreateNew;
    if (const Node* node = Find(path))
    {
        const bool isProtected = (node->attributes & attribute::ReadOnly) != 0;
        const bool isHidden = (node->attributes & (attribute::Hidden | attribute::System)) != 0;
        if (access == arc::Access::CreateNew || node->Info().IsFolder() || node->alone ||
            (alone && node->readers > 0) || (!arc::OnlyReads(access) && isProtected) ||
            (access == arc::Access::Replace && isHidden))
            return nullptr;
    }
    else
    {
        const Node* parent = Find(std::string(arc::FolderOf(Full(path))));
        if (!creates || !parent || !parent->Info().IsFolder())
            return nullptr;
        Make(path, attribute::Archive);
    }
    if (creates)
        Find(path)->bytes.clear();
    return std::make_unique<arc::BufferedFile>(
        std::make_unique<MemoryFile>(*this, key, m_nodes.at(key), alone));
}

arc::FileQuery MemoryFileSystem::Query(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    if (Fails())
        return arc::FileQuery::Unknown();
    const Node* node = Find(path);
    return node ? arc::FileQuery(node->Info()) : arc::FileQuery::Absent();
}

bool MemoryFileSystem::List(const std::string& folder, const std::string& wildcard,
                            std::vector<arc::FolderEntry>& entries)
{
    const std::lock_guard lock(m_mutex);
    const std::string begin = Key(folder) + "\\";
    if (Fails() || !Exists(folder))
        return false;
    for (const auto& [key, node] : m_nodes)
    {
        const bool all = wildcard == "*.*"; // matches names without a dot too
        if (key.starts_with(begin) && key.find('\\', begin.size()) == std::string::npos &&
            (all || arc::MatchesWildcard(node->name, wildcard)))
            entries.push_back({node->name, node->Info()});
    }
    return true;
}

bool MemoryFileSystem::CreateFolder(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    const bool made = !Fails() && !Exists(path) && Exists(std::string(arc::FolderOf(Full(path))));
    if (made)
        Make(path, attribute::Folder);
    return made;
}

bool MemoryFileSystem::RemoveFolder(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    const std::string key = Key(path);
    const bool holds = std::any_of(m_nodes.begin(), m_nodes.end(),
                                   [&](const auto& node) { return node.first.starts_with(key + "\\"); });
    const Node* node = Find(path);
    // A link goes by itself.
    return !Fails() && node && node->Info().IsFolder() && (node->Info().IsReparsePoint() || !holds) &&
           m_nodes.erase(key) > 0;
}

bool MemoryFileSystem::RemoveFile(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    const Node* node = Find(path);
    return !Fails() && node && !node->Info().IsFolder() && node->readers == 0 &&
           (node->attributes & attribute::ReadOnly) == 0 && m_nodes.erase(Key(path)) > 0;
}

bool MemoryFileSystem::Move(const std::string& from, const std::string& to)
{
    const std::lock_guard lock(m_mutex);
    if (Fails() || !Exists(from) || Exists(to))
        return false;
    auto node = m_nodes.extract(Key(from));
    node.key() = Key(to);
    node.mapped()->name = arc::FileNameOf(Full(to));
    m_nodes.insert(std::move(node));
    return true;
}

bool MemoryFileSystem::SetAttributes(const std::string& path, std::uint32_t attributes)
{
    const std::lock_guard lock(m_mutex);
    Node* node = Find(path);
    if (Fails() || !node)
        return false;
    node->attributes = attributes;
    return true;
}

std::string MemoryFileSystem::Absolute(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    return Fails() ? std::string() : Full(path);
}

std::string MemoryFileSystem::Identity(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    return Fails() || !Exists(path) ? std::string() : Key(path);
}

std::optional<arc::DiskSpace> MemoryFileSystem::Space(const std::string& folder)
{
    const std::lock_guard lock(m_mutex);
    const char drive = Full(folder)[0];
    return Fails() || !m_drives.contains(drive) ? std::nullopt : std::optional(SpaceOf(drive));
}

#include "tests/archive/memoryfilesystem.h"

#include "archive/files/bufferedfile.h"
#include "archive/files/filenames.h"

#include <algorithm>
#include <cstring>

namespace
{
arc::FileInfo Info(const MemoryFileSystem::Node& node)
{
    return {node.bytes.size(), node.attributes, node.written, node.stamp};
}
} // namespace

class MemoryFileSystem::MemoryFile : public arc::RawFile
{
public:
    MemoryFile(MemoryFileSystem& files, std::string key, std::shared_ptr<Node> node, bool alone)
        : m_files(files), m_key(std::move(key)), m_node(std::move(node)), m_alone(alone)
    {
        ++m_node->readers; // under the lock of Open
        m_node->alone |= alone;
    }
    ~MemoryFile() override
    {
        Release();
    }

    std::optional<std::size_t> ReadAt(std::uint64_t position, void* buffer, std::size_t bytes) override
    {
        const std::lock_guard lock(m_files.m_mutex);
        if (m_files.Fails())
        {
            return std::nullopt;
        }
        const std::string& from = m_node->bytes;
        const std::size_t start = std::min<std::size_t>(position, from.size());
        const std::size_t got = std::min(bytes, from.size() - start);
        std::memcpy(buffer, from.data() + start, got);
        return got;
    }

    bool WriteAt(std::uint64_t position, const void* data, std::size_t bytes) override
    {
        const std::lock_guard lock(m_files.m_mutex);
        std::string& to = m_node->bytes;
        const std::size_t end = position + bytes;
        if (m_files.Fails() || (end > to.size() && !m_files.HasRoom(m_key, to.size(), end)))
        {
            return false;
        }
        if (end > to.size())
        {
            to.resize(end);
        }
        std::memcpy(to.data() + position, data, bytes);
        ++m_node->stamp;
        m_node->onMedium = false;
        if (m_files.m_bGarbles && bytes > 0)
        {
            to[end - 1] ^= 1;
        }
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
        Release();
        return !m_files.Fails();
    }

private:
    void Release()
    {
        const std::lock_guard lock(m_files.m_mutex);
        if (m_node)
        {
            --m_node->readers;
            if (m_alone)
            {
                m_node->alone = false;
            }
            m_node.reset();
        }
    }

    MemoryFileSystem& m_files;
    std::string m_key;
    std::shared_ptr<Node> m_node;
    bool m_alone;
};

MemoryFileSystem::MemoryFileSystem()
{
    AddDrive('C');
}

void MemoryFileSystem::AddDrive(char letter, std::uint64_t clusters, std::uint64_t bytesPerCluster)
{
    m_drives[letter] = {clusters, bytesPerCluster};
    auto root = std::make_shared<Node>();
    root->folder = true;
    root->attributes = arc::attribute::Folder;
    m_nodes[std::string(1, letter) + ":"] = root;
}

std::string MemoryFileSystem::Key(const std::string& path)
{
    std::string full = Full(path);
    if (full.size() == 3)
    {
        full.pop_back();
    }
    return arc::FoldCase(full);
}

void MemoryFileSystem::Put(const std::string& path, const std::string& bytes, std::uint32_t attributes)
{
    const std::string full = Full(path);
    for (std::size_t end = full.find('\\', 3); end != std::string::npos; end = full.find('\\', end + 1))
    {
        if (!Exists(full.substr(0, end)))
        {
            CreateFolder(full.substr(0, end));
        }
    }
    auto node = std::make_shared<Node>();
    node->name = arc::FileNameOf(full);
    node->bytes = bytes;
    node->attributes = attributes;
    m_nodes[Key(full)] = node;
}

void MemoryFileSystem::Remove(const std::string& path)
{
    m_nodes.erase(Key(path));
}

void MemoryFileSystem::Clear(const std::string& folder)
{
    for (const std::string& path : Tree(folder))
        m_nodes.erase(path);
}

bool MemoryFileSystem::Exists(const std::string& path) const
{
    return m_nodes.contains(Key(path));
}

std::string MemoryFileSystem::Bytes(const std::string& path) const
{
    const auto found = m_nodes.find(Key(path));
    return found == m_nodes.end() ? std::string() : found->second->bytes;
}

MemoryFileSystem::Node* MemoryFileSystem::Find(const std::string& path)
{
    const auto found = m_nodes.find(Key(path));
    return found == m_nodes.end() ? nullptr : found->second.get();
}

std::vector<std::string> MemoryFileSystem::Tree(const std::string& folder) const
{
    std::vector<std::string> tree;
    const std::string begin = Key(folder) + "\\";
    for (const auto& [key, node] : m_nodes)
    {
        if (key.starts_with(begin) && !node->folder)
        {
            tree.push_back(key);
        }
    }
    return tree;
}

void MemoryFileSystem::FailFrom(int call, int times)
{
    m_calls = 0;
    m_failFrom = call;
    m_failTimes = times;
}

int MemoryFileSystem::Calls() const
{
    return m_calls;
}

bool MemoryFileSystem::Fails()
{
    ++m_calls;
    return m_failFrom != 0 && m_calls >= m_failFrom &&
           (m_failTimes == 0 || m_calls < m_failFrom + m_failTimes);
}

std::uint64_t MemoryFileSystem::UsedClusters(char drive) const
{
    const std::uint64_t cluster = m_drives.at(drive).bytesPerCluster;
    std::uint64_t used = 0;
    for (const auto& [key, node] : m_nodes)
    {
        used += key[0] == drive ? (node->bytes.size() + cluster - 1) / cluster : 0;
    }
    return used;
}

bool MemoryFileSystem::HasRoom(const std::string& key, std::uint64_t oldSize, std::uint64_t newSize) const
{
    const Drive& drive = m_drives.at(key[0]);
    const auto clusters = [&](std::uint64_t bytes) {
        return (bytes + drive.bytesPerCluster - 1) / drive.bytesPerCluster;
    };
    return UsedClusters(key[0]) - clusters(oldSize) + clusters(newSize) <= drive.clusters;
}

std::unique_ptr<arc::File> MemoryFileSystem::Open(const std::string& path, arc::Access access)
{
    const std::lock_guard lock(m_mutex);
    if (m_opening)
    {
        m_opening();
    }
    const std::string key = Key(path);
    if (Fails() || key.empty())
    {
        return nullptr;
    }
    auto found = m_nodes.find(key);
    const bool writes = !arc::OnlyReads(access);
    const bool alone = !arc::SharesReading(access);
    if (found != m_nodes.end())
    {
        Node& node = *found->second;
        const bool protectedFile = (node.attributes & arc::attribute::ReadOnly) != 0;
        const bool hidden = (node.attributes & (arc::attribute::Hidden | arc::attribute::System)) != 0;
        if (access == arc::Access::CreateNew || node.folder || node.alone || (alone && node.readers > 0) ||
            (writes && protectedFile) || (access == arc::Access::Replace && hidden))
        {
            return nullptr;
        }
    }
    if (access == arc::Access::Replace || access == arc::Access::CreateNew)
    {
        const auto parent = m_nodes.find(Key(std::string(arc::FolderOf(Full(path)))));
        if (parent == m_nodes.end() || !parent->second->folder)
        {
            return nullptr;
        }
        if (found == m_nodes.end())
        {
            Put(path, {});
            found = m_nodes.find(key);
        }
        found->second->bytes.clear();
    }
    else if (found == m_nodes.end())
    {
        return nullptr;
    }
    return std::make_unique<arc::BufferedFile>(
        std::make_unique<MemoryFile>(*this, key, found->second, alone));
}

arc::FileQuery MemoryFileSystem::Query(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    if (Fails())
    {
        return arc::FileQuery::Unknown();
    }
    const Node* node = Find(path);
    return node ? arc::FileQuery(Info(*node)) : arc::FileQuery::Absent();
}

bool MemoryFileSystem::List(const std::string& folder, const std::string& wildcard,
                            std::vector<arc::FolderEntry>& entries)
{
    const std::lock_guard lock(m_mutex);
    const std::string begin = Key(folder) + "\\";
    if (Fails() || !m_nodes.contains(Key(folder)))
    {
        return false;
    }
    for (const auto& [key, node] : m_nodes)
    {
        const bool all = wildcard == "*.*"; // matches names without a dot too
        if (key.starts_with(begin) && key.find('\\', begin.size()) == std::string::npos &&
            (all || arc::MatchesWildcard(node->name, wildcard)))
        {
            entries.push_back({node->name, Info(*node)});
        }
    }
    return true;
}

bool MemoryFileSystem::CreateFolder(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    const std::string full = Full(path);
    if (Fails() || Exists(full) || !Exists(std::string(arc::FolderOf(full))))
    {
        return false;
    }
    auto node = std::make_shared<Node>();
    node->name = arc::FileNameOf(full);
    node->folder = true;
    node->attributes = arc::attribute::Folder;
    m_nodes[Key(full)] = node;
    return true;
}

bool MemoryFileSystem::RemoveFolder(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    const std::string key = Key(path);
    const bool holds = std::any_of(m_nodes.begin(), m_nodes.end(),
                                   [&](const auto& node) { return node.first.starts_with(key + "\\"); });
    const Node* node = Find(path);
    // A link goes by itself.
    const bool isLink = node && (node->attributes & arc::attribute::Reparse) != 0;
    return !Fails() && node && node->folder && (isLink || !holds) && m_nodes.erase(key) > 0;
}

bool MemoryFileSystem::RemoveFile(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    const Node* node = Find(path);
    return !Fails() && node && !node->folder && node->readers == 0 &&
           (node->attributes & arc::attribute::ReadOnly) == 0 && m_nodes.erase(Key(path)) > 0;
}

bool MemoryFileSystem::Move(const std::string& from, const std::string& to)
{
    const std::lock_guard lock(m_mutex);
    if (Fails() || !Exists(from) || Exists(to))
    {
        return false;
    }
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
    {
        return false;
    }
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

std::string MemoryFileSystem::Full(const std::string& path)
{
    std::string rest = path;
    std::replace(rest.begin(), rest.end(), '/', '\\');
    std::string full = "C:";
    if (arc::HasDriveLetter(rest))
    {
        full = std::string(1, arc::FoldCase(rest[0])) + ":";
        rest.erase(0, 2);
    }
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= rest.size())
    {
        const std::size_t end = std::min(rest.find('\\', start), rest.size());
        const std::string part = rest.substr(start, end - start);
        start = end + 1;
        if (part == ".." && !parts.empty())
        {
            parts.pop_back();
        }
        else if (!part.empty() && part != "." && part != "..")
        {
            parts.push_back(part);
        }
    }
    for (const std::string& part : parts)
    {
        full += "\\" + part;
    }
    full += parts.empty() ? "\\" : "";
    return full.size() > 259 ? std::string() : full;
}

std::optional<arc::DiskSpace> MemoryFileSystem::Space(const std::string& folder)
{
    const std::lock_guard lock(m_mutex);
    const char letter = Full(folder)[0];
    const auto drive = m_drives.find(letter);
    if (Fails() || drive == m_drives.end())
    {
        return std::nullopt;
    }
    return arc::DiskSpace{drive->second.bytesPerCluster, drive->second.clusters - UsedClusters(letter),
                          drive->second.clusters};
}

#include "archive/zip/unzipper.h"

#include "archive/files/filenames.h"
#include "archive/files/outputfile.h"
#include "archive/files/pathsafety.h"
#include "archive/files/progress.h"
#include "archive/zip/entryunpacker.h"
#include "archive/zip/zipfunctions.h"
#include "archive/zip/ziplimits.h"
#include "archive/zip/zipper.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <minizip/unzip.h>

namespace
{
constexpr std::size_t CheckChunk = std::size_t{64} * 1024;
constexpr std::uint64_t ReportBytes = std::uint64_t{64} * 1024; // progress is told at least this often

// Makes a folder with its parents.
bool MakeFolderTree(arc::FileSystem& files, const std::string& folder)
{
    if (const auto info = files.Query(folder))
    {
        return info->IsFolder();
    }
    const std::string parent(arc::FolderOf(folder));
    return !parent.empty() && parent.size() < folder.size() && MakeFolderTree(files, parent) &&
           files.CreateFolder(folder);
}

// What the zip library finds must be what was checked when the zip was opened.
bool IsEntry(const unz_file_info64& found, const arc::ZipEntry& entry)
{
    return found.flag == entry.flags && found.compression_method == entry.method && found.crc == entry.crc &&
           found.compressed_size == entry.packedSize && found.uncompressed_size == entry.size &&
           found.size_filename == entry.name.size();
}
} // namespace

CUnzipper::CUnzipper(arc::FileSystem& files) : m_files(files)
{
}

CUnzipper::~CUnzipper()
{
    CloseZip();
}

bool CUnzipper::OpenZip(const std::string& zipPath, arc::Access reading)
{
    CloseZip();
    const std::string path = m_files.Absolute(zipPath);
    if (zipPath.empty() || path.empty())
    {
        return false;
    }
    {
        const auto file = m_files.Open(path, reading);
        auto directory = file ? arc::ReadZipDirectory(*file) : std::nullopt;
        if (!directory)
        {
            return false;
        }
        m_directory = std::move(*directory);
    }
    // The library refuses a zip that is nothing but its end record.
    if (!m_directory.entries.empty())
    {
        m_functions = std::make_unique<arc::ZipFileFunctions>(m_files, arc::Access::Replace, reading);
        m_zip = unzOpen2_64(path.c_str(), m_functions->Table());
        if (!m_zip)
        {
            CloseZip();
            return false;
        }
    }
    m_strZipPath = path;
    m_reading = reading;
    m_bOpen = true;
    return true;
}

void CUnzipper::CloseZip()
{
    if (m_zip)
    {
        unzClose(m_zip);
        m_zip = nullptr;
    }
    m_functions.reset();
    m_directory = {};
    m_nCurrent = 0;
    m_bOpen = false;
}

void CUnzipper::SetOutputFolder(const std::string& folder)
{
    m_strOutputFolder = folder;
}

void CUnzipper::SetParallel(const arc::Parallel& parallel)
{
    m_parallel = parallel;
}

void CUnzipper::SetProgress(Progress progress)
{
    m_progress = std::move(progress);
}

std::uint64_t CUnzipper::FileCount() const
{
    return m_directory.entries.size();
}

bool CUnzipper::GlobalComment(char* buffer, std::size_t size) const
{
    if (!m_bOpen || size == 0)
    {
        return false;
    }
    const std::size_t length = m_directory.comment.copy(buffer, size - 1);
    buffer[length] = '\0';
    return true;
}

bool CUnzipper::GoToFirstEntry()
{
    m_nCurrent = 0;
    return !m_directory.entries.empty();
}

bool CUnzipper::GoToNextEntry()
{
    if (m_nCurrent < m_directory.entries.size())
    {
        ++m_nCurrent;
    }
    return m_nCurrent < m_directory.entries.size();
}

bool CUnzipper::LocateEntry(const std::string& storedName)
{
    const auto& entries = m_directory.entries;
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const arc::ZipEntry& entry) {
        return arc::EqualNoCase(entry.name, storedName);
    });
    if (found == entries.end())
    {
        return false;
    }
    m_nCurrent = static_cast<std::size_t>(found - entries.begin());
    return true;
}

bool CUnzipper::CurrentEntryInfo(EntryInfo& info) const
{
    if (m_nCurrent >= m_directory.entries.size())
    {
        return false;
    }
    const arc::ZipEntry& entry = m_directory.entries[m_nCurrent];
    info.name = entry.name.substr(0, arc::MaxStoredName);
    info.comment = entry.comment.substr(0, arc::MaxShownComment);
    info.size = entry.size;
    info.packedSize = entry.packedSize;
    info.time = entry.time;
    info.attributes = entry.attributes;
    info.folder = entry.IsFolder();
    return true;
}

bool CUnzipper::ReadCurrentEntry(const std::function<bool(const void* data, std::size_t bytes)>& take,
                                 std::size_t chunk)
{
    if (!m_zip || m_nCurrent >= m_directory.entries.size())
    {
        return false;
    }
    const arc::ZipEntry& entry = m_directory.entries[m_nCurrent];
    const unz64_file_pos position = {entry.directoryOffset, m_nCurrent};
    unz_file_info64 found{};
    if (unzGoToFilePos64(m_zip, &position) != UNZ_OK ||
        unzGetCurrentFileInfo64(m_zip, &found, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK ||
        !IsEntry(found, entry) || unzOpenCurrentFile(m_zip) != UNZ_OK)
    {
        return false;
    }
    std::vector<char> buffer(chunk);
    std::uint64_t taken = 0;
    int got = 0;
    bool good = true;
    while (good && (got = unzReadCurrentFile(m_zip, buffer.data(), static_cast<unsigned>(chunk))) > 0)
    {
        taken += static_cast<unsigned>(got);
        good = taken <= entry.size && take(buffer.data(), static_cast<std::size_t>(got));
        if (good && taken % ReportBytes < static_cast<unsigned>(got))
        {
            good = Report(m_nDone);
        }
    }
    // The library compares checksums when it closes an entry, but only one that was read to its end.
    const bool closed = unzCloseCurrentFile(m_zip) == UNZ_OK;
    return good && got == 0 && taken == entry.size && closed;
}

bool CUnzipper::ReadCurrentEntry(std::string& bytes, std::uint64_t limit)
{
    bytes.clear();
    return m_nCurrent < m_directory.entries.size() && m_directory.entries[m_nCurrent].size <= limit &&
           ReadCurrentEntry(
               [&](const void* data, std::size_t count) {
                   bytes.append(static_cast<const char*>(data), count);
                   return true;
               },
               arc::ZipChunk);
}

bool CUnzipper::CheckCurrentEntry()
{
    return ReadCurrentEntry([](const void*, std::size_t) { return true; }, CheckChunk);
}

bool CUnzipper::MakeFolders(const std::string& folder, const std::string& relative)
{
    std::string path = folder;
    std::size_t start = 0;
    while (start < relative.size())
    {
        const std::size_t end = std::min(relative.find('\\', start), relative.size());
        path = arc::JoinPath(path, std::string_view(relative).substr(start, end - start));
        start = end + 1;
        if (arc::EqualNoCase(path, m_strKnownFolder))
        {
            continue;
        }
        const auto info = m_files.Query(path);
        const bool usable = info
                                ? info->IsFolder() && !info->IsReparsePoint() && arc::IsOwnName(m_files, path)
                                : m_files.CreateFolder(path);
        if (!usable)
        {
            return false;
        }
    }
    m_strKnownFolder = path;
    return true;
}

bool CUnzipper::UnzipCurrentEntry(const std::string& folder, bool ignorePath)
{
    m_strKnownFolder.clear();
    return Extract(folder, ignorePath, nullptr);
}

std::optional<std::string> CUnzipper::Prepare(const std::string& folder, bool ignorePath,
                                              std::set<std::string>* names)
{
    if (m_nCurrent >= m_directory.entries.size())
    {
        return std::nullopt;
    }
    const std::string base = m_files.Absolute(folder.empty() ? m_strOutputFolder : folder);
    if (base.empty() || (m_strKnownFolder.empty() && !MakeFolderTree(m_files, base)))
    {
        return std::nullopt;
    }
    const arc::ZipEntry& entry = m_directory.entries[m_nCurrent];
    std::string_view stored = entry.name;
    if (ignorePath && !entry.IsFolder()) // folders are made where they stand
    {
        stored.remove_prefix(std::min(stored.size(), stored.find_last_of("\\/") + 1));
    }
    const auto safe = arc::SafeRelativePath(stored, base.size());
    if (!safe)
    {
        return std::nullopt;
    }
    if (entry.IsFolder())
    {
        return MakeFolders(base, safe->path) ? std::optional<std::string>(std::string()) : std::nullopt;
    }
    const std::string path = arc::JoinPath(base, safe->path);
    const std::string full = m_files.Absolute(path);
    if (!arc::LiesBelow(full, base) || !arc::EqualNoCase(full, path) ||
        (names && !names->insert(arc::SameFileKey(safe->path)).second) ||
        !MakeFolders(base, std::string(arc::FolderOf(safe->path))))
    {
        return std::nullopt;
    }
    return path;
}

bool CUnzipper::WriteCurrentEntry(const std::string& path)
{
    arc::OutputFile output(m_files);
    return output.Create(path) &&
           ReadCurrentEntry([&](const void* data, std::size_t bytes) { return output.Write(data, bytes); },
                            arc::ZipChunk) &&
           output.Keep(&m_directory.entries[m_nCurrent].time);
}

bool CUnzipper::Extract(const std::string& folder, bool ignorePath, std::set<std::string>* names)
{
    m_nDone = m_nCurrent;
    const auto path = Prepare(folder, ignorePath, names);
    return path && (path->empty() || WriteCurrentEntry(*path));
}

bool CUnzipper::Report(std::size_t entriesDone)
{
    const std::size_t count = m_directory.entries.size();
    return !m_progress || m_progress(arc::UnzipPercent(entriesDone, count),
                                     m_directory.entries[std::min(m_nCurrent, count - 1)].name);
}

std::optional<bool> CUnzipper::UnpackParallel(
    const std::function<bool(std::size_t index, arc::ByteSpan contents)>& take,
    const std::function<bool()>& stream)
{
    const auto& entries = m_directory.entries;
    std::vector<std::size_t> fitting;
    std::vector<std::size_t> large;
    for (std::size_t index = 0; index < entries.size(); ++index)
    {
        (arc::EntryUnpacker::Fits(entries[index], m_parallel) ? fitting : large).push_back(index);
    }
    arc::EntryUnpacker unpacker(m_files, m_strZipPath, m_reading, entries, fitting, m_parallel, take);
    if (!unpacker.HasWorkers())
    {
        return std::nullopt;
    }
    std::size_t streamed = 0;
    for (const std::size_t index : large)
    {
        m_nCurrent = index;
        m_nDone = streamed + unpacker.Done();
        if (unpacker.HasFailed() || !stream() || !Report(++streamed + unpacker.Done()))
        {
            return false;
        }
    }
    m_nCurrent = entries.size() - 1;
    if (!unpacker.Wait([&] { return Report(streamed + unpacker.Done()); }))
    {
        return false;
    }
    return std::all_of(unpacker.Left().begin(), unpacker.Left().end(), [&](std::size_t index) {
        m_nCurrent = index;
        return stream();
    });
}

bool CUnzipper::CheckAll()
{
    if (m_parallel.IsParallel() && !m_directory.entries.empty())
    {
        const auto checked = UnpackParallel([](std::size_t, arc::ByteSpan) { return true; },
                                            [this] { return CheckCurrentEntry(); });
        if (checked)
        {
            return *checked;
        }
    }
    for (bool more = GoToFirstEntry(); more; more = GoToNextEntry())
    {
        m_nDone = m_nCurrent;
        if (!CheckCurrentEntry() || !Report(m_nCurrent + 1))
        {
            return false;
        }
    }
    return true;
}

bool CUnzipper::UnzipAll(const std::string& folder, bool ignorePath)
{
    const std::string base =
        m_bOpen ? m_files.Absolute(folder.empty() ? m_strOutputFolder : folder) : std::string();
    if (base.empty() || !MakeFolderTree(m_files, base))
    {
        return false;
    }
    const auto space = m_files.Space(base);
    if (space && space->FreeBytes() < m_directory.unpackedBytes)
    {
        return false;
    }
    m_strKnownFolder.clear();
    std::set<std::string> names;
    if (m_parallel.IsParallel() && !m_directory.entries.empty())
    {
        std::vector<std::string> paths;
        for (bool more = GoToFirstEntry(); more; more = GoToNextEntry())
        {
            auto path = Prepare(base, ignorePath, &names);
            if (!path)
            {
                return false;
            }
            paths.push_back(std::move(*path));
        }
        const auto done = UnpackParallel(
            [&](std::size_t index, arc::ByteSpan contents) {
                arc::OutputFile output(m_files);
                return paths[index].empty() ||
                       (output.Create(paths[index]) && output.Write(contents.data(), contents.size()) &&
                        output.Keep(&m_directory.entries[index].time));
            },
            [&] { return WriteCurrentEntry(paths[m_nCurrent]); });
        if (done)
        {
            return *done;
        }
        names.clear();
    }
    for (bool more = GoToFirstEntry(); more; more = GoToNextEntry())
    {
        if (!Extract(base, ignorePath, &names) || !Report(m_nCurrent + 1))
        {
            return false;
        }
    }
    return true;
}

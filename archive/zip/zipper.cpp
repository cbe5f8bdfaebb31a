#include "archive/zip/zipper.h"

#include "archive/files/filenames.h"
#include "archive/files/pathsafety.h"
#include "archive/files/progress.h"
#include "archive/zip/entrypacker.h"
#include "archive/zip/zipdirectory.h"
#include "archive/zip/zipfunctions.h"
#include "archive/zip/ziplimits.h"

#include <algorithm>
#include <unordered_set>

#include <minizip/zip.h>

namespace
{
constexpr int MaxTreeDepth = 128; // a path of 260 characters cannot go deeper
// From this size on an entry's sizes are written with 64 bits; deflate may make data a little larger.
constexpr std::uint64_t LargeFile = 0xFFF00000;
constexpr std::uint64_t ReportBytes = std::uint64_t{64} * 1024; // progress is told at least this often

zip_fileinfo EntryInfo(const arc::FileInfo& info)
{
    zip_fileinfo entry{};
    // The format knows the years 1980 to 2107.
    const bool early = info.written.year < 1980;
    const bool late = info.written.year > 2107;
    const arc::LocalTime time = early ? arc::LocalTime{} : info.written;
    entry.tmz_date.tm_year = static_cast<uInt>(late ? 2107 : time.year);
    entry.tmz_date.tm_mon = static_cast<uInt>(time.month);
    entry.tmz_date.tm_mday = static_cast<uInt>(time.day);
    entry.tmz_date.tm_hour = static_cast<uInt>(time.hour);
    entry.tmz_date.tm_min = static_cast<uInt>(time.minute);
    entry.tmz_date.tm_sec = static_cast<uInt>(time.second);
    entry.external_fa = info.attributes;
    return entry;
}

bool IsReadableZip(arc::FileSystem& files, const std::string& path)
{
    const auto file = files.Open(path, arc::Access::ReadShared);
    return file && arc::ReadZipDirectory(*file).has_value();
}
} // namespace

CZipper::CZipper(arc::FileSystem& files) : m_files(files)
{
}

CZipper::~CZipper()
{
    CloseZip();
}

bool CZipper::OpenZip(const std::string& zipPath, const std::string& rootFolder, bool append, bool onlyNew)
{
    CloseZip();
    if (zipPath.empty())
    {
        return false;
    }
    m_strZipPath = m_files.Absolute(zipPath);
    const std::string root =
        rootFolder.empty() ? std::string(arc::FolderOf(m_strZipPath)) : m_files.Absolute(rootFolder);
    if (m_strZipPath.empty() || root.empty())
    {
        return false;
    }
    m_strRoot = arc::JoinPath(root, "");
    m_nFiles = m_nFolders = m_nBytes = 0;
    m_stored.clear();
    m_bFailed = false;
    m_nPercent = 0;

    // Adding to a file that is no sound zip would write over its bytes.
    append = append && !m_files.Query(m_strZipPath).IsAbsent();
    if (append && !IsReadableZip(m_files, m_strZipPath))
    {
        return false;
    }
    m_functions = std::make_unique<arc::ZipFileFunctions>(m_files, onlyNew ? arc::Access::CreateNew
                                                                           : arc::Access::Replace);
    m_zip = zipOpen2_64(m_strZipPath.c_str(), append ? APPEND_STATUS_ADDINZIP : APPEND_STATUS_CREATE, nullptr,
                        m_functions->Table());
    if (!m_zip)
    {
        m_functions.reset();
    }
    return m_zip != nullptr;
}

bool CZipper::StoredName(const std::string& path, bool ignorePath, std::string& stored) const
{
    if (ignorePath)
    {
        stored = arc::FileNameOf(path);
    }
    else if (path.starts_with("..\\"))
    {
        return false;
    }
    else if (path.find(':') != std::string::npos)
    {
        if (!arc::EqualNoCase(std::string_view(path).substr(0, m_strRoot.size()), m_strRoot))
        {
            return false;
        }
        stored = path.substr(m_strRoot.size());
    }
    else
    {
        stored = path.starts_with(".\\") ? path.substr(2) : path;
    }
    // What no load would unpack is not stored either. The path that is taken has the one separator.
    const auto safe = arc::SafeRelativePath(stored);
    if (!safe || safe->folder || safe->path.size() > arc::MaxStoredName)
    {
        return false;
    }
    stored = safe->path;
    return true;
}

bool CZipper::AddFileToZip(const std::string& path, bool ignorePath)
{
    std::string stored;
    return m_zip && !m_bFailed && StoredName(path, ignorePath, stored) && StoreFile(path, stored);
}

bool CZipper::OpenEntry(const std::string& stored, const arc::FileInfo& info,
                        std::uint16_t internalAttributes, bool packed)
{
    zip_fileinfo entry = EntryInfo(info);
    entry.internal_fa = internalAttributes;
    const bool folder = info.IsFolder();
    const int result = zipOpenNewFileInZip4_64(m_zip, stored.c_str(), &entry, nullptr, 0, nullptr, 0, nullptr,
                                               folder ? 0 : Z_DEFLATED, Z_DEFAULT_COMPRESSION, packed ? 1 : 0,
                                               -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY, nullptr, 0, 0,
                                               0, info.size >= LargeFile ? 1 : 0);
    m_bFailed |= result != ZIP_OK;
    return result == ZIP_OK;
}

bool CZipper::StoreFile(const std::string& path, const std::string& stored)
{
    // While it is open nobody changes it: size and time are those of the bytes that are stored.
    const auto source = m_files.Open(path, arc::Access::ReadAlone);
    auto info = m_files.Query(path);
    const auto size = source ? source->Size() : std::nullopt;
    if (!size || !info || info->IsFolder())
    {
        return false;
    }
    info->size = *size;
    if (!OpenEntry(stored, *info))
    {
        return false;
    }
    unsigned char chunk[arc::ZipChunk];
    std::uint64_t copied = 0;
    bool complete = false;
    while (!m_bFailed)
    {
        const auto got = source->Read(chunk, sizeof chunk);
        if (!got || *got == 0 || copied + *got > *size)
        {
            complete = got && *got == 0 && copied == *size;
            break;
        }
        m_bFailed = zipWriteInFileInZip(m_zip, chunk, static_cast<unsigned>(*got)) != ZIP_OK;
        copied += *got;
        m_nProgressDone += *got;
        if (copied % ReportBytes < *got && !Report(stored))
        {
            break;
        }
    }
    ++m_nFiles;
    m_nBytes += static_cast<std::uint32_t>(copied);
    m_bFailed |= zipCloseFileInZip(m_zip) != ZIP_OK;
    if (!complete || m_bFailed || !Report(stored))
    {
        return false;
    }
    m_stored.push_back({stored, copied, info->stamp});
    return true;
}

bool CZipper::AddFolderToZip(const std::string& folder, bool ignorePath)
{
    if (!m_zip)
    {
        return false;
    }
    std::string bare = folder;
    while (bare.size() > 1 && bare.back() == '\\' && bare[bare.size() - 2] != ':')
    {
        bare.pop_back();
    }
    std::string stored;
    // The root itself has no name behind the root: only what it holds is stored.
    const bool root = !ignorePath && arc::EqualNoCase(arc::JoinPath(bare, ""), m_strRoot);
    if (!root && !StoredName(bare, ignorePath, stored))
    {
        return false;
    }
    const auto info = m_files.Query(bare);
    return info && info->IsFolder() && AddTree(bare, stored, ignorePath, 0);
}

bool CZipper::AddTree(const std::string& folder, const std::string& stored, bool ignorePath, int depth)
{
    ++m_nFolders;
    auto info = m_files.Query(folder);
    if (info && !stored.empty())
    {
        info->size = 0;
        if (OpenEntry(stored + "\\", *info))
        {
            m_bFailed |= zipCloseFileInZip(m_zip) != ZIP_OK;
        }
    }
    std::vector<arc::FolderEntry> entries;
    if (depth >= MaxTreeDepth || !m_files.List(folder, "*", entries))
    {
        return true;
    }
    for (const arc::FolderEntry& entry : entries)
    {
        // A reparse point leads elsewhere, perhaps back to here.
        if (entry.name.starts_with('.') || m_bFailed || entry.info.IsReparsePoint())
        {
            continue;
        }
        const std::string path = arc::JoinPath(folder, entry.name);
        const std::string below = ignorePath ? entry.name : arc::JoinPath(stored, entry.name);
        if (entry.info.IsFolder())
        {
            AddTree(path, below, ignorePath, depth + 1);
        }
        else if (below.size() <= arc::MaxStoredName)
        {
            StoreFile(path, below);
        }
    }
    return true;
}

bool CZipper::AddPatternList(const std::string& arguments, const std::string& baseFolder, bool ignorePath,
                             const std::vector<std::string>& moreFiles)
{
    if (!m_zip)
    {
        return false;
    }
    std::vector<std::string> found;
    std::unordered_set<std::string> taken;
    m_nProgressDone = m_nProgressTotal = 0;
    for (const std::string& item : arc::SplitPatternArgument(arguments))
    {
        const std::string_view itemFolder = arc::FolderOf(item);
        const std::string folder = itemFolder.empty() ? baseFolder : std::string(itemFolder);
        const std::string_view pattern = arc::FileNameOf(item);
        std::vector<arc::FolderEntry> entries;
        // The folder is asked for what begins alike; which of it matches is decided here.
        const std::string begin(pattern.substr(0, pattern.find_first_of("*?")));
        if (!m_files.List(folder.empty() ? "." : folder, begin == pattern ? begin : begin + "*", entries))
        {
            return false; // a folder that cannot be read is not one without matches
        }
        for (const arc::FolderEntry& entry : entries)
        {
            const std::string path = arc::JoinPath(folder, entry.name);
            if (!entry.info.IsFolder() && arc::MatchesWildcard(entry.name, pattern) &&
                taken.insert(arc::FoldCase(path)).second)
            {
                found.push_back(path);
                m_nProgressTotal += entry.info.size;
            }
        }
    }
    for (const std::string& path : moreFiles)
    {
        if (taken.insert(arc::FoldCase(path)).second)
        {
            const auto info = m_files.Query(path); // one that is not there fails when it is stored
            found.push_back(path);
            m_nProgressTotal += info ? info->size : 0;
        }
    }
    const bool all = StoreAll(found, ignorePath);
    m_nProgressTotal = 0;
    return all;
}

bool CZipper::StoreAll(const std::vector<std::string>& paths, bool ignorePath)
{
    std::optional<arc::EntryPacker> packer;
    if (m_parallel.IsParallel())
    {
        packer.emplace(m_files, paths, m_parallel);
    }
    if (!packer || !packer->HasWorkers())
    {
        return std::all_of(paths.begin(), paths.end(),
                           [&](const std::string& path) { return AddFileToZip(path, ignorePath); });
    }
    std::uint64_t streamed = 0;
    for (const std::string& path : paths)
    {
        std::string stored;
        if (m_bFailed || !StoredName(path, ignorePath, stored))
        {
            return false;
        }
        const auto report = [&] {
            m_nProgressDone = packer->BytesRead() + streamed;
            return Report(stored);
        };
        const auto packed = packer->Next(report);
        if (!packed || packed->state == arc::PackedEntry::State::Failed)
        {
            return false;
        }
        if (packed->state == arc::PackedEntry::State::Packed)
        {
            if (!StorePacked(*packed, stored) || !report())
            {
                return false;
            }
            continue;
        }
        const std::uint64_t before = m_nProgressDone;
        if (!StoreFile(path, stored))
        {
            return false;
        }
        streamed += m_nProgressDone - before;
    }
    return true;
}

bool CZipper::StorePacked(const arc::PackedEntry& packed, const std::string& stored)
{
    if (!OpenEntry(stored, packed.info, packed.internalAttributes, true))
    {
        return false;
    }
    m_bFailed |=
        zipWriteInFileInZip(m_zip, packed.bytes.get(), static_cast<unsigned>(packed.packedSize)) != ZIP_OK;
    m_bFailed |= zipCloseFileInZipRaw64(m_zip, packed.info.size, packed.crc) != ZIP_OK;
    ++m_nFiles;
    m_nBytes += static_cast<std::uint32_t>(packed.info.size);
    if (m_bFailed)
    {
        return false;
    }
    m_stored.push_back({stored, packed.info.size, packed.info.stamp});
    return true;
}

bool CZipper::CloseZip()
{
    if (!m_zip)
    {
        return false;
    }
    const bool closed = zipClose(m_zip, nullptr) == ZIP_OK;
    m_zip = nullptr;
    const bool written = closed && !m_bFailed && !m_functions->Failed();
    m_functions.reset();
    return written;
}

bool CZipper::ZipFile(arc::FileSystem& files, const std::string& path)
{
    const std::string source = files.Absolute(path);
    const std::string zip = arc::WithExtension(source, "zip");
    // A file of that very name would be emptied before it could be read.
    if (source.empty() || arc::EqualNoCase(source, zip) || !files.Query(source))
    {
        return false;
    }
    CZipper zipper(files);
    const bool added = zipper.OpenZip(zip) && zipper.AddFileToZip(source);
    return zipper.CloseZip() && added;
}

void CZipper::SetParallel(const arc::Parallel& parallel)
{
    m_parallel = parallel;
}

void CZipper::SetProgress(Progress progress)
{
    m_progress = std::move(progress);
}

bool CZipper::Report(const std::string& name)
{
    if (!m_progress || m_nProgressTotal == 0)
    {
        return true;
    }
    m_nPercent = std::max(m_nPercent, arc::ProgressPercent(m_nProgressDone, m_nProgressTotal));
    return m_progress(m_nPercent, name);
}

const std::vector<arc::PresentFile>& CZipper::Stored() const
{
    return m_stored;
}

std::uint32_t CZipper::FilesAdded() const
{
    return m_nFiles;
}

std::uint32_t CZipper::FoldersAdded() const
{
    return m_nFolders;
}

std::uint32_t CZipper::BytesAdded() const
{
    return m_nBytes;
}

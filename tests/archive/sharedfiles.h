// A file system of the tests for several threads at once.
#pragma once

#include "archive/files/filesystem.h"

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

// Passes one call at a time on to another file system.
class SharedFiles : public arc::FileSystem
{
public:
    explicit SharedFiles(arc::FileSystem& files) : m_files(files)
    {
    }

    // Called, alone, whenever the size of an open file has been asked for.
    std::function<void(const std::string& path)> sized;

    std::unique_ptr<arc::File> Open(const std::string& path, arc::Access access) override
    {
        const std::lock_guard lock(m_mutex);
        auto file = m_files.Open(path, access);
        return file ? std::make_unique<SharedFile>(*this, path, std::move(file)) : nullptr;
    }
    arc::FileQuery Query(const std::string& path) override
    {
        const std::lock_guard lock(m_mutex);
        return m_files.Query(path);
    }
    bool List(const std::string& folder, const std::string& wildcard,
              std::vector<arc::FolderEntry>& entries) override
    {
        const std::lock_guard lock(m_mutex);
        return m_files.List(folder, wildcard, entries);
    }
    bool CreateFolder(const std::string& path) override
    {
        const std::lock_guard lock(m_mutex);
        return m_files.CreateFolder(path);
    }
    bool RemoveFolder(const std::string& path) override
    {
        const std::lock_guard lock(m_mutex);
        return m_files.RemoveFolder(path);
    }
    bool RemoveFile(const std::string& path) override
    {
        const std::lock_guard lock(m_mutex);
        return m_files.RemoveFile(path);
    }
    bool Move(const std::string& from, const std::string& to) override
    {
        const std::lock_guard lock(m_mutex);
        return m_files.Move(from, to);
    }
    bool SetAttributes(const std::string& path, std::uint32_t attributes) override
    {
        const std::lock_guard lock(m_mutex);
        return m_files.SetAttributes(path, attributes);
    }
    std::string Absolute(const std::string& path) override
    {
        const std::lock_guard lock(m_mutex);
        return m_files.Absolute(path);
    }
    std::string Identity(const std::string& path) override
    {
        const std::lock_guard lock(m_mutex);
        return m_files.Identity(path);
    }
    std::optional<arc::DiskSpace> Space(const std::string& folder) override
    {
        const std::lock_guard lock(m_mutex);
        return m_files.Space(folder);
    }

private:
    class SharedFile : public arc::File
    {
    public:
        SharedFile(SharedFiles& files, std::string path, std::unique_ptr<arc::File> file)
            : m_files(files), m_path(std::move(path)), m_file(std::move(file))
        {
        }
        ~SharedFile() override
        {
            const std::lock_guard lock(m_files.m_mutex);
            m_file.reset();
        }
        std::optional<std::size_t> Read(void* buffer, std::size_t bytes) override
        {
            const std::lock_guard lock(m_files.m_mutex);
            return m_file->Read(buffer, bytes);
        }
        bool Write(const void* data, std::size_t bytes) override
        {
            const std::lock_guard lock(m_files.m_mutex);
            return m_file->Write(data, bytes);
        }
        bool Seek(std::uint64_t position) override
        {
            const std::lock_guard lock(m_files.m_mutex);
            return m_file->Seek(position);
        }
        std::uint64_t Position() const override
        {
            return m_file->Position();
        }
        std::optional<std::uint64_t> Size() override
        {
            const std::lock_guard lock(m_files.m_mutex);
            const auto size = m_file->Size();
            if (m_files.sized)
                m_files.sized(m_path);
            return size;
        }
        bool FlushToDisk() override
        {
            const std::lock_guard lock(m_files.m_mutex);
            return m_file->FlushToDisk();
        }
        bool SetWritten(const arc::LocalTime& time) override
        {
            const std::lock_guard lock(m_files.m_mutex);
            return m_file->SetWritten(time);
        }
        bool Close() override
        {
            const std::lock_guard lock(m_files.m_mutex);
            return m_file->Close();
        }

    private:
        SharedFiles& m_files;
        const std::string m_path;
        std::unique_ptr<arc::File> m_file;
    };

    arc::FileSystem& m_files;
    std::mutex m_mutex;
};

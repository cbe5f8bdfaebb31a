// A file that is arriving.
#pragma once

#include "suite/rasko/transfer/platform.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace rasko
{
/// What arrives is appended to the file, and its signature computed, on a thread of the object's own while
/// the next bytes are read from the network; at most 8 MB waits. The file holds at any time the beginning of
/// what was added. Everything is called on one thread; failures are std::system_error, told by a later call.
class GrowingFile
{
public:
    /// Goes on with what the file holds.
    GrowingFile(std::filesystem::path path, std::size_t signatureLength);
    /// What was added is in the file, as far as the disk took it.
    ~GrowingFile();
    GrowingFile(const GrowingFile&) = delete;
    GrowingFile& operator=(const GrowingFile&) = delete;

    std::int64_t Held() const ///< bytes that the file had at the start
    {
        return m_held;
    }
    void Add(std::string_view bytes);
    /// Closes the file; the signature of the whole. The last call.
    std::string Finish();

private:
    void HandOver();
    void Work() noexcept;
    void Store(const std::string& block);
    void Join() noexcept;

    std::filesystem::path m_path;
    std::int64_t m_held = 0;
    std::string m_block; ///< not handed over yet
    std::unique_ptr<Digest> m_digest;
    std::ofstream m_file; ///< this and the digest: the thread's while there is one

    std::mutex m_mutex; ///< guards what follows
    std::condition_variable m_changed;
    std::deque<std::string> m_waiting;
    std::exception_ptr m_failure;
    bool m_ended = false;
    std::thread m_thread; ///< from the first block on: a small file needs none
};

/// Adds a file's content to a digest.
void AddFile(Digest& digest, const std::filesystem::path& file);
} // namespace rasko

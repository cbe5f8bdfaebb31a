#include "suite/rasko/transfer/growingfile.h"

#include <system_error>
#include <vector>

namespace
{
constexpr std::size_t BlockSize = 256U << 10;
constexpr std::size_t MostWaiting = 32; // blocks
} // namespace

namespace rasko
{
void AddFile(Digest& digest, const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::vector<char> buffer(BlockSize);
    while (in)
    {
        in.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        digest.Add(buffer.data(), static_cast<std::size_t>(in.gcount()));
    }
    if (in.bad())
        throw std::system_error(std::make_error_code(std::errc::io_error), file.string());
}

GrowingFile::GrowingFile(std::filesystem::path path, std::size_t signatureLength)
    : m_path(std::move(path)), m_digest(NewDigest(signatureLength))
{
    std::error_code none;
    const auto size = std::filesystem::file_size(m_path, none);
    m_held = none ? 0 : static_cast<std::int64_t>(size);
    if (m_held > 0)
        AddFile(*m_digest, m_path);
    m_file.open(m_path, std::ios::binary | std::ios::app);
}

GrowingFile::~GrowingFile()
{
    Join();
    if (m_failure || !m_file.is_open())
        return;
    try
    {
        Store(m_block);
    }
    catch (const std::exception&)
    {
        return; // the next attempt fetches it again
    }
}

void GrowingFile::Add(std::string_view bytes)
{
    m_block += bytes;
    if (m_block.size() >= BlockSize)
        HandOver();
}

std::string GrowingFile::Finish()
{
    Join();
    if (m_failure)
        std::rethrow_exception(m_failure);
    Store(m_block);
    m_file.close();
    if (!m_file)
        throw std::system_error(std::make_error_code(std::errc::no_space_on_device), m_path.string());
    return m_digest->Finish();
}

void GrowingFile::HandOver()
{
    std::unique_lock lock(m_mutex);
    if (!m_thread.joinable())
        m_thread = std::thread([this] { Work(); });
    m_changed.wait(lock, [this] { return m_failure || m_waiting.size() < MostWaiting; });
    if (m_failure)
        std::rethrow_exception(m_failure);
    m_waiting.push_back(std::move(m_block));
    m_block.clear();
    m_changed.notify_all();
}

void GrowingFile::Work() noexcept
{
    std::unique_lock lock(m_mutex);
    for (;;)
    {
        m_changed.wait(lock, [this] { return m_ended || !m_waiting.empty(); });
        if (m_waiting.empty())
            return;
        const std::string& block = m_waiting.front(); // stays where it is: the other thread only appends
        lock.unlock();
        std::exception_ptr failure;
        try
        {
            Store(block);
        }
        catch (...)
        {
            failure = std::current_exception();
        }
        lock.lock();
        m_waiting.pop_front();
        m_failure = failure;
        m_changed.notify_all();
        if (failure)
            return;
    }
}

void GrowingFile::Store(const std::string& block)
{
    if (!m_file.write(block.data(), static_cast<std::streamsize>(block.size())).flush())
        throw std::system_error(std::make_error_code(std::errc::no_space_on_device), m_path.string());
    m_digest->Add(block.data(), block.size());
}

void GrowingFile::Join() noexcept
{
    {
        const std::lock_guard lock(m_mutex);
        m_ended = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}
} // namespace rasko

#include "suite/rasko/transfer/platform.h"

#include "suite/util/digest.h"

#include <system_error>

namespace
{
[[noreturn]] void Fail(const char* what)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

class SystemDigest final : public rasko::Digest
{
public:
    explicit SystemDigest(bool sha512) : m_digest(m_provider, sha512)
    {
    }
    void Add(const void* data, std::size_t size) override
    {
        if (!m_digest.Add(data, size))
            Fail("signature");
    }
    std::string Finish() override
    {
        std::string text;
        if (!m_digest.Finish(text))
            Fail("signature");
        return text;
    }

private:
    velCDigestProvider m_provider; // before the digest, which it is for
    velCDigest m_digest;
};
} // namespace

namespace rasko
{
std::unique_ptr<Digest> NewDigest(std::size_t signatureLength)
{
    return std::make_unique<SystemDigest>(signatureLength == 128);
}

void SyncFile(const std::filesystem::path& file)
{
    const HANDLE handle =
        CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        Fail(file.string().c_str());
    const BOOL done = FlushFileBuffers(handle);
    CloseHandle(handle);
    if (!done)
        Fail(file.string().c_str());
}

bool MoveOver(const std::filesystem::path& from, const std::filesystem::path& to)
{
    if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return true;
    if (GetLastError() == ERROR_NOT_SAME_DEVICE)
        return false;
    Fail(to.string().c_str());
}
} // namespace rasko

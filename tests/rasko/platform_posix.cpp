// For the tests of the plain rules on this machine.
#include "suite/rasko/transfer/platform.h"

#include "service/diskfile.h"
#include "service/secrets.h"

#include <system_error>

namespace
{
class EvpDigest final : public rasko::Digest
{
public:
    explicit EvpDigest(std::size_t signatureLength) : m_digest(signatureLength)
    {
    }
    void Add(const void* data, std::size_t size) override
    {
        m_digest.Add(data, size);
    }
    std::string Finish() override
    {
        return m_digest.Finish();
    }

private:
    svc::FileDigest m_digest;
};
} // namespace

namespace rasko
{
std::unique_ptr<Digest> NewDigest(std::size_t signatureLength)
{
    return std::make_unique<EvpDigest>(signatureLength);
}

void SyncFile(const std::filesystem::path& file)
{
    svc::DiskFile(file.string(), svc::DiskFile::Mode::Read).Sync();
}

bool MoveOver(const std::filesystem::path& from, const std::filesystem::path& to)
{
    std::error_code error;
    std::filesystem::rename(from, to, error);
    if (error == std::errc::cross_device_link)
        return false;
    if (error)
        throw std::system_error(error, to.string());
    return true;
}
} // namespace rasko

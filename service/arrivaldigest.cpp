#include "service/arrivaldigest.h"

#include <algorithm>
#include <vector>

namespace svc
{
ArrivalDigest::ArrivalDigest(std::size_t signatureLength, const DiskFile& file) : m_digest(signatureLength)
{
    std::vector<char> buffer(1U << 18);
    for (const std::int64_t end = file.Size(); m_size < end;)
    {
        const auto wanted = std::min<std::int64_t>(end - m_size, static_cast<std::int64_t>(buffer.size()));
        const std::size_t count = file.ReadAt(m_size, buffer.data(), static_cast<std::size_t>(wanted));
        if (count == 0)
            break;
        m_digest.Add(buffer.data(), count);
        m_size += static_cast<std::int64_t>(count);
    }
}

void ArrivalDigest::Add(std::string bytes)
{
    if (m_adding.valid())
        m_adding.get();
    m_size += static_cast<std::int64_t>(bytes.size());
    m_adding = std::async(std::launch::async,
                          [this, piece = std::move(bytes)] { m_digest.Add(piece.data(), piece.size()); });
}

std::string ArrivalDigest::Finish()
{
    if (m_adding.valid())
        m_adding.get();
    return m_digest.Finish();
}
} // namespace svc

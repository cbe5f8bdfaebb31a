// The digest of a file that is arriving.
#pragma once

#include "service/diskfile.h"
#include "service/secrets.h"

#include <cstdint>
#include <future>
#include <string>

namespace svc
{
/// Of the file's beginning, as far as it has arrived: each piece is added on a thread of its own while the
/// next one is on its way. One caller at a time.
class ArrivalDigest
{
public:
    /// Begins with what the file holds. `signatureLength` as of FileDigest.
    ArrivalDigest(std::size_t signatureLength, const DiskFile& file);

    std::int64_t Size() const ///< bytes that it is of
    {
        return m_size;
    }
    void Add(std::string bytes);
    /// Lower-case hexadecimal; the last call.
    std::string Finish();

private:
    FileDigest m_digest;
    std::int64_t m_size = 0;
    std::future<void> m_adding; ///< last: waits for its thread, which uses the digest
};
} // namespace svc

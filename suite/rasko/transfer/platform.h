// What a transfer needs of the system beyond the C++ library. Failures are std::system_error.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace rasko
{
class Digest
{
public:
    virtual ~Digest() = default;
    virtual void Add(const void* data, std::size_t size) = 0;
    virtual std::string Finish() = 0; ///< lower-case hexadecimal
};
/// By the length of the signature that is to be compared: 32 digits are MD5, 128 SHA-512.
std::unique_ptr<Digest> NewDigest(std::size_t signatureLength);

/// Has a file's content on the disk.
void SyncFile(const std::filesystem::path& file);

/// Gives a file its final name, in place of one that may be there. False when the two lie on different
/// volumes.
bool MoveOver(const std::filesystem::path& from, const std::filesystem::path& to);
} // namespace rasko

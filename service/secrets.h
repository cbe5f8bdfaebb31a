// Random values, passwords and digests.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace svc
{
/// Random bytes of the system as lower-case hexadecimal.
std::string RandomHex(std::size_t bytes);
/// "{XXXXXXXX-XXXX-4XXX-XXXX-XXXXXXXXXXXX}".
std::string NewGuid();

/// A password as it is stored: scrypt with a salt of its own, parameters included. About 0.1 s and 32 MB.
std::string HashPassword(std::string_view password);
/// Takes as long for an empty `stored` (no such account) as for any other.
bool PasswordMatches(std::string_view password, std::string_view stored);

/// What is stored of a session's token.
std::string TokenDigest(std::string_view token);

/// Digest of a file that arrives in pieces.
class FileDigest
{
public:
    /// By the length of the signature that is expected: 32 digits are MD5, 128 SHA-512.
    explicit FileDigest(std::size_t signatureLength);
    ~FileDigest();
    void Add(const void* data, std::size_t size);
    /// Lower-case hexadecimal.
    std::string Finish();

private:
    struct Context;
    std::unique_ptr<Context> m_context;
};

bool IsSignature(std::string_view text); ///< 32 or 128 lower-case hexadecimal digits
} // namespace svc

#include "service/secrets.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <mutex>
#include <stdexcept>
#include <vector>

namespace
{
constexpr std::uint64_t ScryptN = 1U << 15, ScryptR = 8, ScryptP = 1;
constexpr std::uint64_t ScryptMemory = 64U << 20;
constexpr std::size_t SaltSize = 16, HashSize = 32;
constexpr std::string_view Prefix = "scrypt$15$8$1$";

std::string Hex(const unsigned char* data, std::size_t size)
{
    static constexpr char Digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(size * 2);
    for (std::size_t i = 0; i < size; ++i)
    {
        text += Digits[data[i] >> 4];
        text += Digits[data[i] & 15];
    }
    return text;
}

// Two at a time: sign-ins must not take all of the memory.
std::string Scrypt(std::string_view password, std::string_view salt)
{
    static std::array<std::mutex, 2> gates;
    static std::size_t next = 0;
    static std::mutex choice;
    std::mutex* gate = nullptr;
    {
        const std::lock_guard lock(choice);
        gate = &gates[next++ % gates.size()];
    }
    const std::lock_guard lock(*gate);
    std::array<unsigned char, HashSize> hash{};
    if (EVP_PBE_scrypt(password.data() ? password.data() : "", password.size(),
                       reinterpret_cast<const unsigned char*>(salt.data()), salt.size(), ScryptN, ScryptR,
                       ScryptP, ScryptMemory, hash.data(), hash.size()) != 1)
        throw std::runtime_error("scrypt failed");
    return Hex(hash.data(), hash.size());
}
} // namespace

namespace svc
{
std::string RandomHex(std::size_t bytes)
{
    std::vector<unsigned char> random(bytes);
    if (RAND_bytes(random.data(), static_cast<int>(bytes)) != 1)
        throw std::runtime_error("no random numbers");
    return Hex(random.data(), bytes);
}

std::string NewGuid()
{
    std::string hex = RandomHex(16);
    hex[12] = '4';
    hex[16] = "89ab"[hex[16] % 4];
    std::transform(hex.begin(), hex.end(), hex.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return "{" + hex.substr(0, 8) + "-" + hex.substr(8, 4) + "-" + hex.substr(12, 4) + "-" +
           hex.substr(16, 4) + "-" + hex.substr(20) + "}";
}

std::string HashPassword(std::string_view password)
{
    const std::string salt = RandomHex(SaltSize);
    return std::string(Prefix) + salt + "$" + Scrypt(password, salt);
}

bool PasswordMatches(std::string_view password, std::string_view stored)
{
    const bool known = stored.substr(0, Prefix.size()) == Prefix &&
                       stored.size() == Prefix.size() + SaltSize * 2 + 1 + HashSize * 2;
    const std::string salt =
        known ? std::string(stored.substr(Prefix.size(), SaltSize * 2)) : std::string(SaltSize * 2, '0');
    const std::string hash = Scrypt(password, salt);
    return known && CRYPTO_memcmp(hash.data(), stored.data() + stored.size() - hash.size(), hash.size()) == 0;
}

std::string TokenDigest(std::string_view token)
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int size = 0;
    if (EVP_Digest(token.data(), token.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("SHA-256 failed");
    return Hex(digest.data(), size);
}

struct FileDigest::Context
{
    EVP_MD_CTX* evp = EVP_MD_CTX_new();
    ~Context()
    {
        EVP_MD_CTX_free(evp);
    }
};

FileDigest::FileDigest(std::size_t signatureLength) : m_context(std::make_unique<Context>())
{
    if (EVP_DigestInit_ex(m_context->evp, signatureLength == 128 ? EVP_sha512() : EVP_md5(), nullptr) != 1)
        throw std::runtime_error("digest failed");
}

FileDigest::~FileDigest() = default;

void FileDigest::Add(const void* data, std::size_t size)
{
    if (EVP_DigestUpdate(m_context->evp, data, size) != 1)
        throw std::runtime_error("digest failed");
}

std::string FileDigest::Finish()
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int size = 0;
    if (EVP_DigestFinal_ex(m_context->evp, digest.data(), &size) != 1)
        throw std::runtime_error("digest failed");
    return Hex(digest.data(), size);
}

bool IsSignature(std::string_view text)
{
    return (text.size() == 32 || text.size() == 128) &&
           text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}
} // namespace svc

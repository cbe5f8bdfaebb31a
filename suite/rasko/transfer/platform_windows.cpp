#include "suite/rasko/transfer/platform.h"

#include <windows.h>
#include <wincrypt.h>

#include <array>
#include <system_error>

namespace
{
[[noreturn]] void Fail(const char* what)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

class CryptDigest final : public rasko::Digest
{
public:
    explicit CryptDigest(ALG_ID algorithm)
    {
        if (!CryptAcquireContextA(&m_provider, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT))
            Fail("signature");
        if (!CryptCreateHash(m_provider, algorithm, 0, 0, &m_hash))
        {
            CryptReleaseContext(m_provider, 0);
            Fail("signature");
        }
    }
    ~CryptDigest() override
    {
        CryptDestroyHash(m_hash);
        CryptReleaseContext(m_provider, 0);
    }
    CryptDigest(const CryptDigest&) = delete;
    CryptDigest& operator=(const CryptDigest&) = delete;

    void Add(const void* data, std::size_t size) override
    {
        if (!CryptHashData(m_hash, static_cast<const BYTE*>(data), static_cast<DWORD>(size), 0))
            Fail("signature");
    }
    std::string Finish() override
    {
        static constexpr char Digits[] = "0123456789abcdef";
        std::array<BYTE, 64> value{};
        DWORD size = static_cast<DWORD>(value.size());
        if (!CryptGetHashParam(m_hash, HP_HASHVAL, value.data(), &size, 0))
            Fail("signature");
        std::string text;
        for (DWORD i = 0; i < size; ++i)
            text.append({Digits[value[i] >> 4], Digits[value[i] & 15]});
        return text;
    }

private:
    HCRYPTPROV m_provider = 0;
    HCRYPTHASH m_hash = 0;
};
} // namespace

namespace rasko
{
std::unique_ptr<Digest> NewDigest(std::size_t signatureLength)
{
    return std::make_unique<CryptDigest>(signatureLength == 128 ? CALG_SHA_512 : CALG_MD5);
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

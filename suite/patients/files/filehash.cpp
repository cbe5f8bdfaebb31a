#include "suite/patients/files/filehash.h"

#include <wincrypt.h>

#include <algorithm>
#include <array>
#include <vector>

namespace
{
constexpr HRESULT FileNotFound = static_cast<HRESULT>(0x800A0035);
constexpr DWORD BlockSize = 2048;           // bytes that are hashed at once
constexpr DWORD ReadSize = 128 * BlockSize; // bytes that are read at once

struct File
{
    explicit File(LPCTSTR pszPath)
        : handle(::CreateFile(pszPath, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr))
    {
    }
    ~File()
    {
        if (handle != INVALID_HANDLE_VALUE)
            ::CloseHandle(handle);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    HANDLE handle;
};

struct Hash
{
    Hash(HCRYPTPROV hProvider, ALG_ID algorithm)
    {
        ::CryptCreateHash(hProvider, algorithm, 0, 0, &handle);
    }
    ~Hash()
    {
        if (handle != 0)
            ::CryptDestroyHash(handle);
    }
    Hash(const Hash&) = delete;
    Hash& operator=(const Hash&) = delete;
    HCRYPTHASH handle = 0;
};

HRESULT LastError()
{
    const DWORD nError = ::GetLastError();
    return nError == ERROR_SUCCESS ? E_FAIL : HRESULT_FROM_WIN32(nError);
}
} // namespace

struct patCFileHasher::Provider
{
    Provider()
    {
        if (!::CryptAcquireContext(&handle, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT))
            handle = 0;
    }
    ~Provider()
    {
        if (handle != 0)
            ::CryptReleaseContext(handle, 0);
    }
    Provider(const Provider&) = delete;
    Provider& operator=(const Provider&) = delete;
    HCRYPTPROV handle = 0;
};

patCFileHasher::patCFileHasher(bool bFIPS) : m_pProvider(std::make_unique<Provider>()), m_bFIPS(bFIPS)
{
}

patCFileHasher::~patCFileHasher() = default;

HRESULT patCFileHasher::GetHash(LPCTSTR pszPath, CString& strHash) const
{
    strHash.Empty();
    const int nPathLength = pszPath == nullptr ? 0 : ::lstrlen(pszPath);
    if (nPathLength == 0 || nPathLength >= MAX_PATH)
        return E_INVALIDARG;
    const File file(pszPath);
    if (file.handle == INVALID_HANDLE_VALUE)
        return FileNotFound;
    const Hash hash(m_pProvider->handle, m_bFIPS ? CALG_SHA_512 : CALG_MD5);
    if (hash.handle == 0)
        return LastError();

    std::vector<BYTE> data(ReadSize);
    for (;;)
    {
        DWORD nRead = 0;
        if (!::ReadFile(file.handle, data.data(), ReadSize, &nRead, nullptr))
            return LastError();
        if (nRead == 0)
            break;
        for (DWORD nDone = 0; nDone < nRead; nDone += BlockSize)
        {
            if (!::CryptHashData(hash.handle, data.data() + nDone, std::min(BlockSize, nRead - nDone), 0))
                return LastError();
        }
    }
    std::array<BYTE, 64> digest{};
    auto nSize = static_cast<DWORD>(digest.size());
    if (!::CryptGetHashParam(hash.handle, HP_HASHVAL, digest.data(), &nSize, 0))
        return LastError();
    for (DWORD i = 0; i < nSize; ++i)
        strHash.AppendFormat("%02x", static_cast<unsigned>(digest.at(i)));
    return S_OK;
}

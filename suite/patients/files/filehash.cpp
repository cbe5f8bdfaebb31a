#include "suite/patients/files/filehash.h"

#include "suite/util/digest.h"

#include <algorithm>
#include <string>
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

HRESULT LastError()
{
    const DWORD nError = ::GetLastError();
    return nError == ERROR_SUCCESS ? E_FAIL : HRESULT_FROM_WIN32(nError);
}
} // namespace

patCFileHasher::patCFileHasher(bool bFIPS)
    : m_pProvider(std::make_unique<velCDigestProvider>()), m_bFIPS(bFIPS)
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
    velCDigest digest(*m_pProvider, m_bFIPS);
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
            if (!digest.Add(data.data() + nDone, std::min(BlockSize, nRead - nDone)))
                return LastError();
        }
    }
    std::string text;
    if (!digest.Finish(text))
        return LastError();
    strHash = text.c_str();
    return S_OK;
}

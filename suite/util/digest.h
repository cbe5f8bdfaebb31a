// MD5 and SHA-512 by the system's provider.
#pragma once

#include <windows.h>
#include <wincrypt.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

/// The system's provider of digests; owns its handle, which is 0 where there is none. Making one costs as
/// much as digesting a small file, so that one serves many.
class velCDigestProvider
{
public:
    velCDigestProvider()
    {
        if (!::CryptAcquireContextA(&m_handle, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT))
            m_handle = 0;
    }
    ~velCDigestProvider()
    {
        if (m_handle != 0)
            ::CryptReleaseContext(m_handle, 0);
    }
    velCDigestProvider(const velCDigestProvider&) = delete;
    velCDigestProvider& operator=(const velCDigestProvider&) = delete;

    HCRYPTPROV Get() const
    {
        return m_handle;
    }

private:
    HCRYPTPROV m_handle = 0;
};

/// One digest that grows; the provider outlives it. Calls answer false with the system's last error; once one
/// has, so do those that follow.
class velCDigest
{
public:
    velCDigest(const velCDigestProvider& provider, bool bSHA512)
    {
        ::CryptCreateHash(provider.Get(), bSHA512 ? CALG_SHA_512 : CALG_MD5, 0, 0, &m_handle);
    }
    ~velCDigest()
    {
        if (m_handle != 0)
            ::CryptDestroyHash(m_handle);
    }
    velCDigest(const velCDigest&) = delete;
    velCDigest& operator=(const velCDigest&) = delete;

    bool Add(const void* pData, std::size_t nSize)
    {
        return ::CryptHashData(m_handle, static_cast<const BYTE*>(pData), static_cast<DWORD>(nSize), 0) !=
               FALSE;
    }
    /// Lower-case hexadecimal; the last call.
    bool Finish(std::string& text) const
    {
        std::array<BYTE, 64> value{};
        auto nSize = static_cast<DWORD>(value.size());
        text.clear();
        if (!::CryptGetHashParam(m_handle, HP_HASHVAL, value.data(), &nSize, 0))
            return false;
        for (DWORD i = 0; i < nSize; ++i)
            text.append({"0123456789abcdef"[value.at(i) >> 4], "0123456789abcdef"[value.at(i) & 15]});
        return true;
    }

private:
    HCRYPTHASH m_handle = 0;
};

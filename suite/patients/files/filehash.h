// The digest by which the content of a file is known, to both sides of a transfer too.
#pragma once

#include "suite/patients/store/patdefs.h"

#include <memory>

class velCDigestProvider;

/// Digests of files; one serves a whole record. Needs no database; any thread, one at a time.
class VELPAT_API patCFileHasher
{
public:
    /// bFIPS: SHA-512 instead of MD5.
    explicit patCFileHasher(bool bFIPS);
    ~patCFileHasher();
    patCFileHasher(const patCFileHasher&) = delete;
    patCFileHasher& operator=(const patCFileHasher&) = delete;

    /// The digest of the whole file as lower-case hexadecimal. E_INVALIDARG for a path that is empty or has
    /// 260 characters and more, 0x800A0035 when the file cannot be opened for shared reading, the system's
    /// code for anything else; strHash is then empty.
    HRESULT GetHash(LPCTSTR pszPath, CString& strHash) const;

private:
    const std::unique_ptr<velCDigestProvider> m_pProvider;
    const bool m_bFIPS;
};

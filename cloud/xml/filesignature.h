// The signature by which both sides of a transfer know a file.
#pragma once

#include <afx.h>

#include <memory>

/// The system's provider of MD5 and SHA-512. Owns its handle; making one costs as much as signing a small
/// file, so that one serves a whole record.
class velFileSigner
{
public:
    /// bFIPS: SHA-512 instead of MD5.
    explicit velFileSigner(bool bFIPS);
    ~velFileSigner();
    velFileSigner(const velFileSigner&) = delete;
    velFileSigner& operator=(const velFileSigner&) = delete;

    /// The digest of the whole file as lower-case hexadecimal. E_INVALIDARG for a path that is empty or has
    /// 260 characters and more, 0x800A0035 when the file cannot be opened for shared reading, the system's
    /// code for anything else; strSignature is then empty.
    HRESULT Sign(LPCTSTR pszPath, CString& strSignature) const;

private:
    struct Provider;
    const std::unique_ptr<Provider> m_pProvider;
    const bool m_bFIPS;
};

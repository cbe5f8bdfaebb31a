#pragma once

// The byte form of a serialized patient; inside the library only.
//
// Format 1: the mark "VPA1", the length and CRC-32 of the payload (4 bytes each), the payload. Texts are
// UTF-8 behind a 4-byte length. Format 2, the earlier one: the mark "VPA2", then the payload without length
// or sum; texts are in the code page behind a 2-byte length, and images' texts, referrals, policies,
// treatments and teeth are left out. All numbers are little-endian.

#include "suite/patients/store/dbcore.h"

#include <string>

/// Collects a payload.
class dbCArchiveWriter
{
public:
    explicit dbCArchiveWriter(int nFormat) : m_nFormat(nFormat)
    {
    }

    static constexpr bool READING = false;
    int GetFormat() const
    {
        return m_nFormat;
    }
    const std::string& GetPayload() const
    {
        return m_payload;
    }

    void Number(__int64 nValue);
    void Text(const CString& strText);

private:
    int m_nFormat;
    std::string m_payload;
};

/// Takes a payload apart. Throws CArchiveException*: endOfFile behind its end, badIndex for values out of
/// range.
class dbCArchiveReader
{
public:
    dbCArchiveReader(int nFormat, std::string payload) : m_nFormat(nFormat), m_payload(std::move(payload))
    {
    }

    static constexpr bool READING = true;
    int GetFormat() const
    {
        return m_nFormat;
    }

    __int64 Number(__int64 nMin, __int64 nMax);
    CString Text();
    bool IsAtEnd() const
    {
        return m_nPos == m_payload.size();
    }
    void RequireEnd() const;

private:
    const char* Take(size_t nCount);

    int m_nFormat;
    std::string m_payload;
    size_t m_nPos = 0;
};

/// Writes mark and payload.
void dbWriteArchivePayload(CArchive& ar, int nFormat, const std::string& payload);

/// Reads mark and payload of a format. Format 2 has no length and takes the archive to its end.
std::string dbReadArchivePayload(CArchive& ar, int nFormat);

#include "suite/patients/files/dbarchivebytes.h"

#include "suite/patients/store/dbtext.h"

#include <array>
#include <cstring>

namespace
{
constexpr DWORD MAX_PAYLOAD = 64 * 1024 * 1024;
constexpr size_t MAX_TEXT = std::size_t{4} * 1024 * 1024;
constexpr size_t READ_BLOCK = std::size_t{64} * 1024;

DWORD Crc32(const std::string& bytes)
{
    static const std::array<DWORD, 256> table = [] {
        std::array<DWORD, 256> made{};
        for (DWORD n = 0; n < 256; ++n)
        {
            DWORD c = n;
            for (int k = 0; k < 8; ++k)
                c = c & 1 ? 0xEDB88320 ^ (c >> 1) : c >> 1;
            made[n] = c;
        }
        return made;
    }();
    DWORD crc = 0xFFFFFFFF;
    for (const char ch : bytes)
        crc = table[(crc ^ static_cast<unsigned char>(ch)) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

std::string Mark(int nFormat)
{
    return "VPA" + std::to_string(nFormat);
}

/// Reads up to `nCount` bytes block by block, so that a lying length takes no more memory than the archive
/// has bytes.
std::string ReadUpTo(CArchive& ar, size_t nCount)
{
    std::string bytes;
    while (bytes.size() < nCount)
    {
        const size_t nBlock = std::min(READ_BLOCK, nCount - bytes.size());
        const size_t nBefore = bytes.size();
        bytes.resize(nBefore + nBlock);
        const UINT nRead = ar.Read(bytes.data() + nBefore, static_cast<UINT>(nBlock));
        bytes.resize(nBefore + nRead);
        if (nRead < nBlock)
            break;
    }
    return bytes;
}
} // namespace

void dbCArchiveWriter::Number(__int64 nValue)
{
    char bytes[sizeof(nValue)];
    memcpy(bytes, &nValue, sizeof(nValue));
    m_payload.append(bytes, sizeof(bytes));
}

void dbCArchiveWriter::Text(const CString& strText)
{
    const std::string text =
        m_nFormat == 1 ? dbToUtf8(strText.GetString()) : std::string(strText.GetString());
    const size_t nWidth = m_nFormat == 1 ? 4 : 2;
    if (text.size() > (nWidth == 4 ? MAX_TEXT : 0xFFFF))
        dbCException::Throw(dbErrInvalid, strText.Left(60));
    for (size_t i = 0; i < nWidth; ++i)
        m_payload += static_cast<char>(text.size() >> (8 * i) & 0xFF);
    m_payload += text;
}

const char* dbCArchiveReader::Take(size_t nCount)
{
    if (nCount > m_payload.size() - m_nPos)
        AfxThrowArchiveException(CArchiveException::endOfFile);
    const char* pBytes = m_payload.data() + m_nPos;
    m_nPos += nCount;
    return pBytes;
}

__int64 dbCArchiveReader::Number(__int64 nMin, __int64 nMax)
{
    __int64 nValue = 0;
    memcpy(&nValue, Take(sizeof(nValue)), sizeof(nValue));
    if (nValue < nMin || nValue > nMax)
        AfxThrowArchiveException(CArchiveException::badIndex);
    return nValue;
}

CString dbCArchiveReader::Text()
{
    const size_t nWidth = m_nFormat == 1 ? 4 : 2;
    const char* pLength = Take(nWidth);
    size_t nLength = 0;
    for (size_t i = 0; i < nWidth; ++i)
        nLength |= static_cast<size_t>(static_cast<unsigned char>(pLength[i])) << (8 * i);
    if (nLength > MAX_TEXT)
        AfxThrowArchiveException(CArchiveException::badIndex);
    const std::string text(Take(nLength), nLength);
    if (text.find('\0') != std::string::npos)
        AfxThrowArchiveException(CArchiveException::badIndex);
    return m_nFormat == 1 ? dbFromUtf8(text).c_str() : text.c_str();
}

void dbCArchiveReader::RequireEnd() const
{
    if (!IsAtEnd())
        AfxThrowArchiveException(CArchiveException::badSchema);
}

void dbWriteArchivePayload(CArchive& ar, int nFormat, const std::string& payload)
{
    if (payload.size() > MAX_PAYLOAD)
        dbCException::Throw(dbErrInvalid);
    const std::string mark = Mark(nFormat);
    ar.Write(mark.data(), static_cast<UINT>(mark.size()));
    if (nFormat == 1)
        ar << static_cast<DWORD>(payload.size()) << Crc32(payload);
    ar.Write(payload.data(), static_cast<UINT>(payload.size()));
}

std::string dbReadArchivePayload(CArchive& ar, int nFormat)
{
    const std::string mark = ReadUpTo(ar, Mark(nFormat).size());
    if (mark.size() < Mark(nFormat).size())
        AfxThrowArchiveException(CArchiveException::endOfFile);
    if (mark != Mark(nFormat))
        AfxThrowArchiveException(CArchiveException::badSchema);
    DWORD dwLength = MAX_PAYLOAD, dwCrc = 0;
    if (nFormat == 1)
    {
        ar >> dwLength >> dwCrc;
        if (dwLength > MAX_PAYLOAD)
            AfxThrowArchiveException(CArchiveException::badIndex);
    }
    std::string payload = ReadUpTo(ar, dwLength);
    if (nFormat == 1 && payload.size() < dwLength)
        AfxThrowArchiveException(CArchiveException::endOfFile);
    if (nFormat == 1 && Crc32(payload) != dwCrc)
        AfxThrowArchiveException(CArchiveException::badSchema);
    return payload;
}

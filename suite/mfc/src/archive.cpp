#include "afx.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{
constexpr std::size_t smallestBuffer = 128;
constexpr std::size_t textPiece = std::size_t{64} * 1024;
} // namespace

// ---------------------------------------------------------------------------------------------------------
// Bytes

CArchive::CArchive(CFile* pFile, UINT nMode, int nBufSize, void*)
    : m_pFile(pFile), m_nMode(nMode),
      m_nBufferSize(std::max(static_cast<std::size_t>(std::max(nBufSize, 0)), smallestBuffer))
{
    ENSURE(pFile != nullptr);
}

CArchive::~CArchive()
{
    if (m_pFile != nullptr && (m_nMode & bNoFlushOnDelete) == 0)
    {
        try
        {
            Close();
        }
        catch (CException* e)
        {
            // Nobody is left to tell; whoever must know calls Close.
            e->Delete();
        }
    }
    Abort();
}

void CArchive::CheckMode(bool bLoading) const
{
    ENSURE(m_pFile != nullptr);
    if (bLoading != (IsLoading() != FALSE))
    {
        AfxThrowArchiveException(bLoading ? CArchiveException::writeOnly : CArchiveException::readOnly,
                                 m_pFile->GetFilePath());
    }
}

BOOL CArchive::IsBufferEmpty() const
{
    return m_nBufferPos == m_buffer.size();
}

UINT CArchive::Read(void* lpBuf, UINT nMax)
{
    CheckMode(true);
    auto* out = static_cast<BYTE*>(lpBuf);
    UINT count = 0;
    while (count < nMax)
    {
        if (IsBufferEmpty())
        {
            m_buffer.clear();
            m_nBufferPos = 0;
            if (nMax - count >= m_nBufferSize)
            {
                // A large piece goes straight to its place.
                const UINT read = m_pFile->Read(out + count, nMax - count);
                if (read == 0)
                {
                    break;
                }
                count += read;
                continue;
            }
            m_buffer.resize(m_nBufferSize);
            UINT read = 0;
            try
            {
                read = m_pFile->Read(m_buffer.data(), static_cast<UINT>(m_buffer.size()));
            }
            catch (...)
            {
                m_buffer.clear();
                throw;
            }
            m_buffer.resize(read);
            if (read == 0)
            {
                break;
            }
        }
        const UINT piece = static_cast<UINT>(std::min<std::size_t>(nMax - count, m_buffer.size() - m_nBufferPos));
        memcpy(out + count, m_buffer.data() + m_nBufferPos, piece);
        m_nBufferPos += piece;
        count += piece;
    }
    return count;
}

void CArchive::EnsureRead(void* lpBuf, UINT nCount)
{
    if (Read(lpBuf, nCount) != nCount)
    {
        AfxThrowArchiveException(CArchiveException::endOfFile, m_pFile->GetFilePath());
    }
}

void CArchive::Write(const void* lpBuf, UINT nMax)
{
    CheckMode(false);
    const auto* in = static_cast<const BYTE*>(lpBuf);
    if (m_buffer.size() + nMax > m_nBufferSize)
    {
        Flush();
    }
    if (nMax >= m_nBufferSize)
    {
        m_pFile->Write(in, nMax);
        return;
    }
    m_buffer.insert(m_buffer.end(), in, in + nMax);
}

void CArchive::Flush()
{
    ENSURE(m_pFile != nullptr);
    // Taken out first: what the disk refuses once is not written a second time at a wrong place.
    std::vector<BYTE> pending;
    pending.swap(m_buffer);
    const auto ahead = static_cast<LONGLONG>(pending.size() - m_nBufferPos);
    m_nBufferPos = 0;
    if (IsStoring())
    {
        if (!pending.empty())
        {
            m_pFile->Write(pending.data(), static_cast<UINT>(pending.size()));
        }
        pending.clear();
        m_buffer.swap(pending); // keeps the memory
    }
    else if (ahead != 0)
    {
        // The file stands where loading stopped.
        m_pFile->Seek(-ahead, CFile::current);
    }
}

void CArchive::Close()
{
    try
    {
        Flush();
    }
    catch (CException*)
    {
        Abort();
        throw;
    }
    m_pFile = nullptr;
}

void CArchive::Abort()
{
    m_buffer.clear();
    m_nBufferPos = 0;
    m_pFile = nullptr;
}

// ---------------------------------------------------------------------------------------------------------
// Counts and texts

void CArchive::WriteCount(DWORD_PTR dwCount)
{
    if (dwCount < 0xFFFF)
    {
        *this << static_cast<WORD>(dwCount);
        return;
    }
    *this << static_cast<WORD>(0xFFFF);
    if (dwCount < 0xFFFFFFFF)
    {
        *this << static_cast<DWORD>(dwCount);
        return;
    }
    *this << static_cast<DWORD>(0xFFFFFFFF) << static_cast<ULONGLONG>(dwCount);
}

DWORD_PTR CArchive::ReadCount()
{
    WORD shortCount = 0;
    *this >> shortCount;
    if (shortCount != 0xFFFF)
    {
        return shortCount;
    }
    DWORD count = 0;
    *this >> count;
    if (count != 0xFFFFFFFF)
    {
        return count;
    }
    ULONGLONG longCount = 0;
    *this >> longCount;
    return static_cast<DWORD_PTR>(longCount);
}

CArchive& operator<<(CArchive& ar, const CString& str)
{
    const auto length = static_cast<DWORD>(str.GetLength());
    if (length < 0xFF)
    {
        ar << static_cast<BYTE>(length);
    }
    else if (length < 0xFFFE)
    {
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(length);
    }
    else
    {
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFF) << length;
    }
    ar.Write(str.GetString(), length);
    return ar;
}

CArchive& operator>>(CArchive& ar, CString& str)
{
    BYTE shortLength = 0;
    ar >> shortLength;
    DWORD length = shortLength;
    if (shortLength == 0xFF)
    {
        WORD middleLength = 0;
        ar >> middleLength;
        length = middleLength;
        // 0xFFFE announces a text of wide characters, which nothing here writes.
        if (middleLength == 0xFFFE)
        {
            AfxThrowArchiveException(CArchiveException::badIndex, ar.GetFile()->GetFilePath());
        }
        if (middleLength == 0xFFFF)
        {
            ar >> length;
        }
    }
    if (length > static_cast<DWORD>(MAXLONG))
    {
        AfxThrowArchiveException(CArchiveException::badIndex, ar.GetFile()->GetFilePath());
    }
    // By pieces, so that a length that the file does not hold takes no memory.
    CString text;
    std::vector<char> piece(std::min<std::size_t>(length, textPiece));
    for (DWORD left = length; left != 0;)
    {
        const DWORD count = std::min<DWORD>(left, static_cast<DWORD>(piece.size()));
        ar.EnsureRead(piece.data(), count);
        text += CString(piece.data(), static_cast<int>(count));
        left -= count;
    }
    str = std::move(text);
    return ar;
}

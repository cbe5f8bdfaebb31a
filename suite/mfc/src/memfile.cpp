#include "afx.h"

#include <algorithm>
#include <cstring>
#include <new>

IMPLEMENT_DYNAMIC(CMemFile, CFile)

CMemFile::CMemFile(UINT nGrowBytes)
{
    m_data.reserve(nGrowBytes);
}

CMemFile::CMemFile(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes)
{
    m_data.reserve(static_cast<std::size_t>(nBufferSize) + nGrowBytes);
    m_data.assign(lpBuffer, lpBuffer + nBufferSize);
}

CMemFile::~CMemFile() = default;

BOOL CMemFile::Open(LPCTSTR, UINT, CFileException*)
{
    AfxThrowNotSupportedException();
}

void CMemFile::Close()
{
    Abort();
}

void CMemFile::Abort()
{
    std::vector<BYTE>().swap(m_data);
    m_nPosition = 0;
}

UINT CMemFile::Read(void* lpBuf, UINT nCount)
{
    if (m_nPosition >= m_data.size())
    {
        return 0;
    }
    const UINT count = static_cast<UINT>(std::min<std::size_t>(nCount, m_data.size() - m_nPosition));
    std::copy_n(m_data.begin() + static_cast<std::ptrdiff_t>(m_nPosition), count, static_cast<BYTE*>(lpBuf));
    m_nPosition += count;
    return count;
}

void CMemFile::Write(const void* lpBuf, UINT nCount)
{
    if (nCount == 0)
    {
        return;
    }
    if (m_nPosition + nCount > m_data.size())
    {
        SetLength(m_nPosition + nCount);
    }
    memcpy(m_data.data() + m_nPosition, lpBuf, nCount);
    m_nPosition += nCount;
}

void CMemFile::Flush()
{
}

ULONGLONG CMemFile::Seek(LONGLONG lOff, UINT nFrom)
{
    const auto base = nFrom == begin ? 0 : nFrom == current ? m_nPosition : m_data.size();
    const LONGLONG position = static_cast<LONGLONG>(base) + lOff;
    if (position < 0)
    {
        AfxThrowFileException(CFileException::badSeek);
    }
    m_nPosition = static_cast<std::size_t>(position);
    return m_nPosition;
}

ULONGLONG CMemFile::GetPosition() const
{
    return m_nPosition;
}

ULONGLONG CMemFile::GetLength() const
{
    return m_data.size();
}

void CMemFile::SetLength(ULONGLONG dwNewLen)
{
    try
    {
        m_data.resize(static_cast<std::size_t>(dwNewLen));
    }
    catch (const std::exception&)
    {
        AfxThrowMemoryException();
    }
}

void CMemFile::LockRange(ULONGLONG, ULONGLONG)
{
    AfxThrowNotSupportedException();
}

void CMemFile::UnlockRange(ULONGLONG, ULONGLONG)
{
    AfxThrowNotSupportedException();
}

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
    const auto* bytes = static_cast<const BYTE*>(lpBuf);
    try
    {
        m_data.insert(m_data.end(), bytes, bytes + nCount);
    }
    catch (const std::exception&)
    {
        AfxThrowMemoryException();
    }
}

ULONGLONG CMemFile::GetLength() const
{
    return m_data.size();
}

#include "afx.h"

#include <algorithm>
#include <cstring>

IMPLEMENT_DYNAMIC(CStdioFile, CFile)

namespace
{
constexpr std::size_t bufferSize = std::size_t{16} * 1024;
}

CStdioFile::CStdioFile() = default;

CStdioFile::CStdioFile(LPCTSTR lpszFileName, UINT nOpenFlags)
    : CFile(lpszFileName, nOpenFlags), m_bText((nOpenFlags & typeBinary) == 0)
{
}

CStdioFile::~CStdioFile()
{
    if (m_hFile != hFileNull)
    {
        try
        {
            FlushWrites();
        }
        catch (CException* e)
        {
            // Nobody is left to tell; whoever must know calls Close.
            e->Delete();
        }
    }
}

BOOL CStdioFile::Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError)
{
    m_bText = (nOpenFlags & typeBinary) == 0;
    m_write.clear();
    m_read.clear();
    m_nReadPos = 0;
    return CFile::Open(lpszFileName, nOpenFlags, pError);
}

void CStdioFile::Close()
{
    try
    {
        FlushWrites();
    }
    catch (CException*)
    {
        Abort();
        throw;
    }
    DropReadAhead();
    CFile::Close();
}

void CStdioFile::Abort()
{
    m_write.clear();
    m_read.clear();
    m_nReadPos = 0;
    CFile::Abort();
}

void CStdioFile::FlushWrites()
{
    // Taken out first: what the disk refuses once is not written a second time at a wrong place.
    std::vector<char> pending;
    pending.swap(m_write);
    if (!pending.empty())
    {
        CFile::Write(pending.data(), static_cast<UINT>(pending.size()));
    }
}

void CStdioFile::DropReadAhead()
{
    const auto ahead = static_cast<LONGLONG>(m_read.size() - m_nReadPos);
    m_read.clear();
    m_nReadPos = 0;
    if (ahead != 0)
    {
        CFile::Seek(-ahead, current);
    }
}

int CStdioFile::GetChar()
{
    for (;;)
    {
        if (m_nReadPos == m_read.size())
        {
            m_read.resize(bufferSize);
            m_nReadPos = 0;
            m_read.resize(CFile::Read(m_read.data(), static_cast<UINT>(m_read.size())));
            if (m_read.empty())
            {
                return -1;
            }
        }
        const char ch = m_read[m_nReadPos++];
        if (!m_bText || ch != '\r')
        {
            return static_cast<unsigned char>(ch);
        }
        if (m_nReadPos == m_read.size())
        {
            // The byte after a carriage return decides: fetch it behind this one.
            char next = 0;
            if (CFile::Read(&next, 1) == 0)
            {
                return '\r';
            }
            m_read.assign(1, next);
            m_nReadPos = 0;
        }
        if (m_read[m_nReadPos] != '\n')
        {
            return '\r';
        }
    }
}

UINT CStdioFile::Read(void* lpBuf, UINT nCount)
{
    FlushWrites();
    auto* out = static_cast<char*>(lpBuf);
    UINT count = 0;
    for (int ch; count < nCount && (ch = GetChar()) >= 0; ++count)
    {
        out[count] = static_cast<char>(ch);
    }
    return count;
}

void CStdioFile::Write(const void* lpBuf, UINT nCount)
{
    DropReadAhead();
    const auto* in = static_cast<const char*>(lpBuf);
    for (UINT i = 0; i < nCount; ++i)
    {
        if (m_bText && in[i] == '\n')
        {
            m_write.push_back('\r');
        }
        m_write.push_back(in[i]);
        if (m_write.size() >= bufferSize)
        {
            FlushWrites();
        }
    }
}

void CStdioFile::Flush()
{
    FlushWrites();
    CFile::Flush();
}

ULONGLONG CStdioFile::Seek(LONGLONG lOff, UINT nFrom)
{
    FlushWrites();
    DropReadAhead();
    return CFile::Seek(lOff, nFrom);
}

ULONGLONG CStdioFile::GetPosition() const
{
    return CFile::GetPosition() + m_write.size() - (m_read.size() - m_nReadPos);
}

ULONGLONG CStdioFile::GetLength() const
{
    return std::max(CFile::GetLength(), m_write.empty() ? 0 : GetPosition());
}

void CStdioFile::SetLength(ULONGLONG dwNewLen)
{
    FlushWrites();
    DropReadAhead();
    CFile::SetLength(dwNewLen);
}

void CStdioFile::WriteString(LPCTSTR lpsz)
{
    ENSURE(lpsz != nullptr);
    Write(lpsz, static_cast<UINT>(strlen(lpsz)));
}

LPTSTR CStdioFile::ReadString(LPTSTR lpsz, UINT nMax)
{
    ENSURE(lpsz != nullptr && nMax > 0);
    FlushWrites();
    UINT count = 0;
    for (int ch = 0; count + 1 < nMax && ch != '\n' && (ch = GetChar()) >= 0;)
    {
        lpsz[count++] = static_cast<char>(ch);
    }
    lpsz[count] = '\0';
    return count != 0 ? lpsz : nullptr;
}

BOOL CStdioFile::ReadString(CString& rString)
{
    FlushWrites();
    rString.Empty();
    int ch = GetChar();
    if (ch < 0)
    {
        return FALSE;
    }
    for (; ch >= 0 && ch != '\n'; ch = GetChar())
    {
        rString.AppendChar(static_cast<char>(ch));
    }
    return TRUE;
}

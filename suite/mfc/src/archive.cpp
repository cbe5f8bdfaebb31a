#include "afx.h"

#include <algorithm>
#include <cstring>

namespace
{
constexpr std::size_t smallestBuffer = 128;
} // namespace

CArchive::CArchive(CFile* pFile, UINT nMode, int nBufSize, void*)
    : m_pFile(pFile), m_nMode(nMode),
      m_nBufferSize(std::max(static_cast<std::size_t>(std::max(nBufSize, 0)), smallestBuffer))
{
    ENSURE(pFile != nullptr);
}

CArchive::~CArchive()
{
    if (m_pFile != nullptr)
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

void CArchive::CheckMode(Mode mode) const
{
    ENSURE(m_pFile != nullptr);
    if (m_nMode != mode)
    {
        AfxThrowArchiveException(mode == load ? CArchiveException::writeOnly : CArchiveException::readOnly,
                                 m_pFile->GetFilePath());
    }
}

UINT CArchive::Read(void* lpBuf, UINT nMax)
{
    CheckMode(load);
    auto* out = static_cast<BYTE*>(lpBuf);
    UINT count = 0;
    while (count < nMax)
    {
        if (m_nBufferPos == m_buffer.size())
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
    CheckMode(store);
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
    // Taken out first: what the disk refuses once is not written a second time at a wrong place.
    std::vector<BYTE> pending;
    pending.swap(m_buffer);
    if (!pending.empty())
    {
        m_pFile->Write(pending.data(), static_cast<UINT>(pending.size()));
    }
    pending.clear();
    m_buffer.swap(pending); // keeps the memory
}

void CArchive::Close()
{
    ENSURE(m_pFile != nullptr);
    try
    {
        if (IsStoring())
        {
            Flush();
        }
    }
    catch (CException*)
    {
        Abort();
        throw;
    }
    Abort();
}

void CArchive::Abort()
{
    m_buffer.clear();
    m_nBufferPos = 0;
    m_pFile = nullptr;
}

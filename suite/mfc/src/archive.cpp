#include "afx.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

namespace
{
// What the stream says ahead of an object.
constexpr WORD nullTag = 0;
constexpr WORD newClassTag = 0xFFFF;    // a class not met before follows
constexpr WORD classTag = 0x8000;       // with the index of a class met before
constexpr WORD bigObjectTag = 0x7FFF;   // the index follows in 32 bits
constexpr DWORD bigClassTag = 0x80000000;

constexpr std::size_t smallestBuffer = 128;
constexpr std::size_t textPiece = std::size_t{64} * 1024;
// Objects inside objects: deeper than any record is, and far from the end of the stack.
constexpr int deepestObject = 256;
} // namespace

// What has been stored or loaded so far; classes and objects share one numbering from 1 (0 is null).
struct CArchive::ObjectMaps
{
    struct Loaded
    {
        CRuntimeClass* pClass; // null: an object
        CObject* pObject;
    };
    std::map<const void*, DWORD> stored;
    std::vector<Loaded> loaded;
    int depth = 0;

    DWORD NextIndex() const
    {
        return static_cast<DWORD>(stored.size()) + 1;
    }
};

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

void CArchive::WriteString(LPCTSTR lpsz)
{
    ENSURE(lpsz != nullptr);
    Write(lpsz, static_cast<UINT>(strlen(lpsz)));
}

BOOL CArchive::ReadString(CString& rString)
{
    rString.Empty();
    char ch = 0;
    BOOL any = FALSE;
    while (Read(&ch, 1) == 1)
    {
        any = TRUE;
        if (ch == '\n')
        {
            rString.TrimRight('\r');
            break;
        }
        rString.AppendChar(ch);
    }
    return any;
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

// ---------------------------------------------------------------------------------------------------------
// Objects

CArchive::ObjectMaps& CArchive::Maps()
{
    if (m_pMaps == nullptr)
    {
        m_pMaps = std::make_unique<ObjectMaps>();
    }
    return *m_pMaps;
}

UINT CArchive::GetObjectSchema()
{
    return std::exchange(m_nObjectSchema, static_cast<UINT>(-1));
}

void CArchive::SetObjectSchema(UINT nSchema)
{
    m_nObjectSchema = nSchema;
}

void CRuntimeClass::Store(CArchive& ar) const
{
    const auto length = static_cast<WORD>(strlen(m_lpszClassName));
    ar << static_cast<WORD>(m_wSchema) << length;
    ar.Write(m_lpszClassName, length);
}

CRuntimeClass* CRuntimeClass::Load(CArchive& ar, UINT* pwSchemaNum)
{
    WORD schema = 0;
    WORD length = 0;
    char name[64] = {};
    ar >> schema >> length;
    if (length >= sizeof(name))
    {
        return nullptr;
    }
    ar.EnsureRead(name, length);
    *pwSchemaNum = schema;
    return FromName(name);
}

void CArchive::WriteClass(const CRuntimeClass* pClass)
{
    ObjectMaps& maps = Maps();
    const auto known = maps.stored.find(pClass);
    if (known == maps.stored.end())
    {
        *this << newClassTag;
        pClass->Store(*this);
        maps.stored.emplace(pClass, maps.NextIndex());
    }
    else if (known->second < bigObjectTag)
    {
        *this << static_cast<WORD>(classTag | known->second);
    }
    else
    {
        *this << bigObjectTag << (bigClassTag | known->second);
    }
}

void CArchive::WriteObject(const CObject* pOb)
{
    CheckMode(false);
    ObjectMaps& maps = Maps();
    if (pOb == nullptr)
    {
        *this << nullTag;
        return;
    }
    const auto known = maps.stored.find(pOb);
    if (known != maps.stored.end())
    {
        if (known->second < bigObjectTag)
        {
            *this << static_cast<WORD>(known->second);
        }
        else
        {
            *this << bigObjectTag << known->second;
        }
        return;
    }
    if (!pOb->IsSerializable())
    {
        AfxThrowNotSupportedException();
    }
    WriteClass(pOb->GetRuntimeClass());
    maps.stored.emplace(pOb, maps.NextIndex());
    const_cast<CObject*>(pOb)->Serialize(*this);
}

CRuntimeClass* CArchive::ReadClass(const CRuntimeClass* pClass, DWORD wTag, UINT* pSchema)
{
    ObjectMaps& maps = Maps();
    CRuntimeClass* found = nullptr;
    if (wTag == newClassTag)
    {
        found = CRuntimeClass::Load(*this, pSchema);
        if (found == nullptr)
        {
            AfxThrowArchiveException(CArchiveException::badClass, m_pFile->GetFilePath());
        }
        if ((found->m_wSchema & ~VERSIONABLE_SCHEMA) != *pSchema && (found->m_wSchema & VERSIONABLE_SCHEMA) == 0)
        {
            AfxThrowArchiveException(CArchiveException::badSchema, m_pFile->GetFilePath());
        }
        maps.loaded.push_back({found, nullptr});
    }
    else
    {
        const DWORD index = wTag & ~bigClassTag;
        if (index == 0 || index > maps.loaded.size() || maps.loaded[index - 1].pClass == nullptr)
        {
            AfxThrowArchiveException(CArchiveException::badIndex, m_pFile->GetFilePath());
        }
        found = maps.loaded[index - 1].pClass;
        *pSchema = found->m_wSchema & ~VERSIONABLE_SCHEMA;
    }
    if (pClass != nullptr && !found->IsDerivedFrom(pClass))
    {
        AfxThrowArchiveException(CArchiveException::badClass, m_pFile->GetFilePath());
    }
    return found;
}

CObject* CArchive::ReadObject(const CRuntimeClass* pClass)
{
    CheckMode(true);
    ObjectMaps& maps = Maps();
    WORD tag = 0;
    *this >> tag;
    DWORD wide = tag;
    if (tag == bigObjectTag)
    {
        *this >> wide;
    }
    else if (tag != newClassTag && (tag & classTag) != 0)
    {
        wide = bigClassTag | static_cast<DWORD>(tag & ~classTag);
    }

    if (tag != newClassTag && (wide & bigClassTag) == 0)
    {
        if (wide == 0)
        {
            return nullptr;
        }
        if (wide > maps.loaded.size() || maps.loaded[wide - 1].pObject == nullptr)
        {
            AfxThrowArchiveException(CArchiveException::badIndex, m_pFile->GetFilePath());
        }
        CObject* object = maps.loaded[wide - 1].pObject;
        if (pClass != nullptr && !object->IsKindOf(pClass))
        {
            AfxThrowArchiveException(CArchiveException::badClass, m_pFile->GetFilePath());
        }
        return object;
    }

    if (maps.depth >= deepestObject)
    {
        AfxThrowArchiveException(CArchiveException::badIndex, m_pFile->GetFilePath());
    }
    UINT schema = 0;
    CRuntimeClass* found = ReadClass(pClass, wide, &schema);
    std::unique_ptr<CObject> object(found->CreateObject());
    if (object == nullptr)
    {
        AfxThrowArchiveException(CArchiveException::badClass, m_pFile->GetFilePath());
    }
    maps.loaded.push_back({nullptr, object.get()});
    const UINT outerSchema = std::exchange(m_nObjectSchema, schema);
    ++maps.depth;
    object->Serialize(*this);
    --maps.depth;
    m_nObjectSchema = outerSchema;
    return object.release();
}

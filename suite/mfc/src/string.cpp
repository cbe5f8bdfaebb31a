#include "afx.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace
{
LPCSTR OrEmpty(LPCSTR psz)
{
    return psz != nullptr ? psz : "";
}

std::string FromWide(LPCWSTR lpch, int nLength)
{
    std::string narrow;
    if (nLength > 0)
    {
        const int size = WideCharToMultiByte(CP_ACP, 0, lpch, nLength, nullptr, 0, nullptr, nullptr);
        narrow.resize(static_cast<std::size_t>(size));
        WideCharToMultiByte(CP_ACP, 0, lpch, nLength, narrow.data(), size, nullptr, nullptr);
    }
    return narrow;
}

std::string FromWide(LPCWSTR lpsz)
{
    return lpsz != nullptr ? FromWide(lpsz, lstrlenW(lpsz)) : std::string();
}

constexpr LPCSTR blanks = " \t\n\v\f\r";

// What each byte folds to for comparing without case. A system code page with lead bytes folds by pairs,
// which a table of bytes cannot do.
struct FoldTable
{
    FoldTable()
    {
        CPINFO info = {};
        singleByte = GetCPInfo(CP_ACP, &info) && info.MaxCharSize == 1;
        for (int i = 0; i < 256; ++i)
        {
            byte[i] = static_cast<char>(i);
        }
        CharLowerBuffA(byte, 256);
    }
    bool singleByte;
    char byte[256];
};

int Sign(int value)
{
    return (value > 0) - (value < 0);
}

std::string FormatText(LPCSTR lpszFormat, va_list args)
{
    ENSURE(lpszFormat != nullptr);
    char fixed[512];
    va_list again;
    va_copy(again, args);
    std::string text;
    const int length = vsnprintf(fixed, sizeof(fixed), lpszFormat, args);
    if (length >= 0 && static_cast<std::size_t>(length) < sizeof(fixed))
    {
        text.assign(fixed, static_cast<std::size_t>(length));
    }
    else if (length >= 0)
    {
        text.resize(static_cast<std::size_t>(length));
        vsnprintf(text.data(), text.size() + 1, lpszFormat, again);
    }
    va_end(again);
    ENSURE(length >= 0);
    return text;
}
} // namespace

CString::CString(LPCSTR lpsz)
{
    if (lpsz != nullptr && IS_INTRESOURCE(lpsz))
    {
        LoadString(LOWORD(reinterpret_cast<ULONG_PTR>(lpsz)));
    }
    else
    {
        m_str = OrEmpty(lpsz);
    }
}

CString::CString(LPCSTR lpch, int nLength)
{
    ENSURE(nLength == 0 || (nLength > 0 && lpch != nullptr));
    m_str.assign(OrEmpty(lpch), static_cast<std::size_t>(nLength));
}

CString::CString(LPCWSTR lpsz) : m_str(FromWide(lpsz))
{
}

CString::CString(char ch, int nRepeat)
{
    ENSURE(nRepeat >= 0);
    m_str.assign(static_cast<std::size_t>(nRepeat), ch);
}

CString& CString::operator=(LPCSTR lpsz)
{
    m_str = OrEmpty(lpsz);
    return *this;
}

void CString::Empty()
{
    std::string().swap(m_str);
}

char CString::GetAt(int nIndex) const
{
    // The terminator may be read too.
    ENSURE(nIndex >= 0 && nIndex <= GetLength());
    return m_str.c_str()[nIndex];
}

CString& CString::operator+=(const CString& str)
{
    m_str += str.m_str;
    return *this;
}

CString& CString::operator+=(LPCSTR lpsz)
{
    m_str += OrEmpty(lpsz);
    return *this;
}

CString& CString::operator+=(char ch)
{
    m_str += ch;
    return *this;
}

int CString::Compare(LPCSTR lpsz) const
{
    return Sign(strcmp(m_str.c_str(), OrEmpty(lpsz)));
}

int CString::CompareNoCase(LPCSTR lpsz) const
{
    static const FoldTable fold;
    if (!fold.singleByte)
    {
        std::string left(m_str);
        std::string right(OrEmpty(lpsz));
        CharLowerBuffA(left.data(), static_cast<DWORD>(left.length()));
        CharLowerBuffA(right.data(), static_cast<DWORD>(right.length()));
        return Sign(left.compare(right));
    }
    const auto folded = [](char ch) {
        return static_cast<unsigned char>(fold.byte[static_cast<unsigned char>(ch)]);
    };
    LPCSTR left = m_str.c_str();
    LPCSTR right = OrEmpty(lpsz);
    while (*left != '\0' && folded(*left) == folded(*right))
    {
        ++left;
        ++right;
    }
    return Sign(folded(*left) - folded(*right));
}

CString CString::Mid(int nFirst) const
{
    return Mid(nFirst, GetLength());
}

CString CString::Mid(int nFirst, int nCount) const
{
    const int first = std::clamp(nFirst, 0, GetLength());
    const int count = std::clamp(nCount, 0, GetLength() - first);
    return CString(m_str.c_str() + first, count);
}

CString CString::Left(int nCount) const
{
    return Mid(0, nCount);
}

CString CString::Right(int nCount) const
{
    return Mid(GetLength() - std::clamp(nCount, 0, GetLength()));
}

CString CString::SpanIncluding(LPCSTR lpszCharSet) const
{
    return Left(static_cast<int>(strspn(m_str.c_str(), OrEmpty(lpszCharSet))));
}

CString CString::SpanExcluding(LPCSTR lpszCharSet) const
{
    return Left(static_cast<int>(strcspn(m_str.c_str(), OrEmpty(lpszCharSet))));
}

CString CString::Tokenize(LPCSTR lpszTokens, int& iStart) const
{
    ENSURE(iStart >= 0);
    const std::size_t first = m_str.find_first_not_of(OrEmpty(lpszTokens), static_cast<std::size_t>(iStart));
    if (first == std::string::npos)
    {
        iStart = -1;
        return CString();
    }
    const std::size_t end = std::min(m_str.find_first_of(OrEmpty(lpszTokens), first), m_str.length());
    iStart = static_cast<int>(end) + 1;
    return CString(m_str.c_str() + first, static_cast<int>(end - first));
}

CString& CString::MakeUpper()
{
    CharUpperBuffA(m_str.data(), static_cast<DWORD>(m_str.length()));
    return *this;
}

CString& CString::Trim()
{
    return TrimRight().TrimLeft();
}

CString& CString::TrimLeft()
{
    m_str.erase(0, m_str.find_first_not_of(blanks));
    return *this;
}

CString& CString::TrimRight()
{
    m_str.erase(m_str.find_last_not_of(blanks) + 1);
    return *this;
}

int CString::Replace(LPCSTR lpszOld, LPCSTR lpszNew)
{
    const std::string_view oldText(OrEmpty(lpszOld));
    if (oldText.empty())
    {
        return 0;
    }
    int count = 0;
    std::string result;
    std::size_t from = 0;
    for (std::size_t at; (at = m_str.find(oldText, from)) != std::string::npos; from = at + oldText.length())
    {
        result.append(m_str, from, at - from).append(OrEmpty(lpszNew));
        ++count;
    }
    if (count != 0)
    {
        result.append(m_str, from);
        m_str.swap(result);
    }
    return count;
}

int CString::Delete(int nIndex, int nCount)
{
    const int first = std::clamp(nIndex, 0, GetLength());
    m_str.erase(static_cast<std::size_t>(first),
                static_cast<std::size_t>(std::clamp(nCount, 0, GetLength() - first)));
    return GetLength();
}

int CString::Find(char ch, int nStart) const
{
    return nStart < 0 ? -1 : static_cast<int>(m_str.find(ch, static_cast<std::size_t>(nStart)));
}

int CString::Find(LPCSTR lpszSub, int nStart) const
{
    return nStart < 0 || lpszSub == nullptr
               ? -1
               : static_cast<int>(m_str.find(lpszSub, static_cast<std::size_t>(nStart)));
}

int CString::ReverseFind(char ch) const
{
    return static_cast<int>(m_str.rfind(ch));
}

int CString::FindOneOf(LPCSTR lpszCharSet) const
{
    return static_cast<int>(m_str.find_first_of(OrEmpty(lpszCharSet)));
}

void CString::Format(LPCSTR lpszFormat, ...)
{
    va_list args;
    va_start(args, lpszFormat);
    FormatV(lpszFormat, args);
    va_end(args);
}

void CString::Format(UINT nFormatID, ...)
{
    CString format;
    ENSURE(format.LoadString(nFormatID));
    va_list args;
    va_start(args, nFormatID);
    FormatV(format, args);
    va_end(args);
}

void CString::FormatV(LPCSTR lpszFormat, va_list args)
{
    m_str = FormatText(lpszFormat, args);
}

void CString::FormatMessage(UINT nFormatID, ...)
{
    CString format;
    ENSURE(format.LoadString(nFormatID));
    va_list args;
    va_start(args, nFormatID);
    LPSTR text = nullptr;
    const DWORD length = ::FormatMessageA(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ALLOCATE_BUFFER, format,
                                          0, 0, reinterpret_cast<LPSTR>(&text), 0, &args);
    va_end(args);
    if (length == 0 && GetLastError() == ERROR_NOT_ENOUGH_MEMORY)
    {
        AfxThrowMemoryException();
    }
    const std::unique_ptr<char, decltype(&LocalFree)> owner(text, &LocalFree);
    m_str.assign(OrEmpty(text), length);
}

BOOL CString::LoadString(UINT nID)
{
    // String resources are stored in blocks of sixteen.
    const HINSTANCE module = AfxFindStringResourceHandle(nID);
    return module != nullptr && LoadString(module, nID);
}

BOOL CString::LoadString(HINSTANCE hInstance, UINT nID)
{
    // With a size of 0 the wide call answers a pointer to the resource itself.
    LPCWSTR text = nullptr;
    const int length = ::LoadStringW(hInstance, nID, reinterpret_cast<LPWSTR>(&text), 0);
    if (length <= 0)
    {
        return FALSE;
    }
    m_str = FromWide(text, length);
    return TRUE;
}

BOOL CString::GetEnvironmentVariable(LPCSTR lpszVar)
{
    std::string value(128, '\0');
    for (;;)
    {
        SetLastError(ERROR_SUCCESS);
        const DWORD length = ::GetEnvironmentVariableA(lpszVar, value.data(), static_cast<DWORD>(value.size()));
        if (length < value.size())
        {
            value.resize(length);
            m_str.swap(value);
            return length != 0 || GetLastError() == ERROR_SUCCESS;
        }
        value.resize(length);
    }
}

LPSTR CString::GetBuffer()
{
    return m_str.data();
}

LPSTR CString::GetBuffer(int nMinBufferLength)
{
    ENSURE(nMinBufferLength >= 0);
    if (GetLength() < nMinBufferLength)
    {
        m_str.resize(static_cast<std::size_t>(nMinBufferLength));
    }
    return m_str.data();
}

void CString::ReleaseBuffer(int nNewLength)
{
    ENSURE(nNewLength <= GetLength());
    m_str.resize(nNewLength < 0 ? strlen(m_str.c_str()) : static_cast<std::size_t>(nNewLength));
}

BSTR CString::AllocSysString() const
{
    const int length = GetLength();
    const int size = MultiByteToWideChar(CP_ACP, 0, m_str.c_str(), length, nullptr, 0);
    BSTR text = SysAllocStringLen(nullptr, static_cast<UINT>(size));
    if (text == nullptr)
    {
        AfxThrowMemoryException();
    }
    MultiByteToWideChar(CP_ACP, 0, m_str.c_str(), length, text, size);
    return text;
}

CString operator+(const CString& str1, const CString& str2)
{
    CString result(str1);
    result += str2;
    return result;
}

CString operator+(const CString& str1, LPCSTR lpsz2)
{
    CString result(str1);
    result += lpsz2;
    return result;
}

CString operator+(LPCSTR lpsz1, const CString& str2)
{
    CString result;
    result = lpsz1;
    result += str2;
    return result;
}

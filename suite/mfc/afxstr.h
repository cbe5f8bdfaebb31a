// CString: narrow text in the system code page. Included through afx.h.
#pragma once

// Owns its text. A length or index out of range is met as MFC's CString does: counts are cut to what is
// there, an index outside the text throws CInvalidArgException.
class AFX_DLL_CLASS CString
{
public:
    CString() = default;
    CString(const CString& strSrc) = default;
    CString(CString&& strSrc) noexcept = default;
    // Null gives an empty text; a MAKEINTRESOURCE value loads the string resource.
    CString(LPCSTR lpsz);
    CString(LPCSTR lpch, int nLength);
    // Converted to the system code page.
    CString(LPCWSTR lpsz);
    explicit CString(char ch, int nRepeat = 1);
    ~CString() = default;

    CString& operator=(const CString& strSrc) = default;
    CString& operator=(CString&& strSrc) noexcept = default;
    CString& operator=(LPCSTR lpsz);

    int GetLength() const
    {
        return static_cast<int>(m_str.length());
    }
    BOOL IsEmpty() const
    {
        return m_str.empty();
    }
    void Empty();
    char GetAt(int nIndex) const;
    char operator[](int nIndex) const
    {
        return GetAt(nIndex);
    }
    operator LPCSTR() const
    {
        return m_str.c_str();
    }
    LPCSTR GetString() const
    {
        return m_str.c_str();
    }

    CString& operator+=(const CString& str);
    CString& operator+=(LPCSTR lpsz);
    CString& operator+=(char ch);

    // Byte order; without case, letters fold by the system's rules.
    int Compare(LPCSTR lpsz) const;
    int CompareNoCase(LPCSTR lpsz) const;

    CString Mid(int nFirst) const;
    CString Mid(int nFirst, int nCount) const;
    CString Left(int nCount) const;
    CString Right(int nCount) const;
    CString SpanIncluding(LPCSTR lpszCharSet) const;
    CString SpanExcluding(LPCSTR lpszCharSet) const;
    // The next token from iStart on; at the end an empty text, and iStart becomes -1.
    CString Tokenize(LPCSTR lpszTokens, int& iStart) const;

    CString& MakeUpper();
    CString& Trim();
    CString& TrimLeft();
    CString& TrimRight();

    // These answer how many were replaced or removed, or the new length.
    int Replace(LPCSTR lpszOld, LPCSTR lpszNew);
    int Delete(int nIndex, int nCount = 1);

    // Index of the find, or -1.
    int Find(char ch, int nStart = 0) const;
    int Find(LPCSTR lpszSub, int nStart = 0) const;
    int ReverseFind(char ch) const;
    int FindOneOf(LPCSTR lpszCharSet) const;

    AFX_PRINTF_FORMAT(2, 3) void Format(LPCSTR lpszFormat, ...);
    void Format(UINT nFormatID, ...);
    void FormatV(LPCSTR lpszFormat, va_list args);
    // Inserts of the system's kind: "%1", "%2!d!".
    void FormatMessage(UINT nFormatID, ...);

    // FALSE, with the text left alone, when there is no such string resource.
    BOOL LoadString(UINT nID);
    BOOL LoadString(HINSTANCE hInstance, UINT nID);
    BOOL GetEnvironmentVariable(LPCSTR lpszVar);

    // Between GetBuffer and ReleaseBuffer no other member may be called. The buffer takes at least
    // nMinBufferLength characters and a terminator.
    LPSTR GetBuffer();
    LPSTR GetBuffer(int nMinBufferLength);
    void ReleaseBuffer(int nNewLength = -1);

    // As a new BSTR that the caller frees.
    BSTR AllocSysString() const;

private:
    std::string m_str;
};

AFX_DLL_API CString operator+(const CString& str1, const CString& str2);
AFX_DLL_API CString operator+(const CString& str1, LPCSTR lpsz2);
AFX_DLL_API CString operator+(LPCSTR lpsz1, const CString& str2);

// clang-format off
inline bool operator==(const CString& s1, const CString& s2) { return s1.Compare(s2) == 0; }
inline bool operator==(const CString& s1, LPCSTR s2) { return s1.Compare(s2) == 0; }
inline bool operator==(LPCSTR s1, const CString& s2) { return s2.Compare(s1) == 0; }
inline bool operator==(const CString& s1, char ch2) { return s1.GetLength() == 1 && s1[0] == ch2; }
inline bool operator!=(const CString& s1, const CString& s2) { return s1.Compare(s2) != 0; }
inline bool operator!=(const CString& s1, LPCSTR s2) { return s1.Compare(s2) != 0; }
inline bool operator!=(LPCSTR s1, const CString& s2) { return s2.Compare(s1) != 0; }
inline bool operator<(const CString& s1, const CString& s2) { return s1.Compare(s2) < 0; }
inline bool operator<(const CString& s1, LPCSTR s2) { return s1.Compare(s2) < 0; }
inline bool operator<(LPCSTR s1, const CString& s2) { return s2.Compare(s1) > 0; }
inline bool operator>(const CString& s1, const CString& s2) { return s1.Compare(s2) > 0; }
inline bool operator>(const CString& s1, LPCSTR s2) { return s1.Compare(s2) > 0; }
inline bool operator>(LPCSTR s1, const CString& s2) { return s2.Compare(s1) < 0; }
inline bool operator<=(const CString& s1, const CString& s2) { return s1.Compare(s2) <= 0; }
inline bool operator<=(const CString& s1, LPCSTR s2) { return s1.Compare(s2) <= 0; }
inline bool operator<=(LPCSTR s1, const CString& s2) { return s2.Compare(s1) >= 0; }
inline bool operator>=(const CString& s1, const CString& s2) { return s1.Compare(s2) >= 0; }
inline bool operator>=(const CString& s1, LPCSTR s2) { return s1.Compare(s2) >= 0; }
inline bool operator>=(LPCSTR s1, const CString& s2) { return s2.Compare(s1) <= 0; }
// clang-format on

// Files and archives: CFile, CStdioFile, CMemFile, CFileFind, CArchive. Included through afx.h.
#pragma once

struct CFileStatus
{
    CTime m_ctime;           // created
    CTime m_mtime;           // last written
    CTime m_atime;           // last read
    ULONGLONG m_size = 0;    // bytes
    DWORD m_attribute = 0;   // CFile::Attribute bits
    TCHAR m_szFullName[MAX_PATH] = {};
};

// A file opened for unbuffered binary access; owns its handle and closes it when destroyed. Failures throw
// CFileException. A write that the disk takes only in part is a failure (diskFull).
class AFX_DLL_CLASS CFile : public CObject
{
    DECLARE_DYNAMIC(CFile)
public:
    enum OpenFlags
    {
        modeRead = 0x00000,
        modeWrite = 0x00001,
        modeReadWrite = 0x00002,
        shareCompat = 0x00000, // as shareExclusive
        shareExclusive = 0x00010,
        shareDenyWrite = 0x00020,
        shareDenyRead = 0x00030,
        shareDenyNone = 0x00040,
        modeNoInherit = 0x00080,
        modeCreate = 0x01000,
        modeNoTruncate = 0x02000,
        typeText = 0x04000,
        typeBinary = 0x08000,
        osNoBuffer = 0x10000,
        osWriteThrough = 0x20000,
        osRandomAccess = 0x40000,
        osSequentialScan = 0x80000
    };

    enum Attribute
    {
        normal = 0x00,
        readOnly = 0x01,
        hidden = 0x02,
        system = 0x04,
        volume = 0x08,
        directory = 0x10,
        archive = 0x20
    };

    enum SeekPosition
    {
        begin = 0,
        current = 1,
        end = 2
    };

    static const HANDLE hFileNull;

    CFile();
    CFile(LPCTSTR lpszFileName, UINT nOpenFlags);
    ~CFile() override;

    operator HANDLE() const
    {
        return m_hFile;
    }

    // FALSE when the file cannot be opened; the reason goes to *pError when given. Nothing is thrown.
    virtual BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr);
    virtual void Close();  // throws when what was written cannot be kept
    virtual void Abort();  // closes, failures ignored

    virtual UINT Read(void* lpBuf, UINT nCount); // fewer than nCount only at the end of the file
    virtual void Write(const void* lpBuf, UINT nCount);
    virtual void Flush();
    virtual ULONGLONG Seek(LONGLONG lOff, UINT nFrom);
    virtual ULONGLONG GetPosition() const;
    virtual ULONGLONG GetLength() const;
    virtual void SetLength(ULONGLONG dwNewLen);
    virtual void LockRange(ULONGLONG dwPos, ULONGLONG dwCount);
    virtual void UnlockRange(ULONGLONG dwPos, ULONGLONG dwCount);

    virtual CString GetFileName() const;  // with extension
    virtual CString GetFileTitle() const; // without extension
    virtual CString GetFilePath() const;
    virtual void SetFilePath(LPCTSTR lpszNewName);

    static BOOL GetStatus(LPCTSTR lpszFileName, CFileStatus& rStatus);

    HANDLE m_hFile;

protected:
    CString m_strFileName;
    BOOL m_bCloseOnDelete;
};

// A file in memory that grows as it is written; owns its memory.
class AFX_DLL_CLASS CMemFile : public CFile
{
    DECLARE_DYNAMIC(CMemFile)
public:
    explicit CMemFile(UINT nGrowBytes = 1024);
    CMemFile(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes = 0); // a copy of the buffer
    ~CMemFile() override;

    const BYTE* GetBufferPtr() const
    {
        return m_data.data();
    }

    BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr) override;
    void Close() override;
    void Abort() override;
    UINT Read(void* lpBuf, UINT nCount) override;
    void Write(const void* lpBuf, UINT nCount) override;
    void Flush() override;
    ULONGLONG Seek(LONGLONG lOff, UINT nFrom) override;
    ULONGLONG GetPosition() const override;
    ULONGLONG GetLength() const override;
    void SetLength(ULONGLONG dwNewLen) override;
    void LockRange(ULONGLONG dwPos, ULONGLONG dwCount) override;
    void UnlockRange(ULONGLONG dwPos, ULONGLONG dwCount) override;

private:
    std::vector<BYTE> m_data;
    std::size_t m_nPosition = 0;
};

// Lists the files that match a pattern; owns its search handle. FindFile starts, and each FindNextFile
// makes the next file current and tells whether more follow:
//     BOOL working = finder.FindFile(pattern);
//     while (working) { working = finder.FindNextFile(); use(finder.GetFileName()); }
class AFX_DLL_CLASS CFileFind : public CObject
{
    DECLARE_DYNAMIC(CFileFind)
public:
    CFileFind();
    ~CFileFind() override;

    virtual BOOL FindFile(LPCTSTR pstrName = nullptr, DWORD dwUnused = 0);
    virtual BOOL FindNextFile();
    void Close();

    virtual CString GetFileName() const;
    virtual CString GetFilePath() const;
    virtual CString GetFileTitle() const;
    virtual BOOL GetLastWriteTime(FILETIME* pTimeStamp) const;
    virtual BOOL GetLastWriteTime(CTime& refTime) const;
    virtual BOOL GetCreationTime(FILETIME* pTimeStamp) const;
    virtual BOOL GetCreationTime(CTime& refTime) const;
    virtual BOOL MatchesMask(DWORD dwMask) const;
    virtual BOOL IsDots() const;
    BOOL IsDirectory() const
    {
        return MatchesMask(FILE_ATTRIBUTE_DIRECTORY);
    }

private:
    HANDLE m_hFind = INVALID_HANDLE_VALUE;
    WIN32_FIND_DATAA m_current = {};
    WIN32_FIND_DATAA m_next = {};
    bool m_bHaveCurrent = false;
    bool m_bHaveNext = false;
    CString m_strRoot; // ends with a backslash
};

// Stores values to, or loads them from, a file that the caller owns and keeps open. Loading treats the file
// as untrusted: what is cut short throws CArchiveException::endOfFile, and no length in it makes memory be
// taken that the file has no bytes for. Call Close when done: it alone reports what could not be written.
class AFX_DLL_CLASS CArchive
{
public:
    enum Mode
    {
        store = 0,
        load = 1,
        bNoFlushOnDelete = 2,
        bNoByteSwap = 4
    };

    CArchive(CFile* pFile, UINT nMode, int nBufSize = 4096, void* lpBuf = nullptr);
    ~CArchive();
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    BOOL IsLoading() const
    {
        return (m_nMode & load) != 0;
    }
    BOOL IsStoring() const
    {
        return (m_nMode & load) == 0;
    }
    BOOL IsBufferEmpty() const;
    CFile* GetFile() const
    {
        return m_pFile;
    }

    UINT Read(void* lpBuf, UINT nMax); // fewer than nMax only at the end of the file
    void Write(const void* lpBuf, UINT nMax);
    void EnsureRead(void* lpBuf, UINT nCount); // exactly nCount bytes, or endOfFile
    void Flush();
    void Close();
    void Abort(); // drops what is buffered; nothing is thrown

    void WriteCount(DWORD_PTR dwCount);
    DWORD_PTR ReadCount();

    // clang-format off
    CArchive& operator<<(BYTE by) { return StoreValue(by); }
    CArchive& operator<<(char ch) { return StoreValue(ch); }
    CArchive& operator<<(signed char ch) { return StoreValue(ch); }
    CArchive& operator<<(WORD w) { return StoreValue(w); }
    CArchive& operator<<(short w) { return StoreValue(w); }
    CArchive& operator<<(int i) { return StoreValue(i); }
    CArchive& operator<<(unsigned u) { return StoreValue(u); }
    CArchive& operator<<(LONG l) { return StoreValue(l); }
    CArchive& operator<<(DWORD dw) { return StoreValue(dw); }
    CArchive& operator<<(LONGLONG dwdw) { return StoreValue(dwdw); }
    CArchive& operator<<(ULONGLONG dwdw) { return StoreValue(dwdw); }
    CArchive& operator<<(float f) { return StoreValue(f); }
    CArchive& operator<<(double d) { return StoreValue(d); }
    CArchive& operator<<(bool b) { return StoreValue<BYTE>(b ? 1 : 0); }

    CArchive& operator>>(BYTE& by) { return LoadValue(by); }
    CArchive& operator>>(char& ch) { return LoadValue(ch); }
    CArchive& operator>>(signed char& ch) { return LoadValue(ch); }
    CArchive& operator>>(WORD& w) { return LoadValue(w); }
    CArchive& operator>>(short& w) { return LoadValue(w); }
    CArchive& operator>>(int& i) { return LoadValue(i); }
    CArchive& operator>>(unsigned& u) { return LoadValue(u); }
    CArchive& operator>>(LONG& l) { return LoadValue(l); }
    CArchive& operator>>(DWORD& dw) { return LoadValue(dw); }
    CArchive& operator>>(LONGLONG& dwdw) { return LoadValue(dwdw); }
    CArchive& operator>>(ULONGLONG& dwdw) { return LoadValue(dwdw); }
    CArchive& operator>>(float& f) { return LoadValue(f); }
    CArchive& operator>>(double& d) { return LoadValue(d); }
    CArchive& operator>>(bool& b) { BYTE by = 0; LoadValue(by); b = by != 0; return *this; }
    // clang-format on

private:
    template <class T> CArchive& StoreValue(T value)
    {
        Write(&value, sizeof(value));
        return *this;
    }
    template <class T> CArchive& LoadValue(T& value)
    {
        EnsureRead(&value, sizeof(value));
        return *this;
    }
    void CheckMode(bool bLoading) const;

    CFile* m_pFile;
    UINT m_nMode;
    std::vector<BYTE> m_buffer; // bytes not yet written, or read ahead
    std::size_t m_nBufferSize;
    std::size_t m_nBufferPos = 0; // of the next byte to load
};

AFX_DLL_API CArchive& operator<<(CArchive& ar, const CString& str);
AFX_DLL_API CArchive& operator>>(CArchive& ar, CString& str);

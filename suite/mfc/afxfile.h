// Files and archives: CFile, CMemFile, CArchive. Included through afx.h.
#pragma once

struct CFileStatus
{
    CTime m_mtime;        // last written
    ULONGLONG m_size = 0; // bytes
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
        shareCompat = 0x00000, // nobody else may open it
        shareDenyWrite = 0x00020,
        shareDenyNone = 0x00040,
        modeCreate = 0x01000 // what is there is emptied
    };

    static const HANDLE hFileNull;

    CFile();
    CFile(LPCTSTR lpszFileName, UINT nOpenFlags);
    ~CFile() override;

    // FALSE when the file cannot be opened; the reason goes to *pError when given. Nothing is thrown.
    virtual BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr);
    virtual void Abort(); // closes, failures ignored

    virtual UINT Read(void* lpBuf, UINT nCount); // fewer than nCount only at the end of the file
    virtual void Write(const void* lpBuf, UINT nCount);
    virtual ULONGLONG GetLength() const;

    virtual CString GetFilePath() const;

    static BOOL GetStatus(LPCTSTR lpszFileName, CFileStatus& rStatus);

    HANDLE m_hFile;

protected:
    CString m_strFileName;
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
    void Abort() override;
    UINT Read(void* lpBuf, UINT nCount) override;
    void Write(const void* lpBuf, UINT nCount) override;
    ULONGLONG GetLength() const override;

private:
    std::vector<BYTE> m_data;
    std::size_t m_nPosition = 0; // of the next byte to read
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
        load = 1
    };

    CArchive(CFile* pFile, UINT nMode, int nBufSize = 4096, void* lpBuf = nullptr);
    ~CArchive();
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    BOOL IsStoring() const
    {
        return m_nMode == store;
    }

    UINT Read(void* lpBuf, UINT nMax); // fewer than nMax only at the end of the file
    void Write(const void* lpBuf, UINT nMax);
    void EnsureRead(void* lpBuf, UINT nCount); // exactly nCount bytes, or endOfFile
    void Close();
    void Abort(); // drops what is buffered; nothing is thrown

    CArchive& operator<<(DWORD dw)
    {
        Write(&dw, sizeof(dw));
        return *this;
    }
    CArchive& operator>>(DWORD& dw)
    {
        EnsureRead(&dw, sizeof(dw));
        return *this;
    }

private:
    void CheckMode(Mode mode) const;
    void Flush();

    CFile* m_pFile;
    UINT m_nMode;
    std::vector<BYTE> m_buffer; // bytes not yet written, or read ahead
    std::size_t m_nBufferSize;
    std::size_t m_nBufferPos = 0; // of the next byte to load
};

// Exceptions, thrown by pointer and ended with Delete(). Included through afx.h.
#pragma once

// Whoever catches one calls Delete, or throws it on with `throw;`.
class AFX_DLL_CLASS CException : public CObject
{
    DECLARE_DYNAMIC(CException)
public:
    CException();
    // bAutoDelete FALSE: the object is not on the heap and Delete leaves it alone.
    explicit CException(BOOL bAutoDelete);
    ~CException() override;

    void Delete();
    // The text for the user, cut to the buffer of nMaxError characters; FALSE when there is none.
    virtual BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const;
    // Shows the text, or string nMessageID when the exception has none, in a message box.
    virtual int ReportError(UINT nType = MB_OK, UINT nMessageID = 0);

private:
    BOOL m_bAutoDelete;
};

// An exception with a fixed text from the framework's resources.
class AFX_DLL_CLASS CSimpleException : public CException
{
    DECLARE_DYNAMIC(CSimpleException)
public:
    CSimpleException(BOOL bAutoDelete, UINT nResourceID);

    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;

private:
    UINT m_nResourceID = 0;
};

class AFX_DLL_CLASS CMemoryException : public CSimpleException
{
    DECLARE_DYNAMIC(CMemoryException)
public:
    CMemoryException();
};

class AFX_DLL_CLASS CResourceException : public CSimpleException
{
    DECLARE_DYNAMIC(CResourceException)
public:
    CResourceException();
};

// Stops an operation after the user has been told; it has no text of its own.
class AFX_DLL_CLASS CUserException : public CSimpleException
{
    DECLARE_DYNAMIC(CUserException)
public:
    CUserException();
};

class AFX_DLL_CLASS CNotSupportedException : public CSimpleException
{
    DECLARE_DYNAMIC(CNotSupportedException)
public:
    CNotSupportedException();
};

class AFX_DLL_CLASS CInvalidArgException : public CSimpleException
{
    DECLARE_DYNAMIC(CInvalidArgException)
public:
    CInvalidArgException();
};

class AFX_DLL_CLASS CArchiveException : public CException
{
    DECLARE_DYNAMIC(CArchiveException)
public:
    enum
    {
        none,
        genericException,
        readOnly,
        endOfFile,
        writeOnly,
        badIndex,
        badClass,
        badSchema
    };

    explicit CArchiveException(int cause = none, LPCTSTR lpszArchiveName = nullptr);
    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;

    int m_cause;
    CString m_strFileName;
};

class AFX_DLL_CLASS CFileException : public CException
{
    DECLARE_DYNAMIC(CFileException)
public:
    enum
    {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    explicit CFileException(int cause = none, LONG lOsError = -1, LPCTSTR lpszFileName = nullptr);
    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;

    // The cause that belongs to a system error code.
    static int OsErrorToException(LONG lOsError);
    [[noreturn]] static void ThrowOsError(LONG lOsError, LPCTSTR lpszFileName = nullptr);

    int m_cause;
    LONG m_lOsError; // -1: none
    CString m_strFileName;
};

[[noreturn]] AFX_DLL_API void AfxThrowMemoryException();
[[noreturn]] AFX_DLL_API void AfxThrowNotSupportedException();
[[noreturn]] AFX_DLL_API void AfxThrowInvalidArgException();
[[noreturn]] AFX_DLL_API void AfxThrowResourceException();
[[noreturn]] AFX_DLL_API void AfxThrowUserException();
[[noreturn]] AFX_DLL_API void AfxThrowArchiveException(int cause, LPCTSTR lpszArchiveName = nullptr);
[[noreturn]] AFX_DLL_API void AfxThrowFileException(int cause, LONG lOsError = -1,
                                                    LPCTSTR lpszFileName = nullptr);

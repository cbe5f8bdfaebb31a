#include "afx.h"

#include "baseres.h"

#include <iterator>

// Of the windows half, on which the base depends for nothing else.
AFX_DLL_API int AfxMessageBox(LPCTSTR lpszText, UINT nType, UINT nIDHelp);

IMPLEMENT_DYNAMIC(CException, CObject)
IMPLEMENT_DYNAMIC(CSimpleException, CException)
IMPLEMENT_DYNAMIC(CMemoryException, CSimpleException)
IMPLEMENT_DYNAMIC(CResourceException, CSimpleException)
IMPLEMENT_DYNAMIC(CUserException, CSimpleException)
IMPLEMENT_DYNAMIC(CNotSupportedException, CSimpleException)
IMPLEMENT_DYNAMIC(CInvalidArgException, CSimpleException)
IMPLEMENT_DYNAMIC(CArchiveException, CException)
IMPLEMENT_DYNAMIC(CFileException, CException)

namespace
{
constexpr LONG errorDiskQuotaExceeded = 1295; // not in every SDK

void CopyText(LPTSTR lpszError, UINT nMaxError, LPCTSTR text)
{
    ENSURE(lpszError != nullptr && nMaxError > 0);
    lstrcpynA(lpszError, text, static_cast<int>(nMaxError));
}

// The text for a cause, with the file's name in place of its marker.
void CopyCauseText(LPTSTR lpszError, UINT nMaxError, UINT firstId, int cause, int lastCause,
                   const CString& fileName)
{
    CString file(fileName);
    if (file.IsEmpty())
    {
        file.LoadString(AFX_IDP_UNNAMED_FILE);
    }
    CString format;
    format.LoadString(firstId + static_cast<UINT>(cause >= 0 && cause <= lastCause ? cause : 1));
    CString text;
    AfxFormatString1(text, format, file);
    CopyText(lpszError, nMaxError, text);
}
} // namespace

// ---------------------------------------------------------------------------------------------------------
// CException

CException::CException() : m_bAutoDelete(TRUE)
{
}

CException::CException(BOOL bAutoDelete) : m_bAutoDelete(bAutoDelete)
{
}

CException::~CException() = default;

void CException::Delete()
{
    if (m_bAutoDelete)
    {
        delete this;
    }
}

BOOL CException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    if (pnHelpContext != nullptr)
    {
        *pnHelpContext = 0;
    }
    CopyText(lpszError, nMaxError, "");
    return FALSE;
}

int CException::ReportError(UINT nType, UINT nMessageID)
{
    char text[512];
    if (GetErrorMessage(text, std::size(text)))
    {
        return AfxMessageBox(text, nType, 0);
    }
    CString fallback;
    if (nMessageID == 0 || !fallback.LoadString(nMessageID))
    {
        fallback.LoadString(AFX_IDP_NO_ERROR_AVAILABLE);
    }
    return AfxMessageBox(fallback, nType, nMessageID);
}

// ---------------------------------------------------------------------------------------------------------
// The simple exceptions

CSimpleException::CSimpleException(BOOL bAutoDelete, UINT nResourceID)
    : CException(bAutoDelete), m_nResourceID(nResourceID)
{
}

BOOL CSimpleException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    CException::GetErrorMessage(lpszError, nMaxError, pnHelpContext);
    CString text;
    if (m_nResourceID == 0 || !text.LoadString(m_nResourceID))
    {
        return FALSE;
    }
    CopyText(lpszError, nMaxError, text);
    return TRUE;
}

CMemoryException::CMemoryException() : CSimpleException(TRUE, AFX_IDP_MEMORY)
{
}

CResourceException::CResourceException() : CSimpleException(TRUE, AFX_IDP_RESOURCE)
{
}

CUserException::CUserException() : CSimpleException(TRUE, 0)
{
}

CNotSupportedException::CNotSupportedException() : CSimpleException(TRUE, AFX_IDP_NOT_SUPPORTED)
{
}

CInvalidArgException::CInvalidArgException() : CSimpleException(TRUE, AFX_IDP_INVALID_ARG)
{
}

// ---------------------------------------------------------------------------------------------------------
// CArchiveException

CArchiveException::CArchiveException(int cause, LPCTSTR lpszArchiveName)
    : m_cause(cause), m_strFileName(lpszArchiveName)
{
}

BOOL CArchiveException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    CException::GetErrorMessage(lpszError, nMaxError, pnHelpContext);
    CopyCauseText(lpszError, nMaxError, AFX_IDP_ARCH_NONE, m_cause, badSchema, m_strFileName);
    return TRUE;
}

// ---------------------------------------------------------------------------------------------------------
// CFileException

CFileException::CFileException(int cause, LONG lOsError, LPCTSTR lpszFileName)
    : m_cause(cause), m_lOsError(lOsError), m_strFileName(lpszFileName)
{
}

BOOL CFileException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    CException::GetErrorMessage(lpszError, nMaxError, pnHelpContext);
    CopyCauseText(lpszError, nMaxError, AFX_IDP_FILE_NONE, m_cause, endOfFile, m_strFileName);
    return TRUE;
}

int CFileException::OsErrorToException(LONG lOsError)
{
    switch (lOsError)
    {
    case NO_ERROR:
        return none;
    case ERROR_FILE_NOT_FOUND:
        return fileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_DIRECTORY:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_NO_MORE_FILES:
        return badPath;
    case ERROR_TOO_MANY_OPEN_FILES:
    case ERROR_NO_MORE_SEARCH_HANDLES:
        return tooManyOpenFiles;
    case ERROR_ACCESS_DENIED:
    case ERROR_INVALID_ACCESS:
    case ERROR_NETWORK_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
    case ERROR_DIR_NOT_EMPTY:
    case ERROR_USER_MAPPED_FILE:
    case ERROR_DELETE_PENDING:
        return accessDenied;
    case ERROR_INVALID_HANDLE:
    case ERROR_INVALID_TARGET_HANDLE:
        return invalidFile;
    case ERROR_CURRENT_DIRECTORY:
        return removeCurrentDir;
    case ERROR_CANNOT_MAKE:
        return directoryFull;
    case ERROR_SEEK:
    case ERROR_NEGATIVE_SEEK:
    case ERROR_SEEK_ON_DEVICE:
        return badSeek;
    case ERROR_NOT_READY:
    case ERROR_CRC:
    case ERROR_BAD_UNIT:
    case ERROR_BAD_COMMAND:
    case ERROR_BAD_LENGTH:
    case ERROR_NOT_DOS_DISK:
    case ERROR_SECTOR_NOT_FOUND:
    case ERROR_WRITE_FAULT:
    case ERROR_READ_FAULT:
    case ERROR_GEN_FAILURE:
    case ERROR_WRONG_DISK:
    case ERROR_IO_DEVICE:
    case ERROR_NO_MEDIA_IN_DRIVE:
        return hardIO;
    case ERROR_SHARING_VIOLATION:
    case ERROR_SHARING_BUFFER_EXCEEDED:
        return sharingViolation;
    case ERROR_LOCK_VIOLATION:
    case ERROR_LOCK_FAILED:
    case ERROR_NOT_LOCKED:
        return lockViolation;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case errorDiskQuotaExceeded:
        return diskFull;
    case ERROR_HANDLE_EOF:
        return endOfFile;
    default:
        return genericException;
    }
}

void CFileException::ThrowOsError(LONG lOsError, LPCTSTR lpszFileName)
{
    AfxThrowFileException(OsErrorToException(lOsError), lOsError, lpszFileName);
}

// ---------------------------------------------------------------------------------------------------------

void AfxThrowMemoryException()
{
    throw new CMemoryException;
}

void AfxThrowNotSupportedException()
{
    throw new CNotSupportedException;
}

void AfxThrowInvalidArgException()
{
    throw new CInvalidArgException;
}

void AfxThrowResourceException()
{
    throw new CResourceException;
}

void AfxThrowUserException()
{
    throw new CUserException;
}

void AfxThrowArchiveException(int cause, LPCTSTR lpszArchiveName)
{
    throw new CArchiveException(cause, lpszArchiveName);
}

void AfxThrowFileException(int cause, LONG lOsError, LPCTSTR lpszFileName)
{
    throw new CFileException(cause, lOsError, lpszFileName);
}

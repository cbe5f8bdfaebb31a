#include "afxinet.h"

#include <algorithm>
#include <mutex>
#include <set>

IMPLEMENT_DYNAMIC(CInternetException, CException)
IMPLEMENT_DYNAMIC(CInternetSession, CObject)
IMPLEMENT_DYNAMIC(CHttpConnection, CObject)
IMPLEMENT_DYNAMIC(CHttpFile, CObject)

namespace
{
// The functions of WinINet that are used here. Loaded once and kept for the life of the process.
struct WinInet
{
    HMODULE module = ::LoadLibrary("wininet.dll");
    decltype(&::InternetOpenA) Open = Find<decltype(&::InternetOpenA)>("InternetOpenA");
    decltype(&::InternetConnectA) Connect = Find<decltype(&::InternetConnectA)>("InternetConnectA");
    decltype(&::InternetCloseHandle) CloseHandle =
        Find<decltype(&::InternetCloseHandle)>("InternetCloseHandle");
    decltype(&::InternetSetStatusCallbackA) SetStatusCallback =
        Find<decltype(&::InternetSetStatusCallbackA)>("InternetSetStatusCallbackA");
    decltype(&::InternetSetOptionA) SetOption = Find<decltype(&::InternetSetOptionA)>("InternetSetOptionA");
    decltype(&::InternetReadFile) ReadFile = Find<decltype(&::InternetReadFile)>("InternetReadFile");
    decltype(&::InternetQueryDataAvailable) QueryDataAvailable =
        Find<decltype(&::InternetQueryDataAvailable)>("InternetQueryDataAvailable");
    decltype(&::InternetCrackUrlA) CrackUrl = Find<decltype(&::InternetCrackUrlA)>("InternetCrackUrlA");
    decltype(&::HttpOpenRequestA) OpenRequest = Find<decltype(&::HttpOpenRequestA)>("HttpOpenRequestA");
    decltype(&::HttpSendRequestA) SendRequest = Find<decltype(&::HttpSendRequestA)>("HttpSendRequestA");
    decltype(&::HttpQueryInfoA) QueryInfo = Find<decltype(&::HttpQueryInfoA)>("HttpQueryInfoA");

    bool IsWhole() const
    {
        return Open && Connect && CloseHandle && SetStatusCallback && SetOption && ReadFile &&
               QueryDataAvailable && CrackUrl && OpenRequest && SendRequest && QueryInfo;
    }

private:
    template <typename Function> Function Find(LPCSTR pszName) const
    {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, pszName)));
    }
};

const WinInet& Inet()
{
    static const WinInet functions;
    if (!functions.IsWhole())
        AfxThrowInternetException(0, ERROR_MOD_NOT_FOUND);
    return functions;
}

/// The sessions that want to be told. A thread that the system still works on may report to one that is gone.
struct Listeners
{
    std::recursive_mutex mutex; // held while one is told, so that it is not destroyed meanwhile
    std::set<const void*> sessions;
};

Listeners& GetListeners()
{
    // Never destroyed: a request that was given up may still report while the program ends.
    static Listeners& listeners = *new Listeners;
    return listeners;
}

void CloseInet(HINTERNET& hInternet) noexcept
{
    // Only what the library made can be open, so it is there.
    if (hInternet != nullptr)
        Inet().CloseHandle(hInternet);
    hInternet = nullptr;
}
} // namespace

BOOL AfxParseURL(LPCTSTR pstrURL, DWORD& dwServiceType, CString& strServer, CString& strObject,
                 INTERNET_PORT& nPort)
{
    dwServiceType = AFX_INET_SERVICE_UNK;
    strServer.Empty();
    strObject.Empty();
    nPort = 0;
    if (pstrURL == nullptr)
        return FALSE;

    // The parts as the system finds them inside the text.
    URL_COMPONENTSA parts = {};
    parts.dwStructSize = sizeof parts;
    parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength = 1;
    if (!Inet().CrackUrl(pstrURL, 0, 0, &parts) || parts.dwHostNameLength == 0)
        return FALSE;
    switch (parts.nScheme)
    {
    case INTERNET_SCHEME_HTTP:
        dwServiceType = AFX_INET_SERVICE_HTTP;
        break;
    case INTERNET_SCHEME_HTTPS:
        dwServiceType = AFX_INET_SERVICE_HTTPS;
        break;
    case INTERNET_SCHEME_FTP:
        dwServiceType = AFX_INET_SERVICE_FTP;
        break;
    default:
        break;
    }
    strServer = CString(parts.lpszHostName, static_cast<int>(parts.dwHostNameLength));
    if (parts.dwUrlPathLength > 0)
        strObject = CString(parts.lpszUrlPath, static_cast<int>(parts.dwUrlPathLength));
    if (strObject.IsEmpty())
        strObject = "/";
    if (parts.dwExtraInfoLength > 0)
        strObject += CString(parts.lpszExtraInfo, static_cast<int>(parts.dwExtraInfoLength));
    nPort = parts.nPort;
    return TRUE;
}

// ---------------------------------------------------------------------------------------------------------
// CInternetException

CInternetException::CInternetException(DWORD dwError) : m_dwError(dwError)
{
}

BOOL CInternetException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    CException::GetErrorMessage(lpszError, nMaxError, pnHelpContext);
    const bool bOwnText = m_dwError >= INTERNET_ERROR_BASE && m_dwError <= INTERNET_ERROR_LAST;
    const HMODULE hModule = bOwnText ? ::GetModuleHandle("wininet.dll") : nullptr;
    char* pText = nullptr;
    const DWORD nLength =
        ::FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS |
                             (hModule != nullptr ? FORMAT_MESSAGE_FROM_HMODULE : FORMAT_MESSAGE_FROM_SYSTEM),
                         hModule, m_dwError, 0, reinterpret_cast<LPSTR>(&pText), 0, nullptr);
    CString str;
    if (nLength > 0)
        str = CString(pText, static_cast<int>(nLength)).TrimRight();
    ::LocalFree(pText);
    // Not every system has a text for every error.
    if (str.IsEmpty())
        str.Format("The connection to the server failed (error %lu).", static_cast<unsigned long>(m_dwError));
    lstrcpynA(lpszError, str, static_cast<int>(nMaxError));
    return TRUE;
}

void AfxThrowInternetException(DWORD_PTR dwContext, DWORD dwError)
{
    auto* const pException = new CInternetException(dwError != 0 ? dwError : ::GetLastError());
    pException->m_dwContext = dwContext;
    throw pException;
}

// ---------------------------------------------------------------------------------------------------------
// CInternetSession

CInternetSession::CInternetSession(LPCTSTR pstrAgent, DWORD_PTR dwContext, DWORD dwAccessType,
                                   LPCTSTR pstrProxyName, LPCTSTR pstrProxyBypass, DWORD dwFlags)
    : m_dwContext(dwContext)
{
    m_hSession = Inet().Open(pstrAgent, dwAccessType, pstrProxyName, pstrProxyBypass, dwFlags);
    if (m_hSession == nullptr)
        AfxThrowInternetException(m_dwContext);
}

CInternetSession::~CInternetSession()
{
    CInternetSession::Close();
}

BOOL CInternetSession::EnableStatusCallback(BOOL bEnable)
{
    ENSURE(m_hSession != nullptr);
    // Handles opened from now on take the session along as their context.
    const auto previous =
        Inet().SetStatusCallback(m_hSession, bEnable ? &CInternetSession::StatusCallback : nullptr);
    if (previous == INTERNET_INVALID_STATUS_CALLBACK)
        return FALSE;
    m_bCallback = bEnable;
    Listeners& listeners = GetListeners();
    const std::scoped_lock lock(listeners.mutex);
    if (bEnable)
        listeners.sessions.insert(this);
    else
        listeners.sessions.erase(this);
    return TRUE;
}

BOOL CInternetSession::SetOption(DWORD dwOption, DWORD dwValue)
{
    return Inet().SetOption(m_hSession, dwOption, &dwValue, sizeof dwValue);
}

CHttpConnection* CInternetSession::GetHttpConnection(LPCTSTR pstrServer, DWORD dwFlags, INTERNET_PORT nPort,
                                                     LPCTSTR pstrUserName, LPCTSTR pstrPassword)
{
    // The system hands the context back to the callback: it is the session, whatever the caller's context is.
    const auto context = m_bCallback ? reinterpret_cast<DWORD_PTR>(this) : m_dwContext;
    const HINTERNET hConnection = Inet().Connect(m_hSession, pstrServer, nPort, pstrUserName, pstrPassword,
                                                 INTERNET_SERVICE_HTTP, dwFlags, context);
    if (hConnection == nullptr)
        AfxThrowInternetException(m_dwContext);
    return new CHttpConnection(hConnection, dwFlags, context);
}

void CInternetSession::Close()
{
    if (m_hSession != nullptr && m_bCallback)
        EnableStatusCallback(FALSE);
    CloseInet(m_hSession);
}

void CInternetSession::OnStatusCallback(DWORD_PTR, DWORD, LPVOID, DWORD)
{
}

void CALLBACK CInternetSession::StatusCallback(HINTERNET, DWORD_PTR dwContext, DWORD dwStatus, LPVOID pvInfo,
                                               DWORD cbInfo)
{
    // Handles made before the callback was enabled have the caller's own number.
    auto* const pSession = reinterpret_cast<CInternetSession*>(dwContext);
    Listeners& listeners = GetListeners();
    const std::scoped_lock lock(listeners.mutex);
    if (!listeners.sessions.contains(pSession))
        return;
    try
    {
        pSession->OnStatusCallback(pSession->m_dwContext, dwStatus, pvInfo, cbInfo);
    }
    catch (CException* e)
    {
        // The system's own frames lie between here and whoever could handle it.
        e->Delete();
    }
}

// ---------------------------------------------------------------------------------------------------------
// CHttpConnection

CHttpConnection::CHttpConnection(HINTERNET hConnection, DWORD dwFlags, DWORD_PTR dwContext)
    : m_hConnection(hConnection), m_dwFlags(dwFlags), m_dwContext(dwContext)
{
}

CHttpConnection::~CHttpConnection()
{
    CloseInet(m_hConnection);
}

CHttpFile* CHttpConnection::OpenRequest(int nVerb, LPCTSTR pstrObjectName, LPCTSTR pstrReferer, DWORD_PTR,
                                        LPCTSTR* ppstrAcceptTypes, LPCTSTR pstrVersion, DWORD dwFlags)
{
    constexpr LPCTSTR verbs[] = {"POST", "GET", "HEAD", "PUT"};
    ENSURE(nVerb >= HTTP_VERB_POST && nVerb <= HTTP_VERB_PUT);
    const HINTERNET hFile =
        Inet().OpenRequest(m_hConnection, verbs[nVerb], pstrObjectName, pstrVersion, pstrReferer,
                           ppstrAcceptTypes, dwFlags | (m_dwFlags & INTERNET_FLAG_SECURE), m_dwContext);
    if (hFile == nullptr)
        AfxThrowInternetException(m_dwContext);
    return new CHttpFile(hFile, m_dwContext);
}

// ---------------------------------------------------------------------------------------------------------
// CHttpFile

CHttpFile::CHttpFile(HINTERNET hFile, DWORD_PTR dwContext) : m_hFile(hFile), m_dwContext(dwContext)
{
}

CHttpFile::~CHttpFile()
{
    CHttpFile::Close();
}

BOOL CHttpFile::SetOption(DWORD dwOption, DWORD dwValue)
{
    return Inet().SetOption(m_hFile, dwOption, &dwValue, sizeof dwValue);
}

BOOL CHttpFile::SendRequest(LPCTSTR pstrHeaders, DWORD dwHeadersLen, LPVOID lpOptional, DWORD dwOptionalLen)
{
    if (!Inet().SendRequest(m_hFile, pstrHeaders, dwHeadersLen, lpOptional, dwOptionalLen))
        AfxThrowInternetException(m_dwContext);
    return TRUE;
}

BOOL CHttpFile::QueryInfoStatusCode(DWORD& dwStatusCode) const
{
    DWORD nSize = sizeof dwStatusCode;
    dwStatusCode = 0;
    return Inet().QueryInfo(m_hFile, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &dwStatusCode, &nSize,
                            nullptr);
}

BOOL CHttpFile::QueryInfo(DWORD dwInfoLevel, CString& str) const
{
    DWORD nSize = 0;
    str.Empty();
    if (Inet().QueryInfo(m_hFile, dwInfoLevel, nullptr, &nSize, nullptr) ||
        ::GetLastError() != ERROR_INSUFFICIENT_BUFFER)
        return FALSE;
    std::vector<char> text(nSize + 1);
    if (!Inet().QueryInfo(m_hFile, dwInfoLevel, text.data(), &nSize, nullptr))
        return FALSE;
    str = CString(text.data(), static_cast<int>(nSize));
    return TRUE;
}

BOOL CHttpFile::SetReadBufferSize(UINT nReadSize)
{
    ENSURE(nReadSize > 0);
    m_nReadSize = nReadSize;
    return TRUE;
}

UINT CHttpFile::Read(void* lpBuf, UINT nCount)
{
    if (m_nReadPos == m_read.size())
    {
        // Asked first: a read alone would wait until the whole buffer is full.
        DWORD nAvailable = 0, nRead = 0;
        m_read.clear();
        m_nReadPos = 0;
        if (!Inet().QueryDataAvailable(m_hFile, &nAvailable, 0, 0))
            AfxThrowInternetException(m_dwContext);
        m_read.resize(std::min<DWORD>(nAvailable, m_nReadSize));
        const BOOL bRead = m_read.empty() ||
                           Inet().ReadFile(m_hFile, m_read.data(), static_cast<DWORD>(m_read.size()), &nRead);
        m_read.resize(nRead);
        if (!bRead)
            AfxThrowInternetException(m_dwContext);
    }
    const auto nNow = std::min<std::size_t>(nCount, m_read.size() - m_nReadPos);
    memcpy(lpBuf, m_read.data() + m_nReadPos, nNow);
    m_nReadPos += nNow;
    return static_cast<UINT>(nNow);
}

void CHttpFile::Close()
{
    CloseInet(m_hFile);
}

// Internet sessions: CInternetSession, CHttpConnection, CHttpFile over WinINet.
//
// Requests are synchronous. A session, its connections and files belong to the thread that made them; the
// status callback may arrive on a thread of the system. Failures throw CInternetException. The system library
// is loaded with the first session, so that programs that never need it do not pay for it.
#pragma once

#include "afx.h"

#include <wininet.h>

// The kinds of address that AfxParseURL tells apart.
#define AFX_INET_SERVICE_FTP INTERNET_SERVICE_FTP
#define AFX_INET_SERVICE_HTTP INTERNET_SERVICE_HTTP
#define AFX_INET_SERVICE_UNK 0x1000
#define AFX_INET_SERVICE_HTTPS 0x100B

// Takes an address apart; the port is the scheme's own where none is given, the object begins with a slash
// and holds the query. FALSE for what is no address.
AFX_DLL_API BOOL AfxParseURL(LPCTSTR pstrURL, DWORD& dwServiceType, CString& strServer, CString& strObject,
                             INTERNET_PORT& nPort);

class AFX_DLL_CLASS CInternetException : public CException
{
    DECLARE_DYNAMIC(CInternetException)
public:
    explicit CInternetException(DWORD dwError);
    // The system's text for the error.
    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;

    DWORD m_dwError;
    DWORD_PTR m_dwContext = 0;
};

// With the last error when dwError is 0.
[[noreturn]] AFX_DLL_API void AfxThrowInternetException(DWORD_PTR dwContext, DWORD dwError = 0);

class CHttpConnection;
class CHttpFile;

class AFX_DLL_CLASS CInternetSession : public CObject
{
    DECLARE_DYNAMIC(CInternetSession)
public:
    explicit CInternetSession(LPCTSTR pstrAgent = nullptr, DWORD_PTR dwContext = 1,
                              DWORD dwAccessType = INTERNET_OPEN_TYPE_PRECONFIG,
                              LPCTSTR pstrProxyName = nullptr, LPCTSTR pstrProxyBypass = nullptr,
                              DWORD dwFlags = 0);
    ~CInternetSession() override;
    CInternetSession(const CInternetSession&) = delete;
    CInternetSession& operator=(const CInternetSession&) = delete;

    operator HINTERNET() const
    {
        return m_hSession;
    }
    DWORD_PTR GetContext() const
    {
        return m_dwContext;
    }

    // Has the system tell OnStatusCallback what it does.
    BOOL EnableStatusCallback(BOOL bEnable = TRUE);
    BOOL SetOption(DWORD dwOption, DWORD dwValue);
    // The caller deletes the connection. dwFlags: INTERNET_FLAG_SECURE makes its requests secure.
    CHttpConnection* GetHttpConnection(LPCTSTR pstrServer, DWORD dwFlags,
                                       INTERNET_PORT nPort = INTERNET_INVALID_PORT_NUMBER,
                                       LPCTSTR pstrUserName = nullptr, LPCTSTR pstrPassword = nullptr);
    virtual void Close();

    virtual void OnStatusCallback(DWORD_PTR dwContext, DWORD dwInternetStatus, LPVOID lpvStatusInformation,
                                  DWORD dwStatusInformationLength);

protected:
    HINTERNET m_hSession = nullptr;
    DWORD_PTR m_dwContext;

private:
    static void CALLBACK StatusCallback(HINTERNET hInternet, DWORD_PTR dwContext, DWORD dwStatus,
                                        LPVOID pvInfo, DWORD cbInfo);
    BOOL m_bCallback = FALSE;
};

// A server of a session, which must outlive it.
class AFX_DLL_CLASS CHttpConnection : public CObject
{
    DECLARE_DYNAMIC(CHttpConnection)
public:
    enum
    {
        HTTP_VERB_POST = 0,
        HTTP_VERB_GET = 1,
        HTTP_VERB_HEAD = 2,
        HTTP_VERB_PUT = 3
    };

    CHttpConnection(HINTERNET hConnection, DWORD dwFlags, DWORD_PTR dwContext);
    ~CHttpConnection() override;
    CHttpConnection(const CHttpConnection&) = delete;
    CHttpConnection& operator=(const CHttpConnection&) = delete;

    operator HINTERNET() const
    {
        return m_hConnection;
    }

    // The caller deletes the file. pstrVersion null: HTTP/1.1.
    CHttpFile* OpenRequest(int nVerb, LPCTSTR pstrObjectName, LPCTSTR pstrReferer = nullptr,
                           DWORD_PTR dwContext = 1, LPCTSTR* ppstrAcceptTypes = nullptr,
                           LPCTSTR pstrVersion = nullptr, DWORD dwFlags = INTERNET_FLAG_EXISTING_CONNECT);

private:
    HINTERNET m_hConnection;
    DWORD m_dwFlags;
    DWORD_PTR m_dwContext;
};

// A request and its reply.
class AFX_DLL_CLASS CHttpFile : public CObject
{
    DECLARE_DYNAMIC(CHttpFile)
public:
    CHttpFile(HINTERNET hFile, DWORD_PTR dwContext);
    ~CHttpFile() override;
    CHttpFile(const CHttpFile&) = delete;
    CHttpFile& operator=(const CHttpFile&) = delete;

    operator HINTERNET() const
    {
        return m_hFile;
    }

    BOOL SetOption(DWORD dwOption, DWORD dwValue);
    BOOL SendRequest(LPCTSTR pstrHeaders, DWORD dwHeadersLen, LPVOID lpOptional, DWORD dwOptionalLen);
    // FALSE when the server never answered.
    BOOL QueryInfoStatusCode(DWORD& dwStatusCode) const;
    BOOL QueryInfo(DWORD dwInfoLevel, CString& str) const;

    // How many bytes are taken from the system at once, from the next read on.
    BOOL SetReadBufferSize(UINT nReadSize);
    // What has arrived, up to nCount bytes; waits for the first of them. 0 at the end of the reply.
    UINT Read(void* lpBuf, UINT nCount);
    void Close();

private:
    HINTERNET m_hFile;
    DWORD_PTR m_dwContext;
    UINT m_nReadSize = 4096; // bytes
    std::vector<char> m_read;
    std::size_t m_nReadPos = 0; // of m_read
};

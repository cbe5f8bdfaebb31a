// The module's client of the record-sharing service.
#pragma once

#include "cloud/protocol/commands.h"

#include <afxinet.h>

#include <memory>
#include <string>

/// How long the service may keep the user waiting, in milliseconds. Connecting and the first byte of the
/// reply together stay below a minute.
inline constexpr DWORD velConnectTimeout = 20'000;
inline constexpr DWORD velReplyTimeout = 30'000; ///< of one read or write
/// Connecting, the TLS handshake, sending and the first byte of the reply, besides a millisecond for each
/// velSlowestSending bytes that are sent.
inline constexpr DWORD velSendTimeout = 55'000;
inline constexpr std::size_t velSlowestSending = 8;
inline constexpr DWORD velWholeReplyTimeout = 180'000; ///< however steadily it drips

/// A session with the service over HTTPS. Every command is one synchronous POST to one script; it shows its
/// own failures in a message box and answers a result. User interface thread. Virtual only where a test has
/// to answer in place of the network.
class CVelInet : public CInternetSession
{
public:
    CVelInet(LPCTSTR pszAgent, DWORD_PTR dwContext, DWORD dwAccessType, LPCTSTR pszProxy,
             LPCTSTR pszProxyBypass, DWORD dwFlags);
    ~CVelInet() override;

    /// Scheme and host, and the path of the script; the address is the one behind the other. Both return 0.
    int SetServerUrl(LPCTSTR pszUrl);
    int SetCommandPath(LPCTSTR pszPath);

    /// Body of the last reply, its lines joined; empty unless its status was 200.
    const CString& GetResponse() const
    {
        return m_strResponse;
    }
    BOOL IsLoggedIn() const
    {
        return m_bLoggedIn;
    }

    /// Each of these returns 0 when the status was 200, otherwise -1.
    int Login(LPCTSTR pszUser, LPCTSTR pszPassword);
    int Logout();
    int DisplayMessage();
    int GetList();
    int GetDownloadable();
    int GetDownloadPatient(LPCTSTR pszPatientID);

    /// Each of these returns the HTTP status, 0 when none was obtained.
    int GetUpdatedPatients(LPCTSTR pszLastQueryTime);
    int AddToQueue(LPCTSTR pszXml);
    int GetRecordInfo(LPCTSTR pszPid, LPCTSTR pszID, int nSpace);
    int GetRecordInfoEx(LPCTSTR pszPid, LPCTSTR pszID, LPCTSTR pszReferralInfo);
    int GetAdhocShareInfo(LPCTSTR pszPid, LPCTSTR pszID, LPCTSTR pszEmailOrUserName, int nRecipientType);
    int StopSharingWith(LPCTSTR pszID, LPCTSTR pszRecipientID);
    int DeleteFromFrv(LPCTSTR pszPid, LPCTSTR pszID);

    /// Posts one line and returns the HTTP status, 0 when none was obtained.
    int SendCommand(const std::string& line);

protected:
    /// Flags that requests are made with.
    virtual DWORD ConnectionFlags() const;
    /// Sends on a thread of its own and waits: the system's client waits for the TLS handshake of a server
    /// that is stuck as long as that pleases. Throws ERROR_INTERNET_TIMEOUT when the time is over; the thread
    /// then keeps the request, whose handle is closed, and ends with its connection.
    virtual BOOL Post(const std::shared_ptr<CHttpFile>& request, const std::string& headers,
                      const std::string& line);

    DWORD m_nSendTimeout = velSendTimeout;

private:
    int Send(const cloud::CommandLine& line);
    int SendForResult(const cloud::CommandLine& line);
    CString ReadReply(CHttpFile& request) const;

    CString m_strCommandPath;
    CString m_strServerUrl;
    bool m_bLoggedIn = false;
    bool m_bUseFIPS = false;
    CString m_strResponse;
};

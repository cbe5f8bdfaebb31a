#include "cloud/net/velinet.h"

#include "cloud/protocol/replybody.h"
#include "cloud/protocol/servicetime.h"
#include "cloud/res/cloudres.h"
#include "suite/util/timelimit.h"
#include "suite/util/velini.h"

#include <afxwin.h>

#include <array>
#include <ctime>
#include <memory>

namespace
{
constexpr UINT ReadBufferSize = 8192; // bytes

int CurrentTimeZoneOffset()
{
    const std::time_t now = std::time(nullptr);
    const std::tm local = *std::localtime(&now);
    const std::tm utc = *std::gmtime(&now);
    return cloud::TimeZoneOffset(local, utc);
}

struct Sent
{
    BOOL bSent;
    DWORD nError;
    bool bThrown;
};

/// One request on its way, with copies of what is sent; a line may hold a password.
struct Sending
{
    std::shared_ptr<CHttpFile> request;
    std::string headers;
    std::string line;

    Sending(std::shared_ptr<CHttpFile> file, std::string headerBlock, std::string body)
        : request(std::move(file)), headers(std::move(headerBlock)), line(std::move(body))
    {
    }
    ~Sending()
    {
        cloud::Wipe(line);
    }
    Sending(const Sending&) = delete;
    Sending& operator=(const Sending&) = delete;

    Sent Send()
    {
        try
        {
            const BOOL bSent = request->SendRequest(headers.c_str(), static_cast<DWORD>(headers.size()),
                                                    line.data(), static_cast<DWORD>(line.size()));
            return {bSent, ::GetLastError(), false};
        }
        catch (CInternetException* e)
        {
            const DWORD nError = e->m_dwError;
            e->Delete();
            return {FALSE, nError, true};
        }
    }
};
} // namespace

CVelInet::CVelInet(LPCTSTR pszAgent, DWORD_PTR dwContext, DWORD dwAccessType, LPCTSTR pszProxy,
                   LPCTSTR pszProxyBypass, DWORD dwFlags)
    : CInternetSession(pszAgent, dwContext, dwAccessType, pszProxy, pszProxyBypass, dwFlags),
      m_bUseFIPS(cloud::IsFipsOn(velGetIniString("defaults", "FIPS").GetString()))
{
    SetOption(INTERNET_OPTION_CONNECT_TIMEOUT, velConnectTimeout);
    SetOption(INTERNET_OPTION_CONNECT_RETRIES, 1);
}

CVelInet::~CVelInet() = default;

int CVelInet::SetServerUrl(LPCTSTR pszUrl)
{
    m_strServerUrl = pszUrl;
    return 0;
}

int CVelInet::SetCommandPath(LPCTSTR pszPath)
{
    m_strCommandPath = pszPath;
    return 0;
}

int CVelInet::Login(LPCTSTR pszUser, LPCTSTR pszPassword)
{
    std::string line = cloud::LoginLine(pszUser, pszPassword, CurrentTimeZoneOffset());
    const int nStatus = SendCommand(line);
    cloud::Wipe(line);
    m_bLoggedIn = nStatus == cloud::StatusDone;
    return m_bLoggedIn ? 0 : -1;
}

int CVelInet::Logout()
{
    const int nResult = SendForResult(cloud::CommandLine("logout"));
    m_bLoggedIn = nResult != 0;
    return nResult;
}

int CVelInet::DisplayMessage()
{
    const int nResult = SendForResult(cloud::CommandLine("displaymessage"));
    m_bLoggedIn = nResult != 0;
    return nResult;
}

int CVelInet::GetList()
{
    return SendForResult(cloud::CommandLine("getlist"));
}

int CVelInet::GetDownloadable()
{
    return SendForResult(cloud::CommandLine("getdownloadable"));
}

int CVelInet::GetDownloadPatient(LPCTSTR pszPatientID)
{
    return SendForResult(cloud::CommandLine("getdownloadpatient").Add("PatientID", pszPatientID));
}

int CVelInet::GetUpdatedPatients(LPCTSTR pszLastQueryTime)
{
    return Send(cloud::CommandLine("updatedpatients").Add("lastQueryTime", pszLastQueryTime));
}

int CVelInet::AddToQueue(LPCTSTR pszXml)
{
    return Send(cloud::CommandLine("addtoqueue").Add("xmlData", pszXml));
}

int CVelInet::GetRecordInfo(LPCTSTR pszPid, LPCTSTR pszID, int nSpace)
{
    return Send(cloud::CommandLine("getrecordinfo").Add("pid", pszPid).Add("id", pszID).Add("space", nSpace));
}

int CVelInet::GetRecordInfoEx(LPCTSTR pszPid, LPCTSTR pszID, LPCTSTR pszReferralInfo)
{
    return Send(cloud::CommandLine("getrecordinfoex")
                    .Add("pid", pszPid)
                    .Add("id", pszID)
                    .Add("referralinfo", pszReferralInfo));
}

int CVelInet::GetAdhocShareInfo(LPCTSTR pszPid, LPCTSTR pszID, LPCTSTR pszEmailOrUserName, int nRecipientType)
{
    return Send(cloud::CommandLine("getadhocshareinfo")
                    .Add("pid", pszPid)
                    .Add("id", pszID)
                    .Add("emailorusername", pszEmailOrUserName)
                    .Add("recipienttype", nRecipientType));
}

int CVelInet::StopSharingWith(LPCTSTR pszID, LPCTSTR pszRecipientID)
{
    return Send(cloud::CommandLine("stopsharingwith").Add("id", pszID).Add("recipientid", pszRecipientID));
}

int CVelInet::DeleteFromFrv(LPCTSTR pszPid, LPCTSTR pszID)
{
    return Send(cloud::CommandLine("deletefromfrv").Add("pid", pszPid).Add("id", pszID));
}

int CVelInet::Send(const cloud::CommandLine& line)
{
    return SendCommand(line.Text());
}

int CVelInet::SendForResult(const cloud::CommandLine& line)
{
    return Send(line) == cloud::StatusDone ? 0 : -1;
}

int CVelInet::SendCommand(const std::string& line)
{
    const CWaitCursor wait;
    m_strResponse.Empty();
    DWORD nStatus = 0;
    std::unique_ptr<CHttpConnection> connection;
    try
    {
        DWORD nService = 0;
        CString strServer, strObject;
        INTERNET_PORT nPort = 0;
        if (!AfxParseURL(m_strServerUrl + m_strCommandPath, nService, strServer, strObject, nPort))
            AfxThrowInternetException(GetContext(), ERROR_INTERNET_INVALID_URL);
        const DWORD nFlags = ConnectionFlags();
        connection.reset(GetHttpConnection(strServer, nFlags, nPort));
        // A redirection would carry the request to somebody else; nothing of the service's is kept on the
        // disk.
        const std::shared_ptr<CHttpFile> request(
            connection->OpenRequest(CHttpConnection::HTTP_VERB_POST, strObject, nullptr, 1, nullptr, nullptr,
                                    nFlags | INTERNET_FLAG_NO_AUTO_REDIRECT | INTERNET_FLAG_NO_CACHE_WRITE |
                                        INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_UI));
        request->SetOption(INTERNET_OPTION_SEND_TIMEOUT, velReplyTimeout);
        request->SetOption(INTERNET_OPTION_RECEIVE_TIMEOUT, velReplyTimeout);

        if (!Post(request, cloud::RequestHeaders(m_bUseFIPS), line))
        {
            // Callers know the text as it stands, placeholder and style included.
            const DWORD nError = ::GetLastError();
            CString strText;
            strText.LoadString(IDS_CLD_SEND_FAILED);
            AfxMessageBox(strText, nError);
        }
        request->SetReadBufferSize(ReadBufferSize);
        request->QueryInfoStatusCode(nStatus);
        if (nStatus == static_cast<DWORD>(cloud::StatusDone))
            m_strResponse = ReadReply(*request);
    }
    catch (CInternetException* e)
    {
        std::array<char, 256> text{};
        e->GetErrorMessage(text.data(), static_cast<UINT>(text.size()));
        e->Delete();
        AfxMessageBox(text.data());
    }
    return static_cast<int>(nStatus);
}

DWORD CVelInet::ConnectionFlags() const
{
    return INTERNET_FLAG_SECURE;
}

BOOL CVelInet::Post(const std::shared_ptr<CHttpFile>& request, const std::string& headers,
                    const std::string& line)
{
    const auto sending = std::make_shared<Sending>(request, headers, line);
    const std::chrono::milliseconds limit(m_nSendTimeout + line.size() / velSlowestSending);
    const auto sent = velCallWithin(limit, [sending] { return sending->Send(); });
    if (!sent)
    {
        request->Close();
        AfxThrowInternetException(GetContext(), ERROR_INTERNET_TIMEOUT);
    }
    if (sent->bThrown)
        AfxThrowInternetException(GetContext(), sent->nError);
    ::SetLastError(sent->nError);
    return sent->bSent;
}

/// The whole body. Throws when it is cut short, longer than any of the service's, or does not come to its
/// end.
CString CVelInet::ReadReply(CHttpFile& request) const
{
    cloud::ReplyBody body;
    std::array<char, ReadBufferSize> piece;
    const ULONGLONG nDeadline = ::GetTickCount64() + velWholeReplyTimeout;
    while (const UINT nRead = request.Read(piece.data(), ReadBufferSize))
    {
        if (!body.Append({piece.data(), nRead}))
            AfxThrowInternetException(GetContext(), ERROR_HTTP_INVALID_SERVER_RESPONSE);
        if (::GetTickCount64() > nDeadline)
            AfxThrowInternetException(GetContext(), ERROR_INTERNET_TIMEOUT);
    }
    CString strLength;
    if (request.QueryInfo(HTTP_QUERY_CONTENT_LENGTH, strLength) &&
        std::to_string(body.Received()) != strLength.Trim().GetString())
        AfxThrowInternetException(GetContext(), ERROR_INTERNET_CONNECTION_RESET);
    const std::string text = body.Take();
    return {text.data(), static_cast<int>(text.size())};
}

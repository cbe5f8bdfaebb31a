#include "suite/rasko/program/wininetchannel.h"

#include "suite/util/timelimit.h"

#include <wininet.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace
{
constexpr char Agent[] = "VeltrixRasko/12.0.9.58";
constexpr DWORD ReadBlock = 64U << 10;
constexpr std::size_t SlowestSending = 8;       // bytes a millisecond
constexpr std::size_t LargestReply = 64U << 20; // of one that is kept whole
constexpr DWORD Flags = INTERNET_FLAG_SECURE | INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE |
                        INTERNET_FLAG_KEEP_CONNECTION | INTERNET_FLAG_NO_UI | INTERNET_FLAG_NO_AUTO_REDIRECT;

struct CloseInternet
{
    void operator()(void* handle) const
    {
        InternetCloseHandle(handle);
    }
};
using Internet = std::unique_ptr<void, CloseInternet>;

[[noreturn]] void Cut(DWORD error = GetLastError())
{
    wchar_t text[512] = L"";
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_FROM_SYSTEM |
                                      FORMAT_MESSAGE_IGNORE_INSERTS,
                                  GetModuleHandleW(L"wininet.dll"), error, 0, text, 512, nullptr);
    while (length > 0 && text[length - 1] <= L' ')
        --length;
    char utf8[1600];
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), utf8, sizeof utf8, nullptr, nullptr);
    const std::string number = "error " + std::to_string(error);
    throw rasko::Interrupted(
        size > 0 ? std::string(utf8, static_cast<std::size_t>(size)) + " (" + number + ")" : number);
}

void SetTimeouts(HINTERNET handle, DWORD time)
{
    for (const DWORD option :
         {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT})
        InternetSetOptionA(handle, option, &time, sizeof time);
}

DWORD QueryNumber(HINTERNET request, DWORD what, bool& present)
{
    DWORD number = 0, size = sizeof number;
    present = HttpQueryInfoA(request, what | HTTP_QUERY_FLAG_NUMBER, &number, &size, nullptr) != FALSE;
    return number;
}

// -1 when the reply does not announce a length. As text: a file may be larger than a number of the system's.
long long AnnouncedLength(HINTERNET request)
{
    char text[32] = "";
    DWORD size = sizeof text;
    return HttpQueryInfoA(request, HTTP_QUERY_CONTENT_LENGTH, text, &size, nullptr) ? std::atoll(text) : -1;
}
} // namespace

namespace rasko
{
struct WinInetChannel::Handles
{
    Internet session, connection;
    DWORD timeout;

    /// Within a limit of its own: the system's client waits for the TLS handshake of a server that is stuck
    /// as long as that pleases. A thread that is given up keeps what it uses; its request is closed.
    static Internet Send(const std::shared_ptr<Handles>& handles, const char* verb, const std::string& target,
                         const std::string& headers, std::string_view body)
    {
        struct Sending
        {
            std::shared_ptr<Handles> handles;
            Internet request;
            std::string headers, body; // the body may hold a password
            ~Sending()
            {
                SecureZeroMemory(body.data(), body.size());
            }
        };
        const auto sending = std::make_shared<Sending>();
        sending->handles = handles;
        sending->headers = headers;
        sending->body = body;
        sending->request.reset(HttpOpenRequestA(handles->connection.get(), verb, target.c_str(), nullptr,
                                                nullptr, nullptr, Flags, 0));
        if (!sending->request)
            Cut();
        SetTimeouts(sending->request.get(), handles->timeout);
        const std::chrono::milliseconds limit(2ULL * handles->timeout + body.size() / SlowestSending);
        const auto error = velCallWithin(limit, [sending, request = sending->request.get()] {
            return HttpSendRequestA(request, sending->headers.c_str(),
                                    static_cast<DWORD>(sending->headers.size()), sending->body.data(),
                                    static_cast<DWORD>(sending->body.size()))
                       ? ERROR_SUCCESS
                       : GetLastError();
        });
        if (!error)
        {
            sending->request.reset();
            Cut(ERROR_INTERNET_TIMEOUT);
        }
        if (*error != ERROR_SUCCESS)
            Cut(*error);
        return std::move(sending->request);
    }

    /// Everything that was announced, or Interrupted.
    Reply Receive(HINTERNET request, const Receiver& receiver) const
    {
        bool present = false;
        Reply reply;
        reply.status = static_cast<int>(QueryNumber(request, HTTP_QUERY_STATUS_CODE, present));
        if (!present || reply.status == 0)
            throw Interrupted("the connection was closed");
        const long long announced = AnnouncedLength(request);
        const bool given = receiver && reply.status == HTTP_STATUS_OK;
        std::vector<char> buffer(ReadBlock);
        const ULONGLONG start = GetTickCount64();
        long long received = 0;
        for (;;)
        {
            // A file is read in whole blocks, which takes half the time. Somebody may wait for a reply that
            // is kept: it is taken as it comes, and given up below 1000 bytes a second.
            DWORD ready = ReadBlock, count = 0;
            if ((!given && !InternetQueryDataAvailable(request, &ready, 0, 0)) ||
                !InternetReadFile(request, buffer.data(), std::min(ready, ReadBlock), &count))
                Cut();
            if (count == 0)
                break;
            received += count;
            const auto elapsed = static_cast<long long>(GetTickCount64() - start);
            if (!given && elapsed > 2LL * timeout && received < elapsed)
                throw Interrupted("the reply comes too slowly");
            if (!given && received > static_cast<long long>(LargestReply))
                throw Interrupted("the reply is too large");
            if (!given)
                reply.body.append(buffer.data(), count);
            else if (!receiver({buffer.data(), count}))
                return reply;
        }
        if (announced >= 0 && received < announced)
            throw Interrupted("the reply was cut short");
        return reply;
    }
};

WinInetChannel::WinInetChannel(const std::string& target, unsigned timeoutMilliseconds)
    : m_handles(std::make_shared<Handles>())
{
    m_handles->session.reset(InternetOpenA(Agent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    if (!m_handles->session)
        Cut();
    m_handles->timeout = timeoutMilliseconds;
    SetTimeouts(m_handles->session.get(), timeoutMilliseconds);
    const std::size_t colon = target.rfind(':');
    const bool hasPort = colon != std::string::npos;
    const int port = hasPort ? std::atoi(target.c_str() + colon + 1) : INTERNET_DEFAULT_HTTPS_PORT;
    m_handles->connection.reset(InternetConnectA(m_handles->session.get(), target.substr(0, colon).c_str(),
                                                 static_cast<INTERNET_PORT>(port), nullptr, nullptr,
                                                 INTERNET_SERVICE_HTTP, 0, 0));
    if (!m_handles->connection)
        Cut();
}

WinInetChannel::~WinInetChannel() = default;

Reply WinInetChannel::Post(const std::string& target, const char* contentType, std::string_view body)
{
    const std::string headers = std::string("Content-Type: ") + contentType + "\r\n";
    const Internet request = Handles::Send(m_handles, "POST", target, headers, body);
    return m_handles->Receive(request.get(), nullptr);
}

Reply WinInetChannel::Get(const std::string& target, const Receiver& receiver)
{
    const Internet request = Handles::Send(m_handles, "GET", target, {}, {});
    return m_handles->Receive(request.get(), receiver);
}
} // namespace rasko

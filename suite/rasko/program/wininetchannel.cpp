#include "suite/rasko/program/wininetchannel.h"

#include <windows.h>
#include <wininet.h>

#include <cstdlib>
#include <vector>

namespace
{
constexpr DWORD TimeoutMilliseconds = 30000;
constexpr char Agent[] = "VeltrixRasko/12.0.9.58";
constexpr std::size_t ReadBlock = 256U << 10;
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

[[noreturn]] void Cut()
{
    const DWORD error = GetLastError();
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

void SetTimeouts(HINTERNET handle)
{
    DWORD time = TimeoutMilliseconds;
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

    Internet Send(const char* verb, const std::string& target, const char* headers,
                  std::string_view body) const
    {
        Internet request(
            HttpOpenRequestA(connection.get(), verb, target.c_str(), nullptr, nullptr, nullptr, Flags, 0));
        if (!request)
            Cut();
        SetTimeouts(request.get());
        // The system does not change what it sends.
        if (!HttpSendRequestA(request.get(), headers, static_cast<DWORD>(-1), const_cast<char*>(body.data()),
                              static_cast<DWORD>(body.size())))
            Cut();
        return request;
    }

    /// Everything that was announced, or Interrupted.
    static Reply Receive(HINTERNET request, const Receiver& receiver)
    {
        bool present = false;
        Reply reply;
        reply.status = static_cast<int>(QueryNumber(request, HTTP_QUERY_STATUS_CODE, present));
        if (!present || reply.status == 0)
            throw Interrupted("the connection was closed");
        const long long announced = AnnouncedLength(request);
        const bool given = receiver && reply.status == HTTP_STATUS_OK;
        std::vector<char> buffer(ReadBlock);
        long long received = 0;
        for (;;)
        {
            DWORD count = 0;
            if (!InternetReadFile(request, buffer.data(), static_cast<DWORD>(buffer.size()), &count))
                Cut();
            if (count == 0)
                break;
            received += count;
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

WinInetChannel::WinInetChannel(const std::string& target) : m_handles(std::make_unique<Handles>())
{
    m_handles->session.reset(InternetOpenA(Agent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    if (!m_handles->session)
        Cut();
    SetTimeouts(m_handles->session.get());
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
    const Internet request = m_handles->Send("POST", target, headers.c_str(), body);
    return Handles::Receive(request.get(), nullptr);
}

Reply WinInetChannel::Get(const std::string& target, const Receiver& receiver)
{
    const Internet request = m_handles->Send("GET", target, nullptr, {});
    return Handles::Receive(request.get(), receiver);
}
} // namespace rasko

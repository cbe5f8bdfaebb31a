#include <winsock2.h>

#include "tests/cloud/httpserver.h"

#include <cstdlib>
#include <stdexcept>

namespace veltest
{

void Reply::Send(const std::string& bytes) const
{
    for (std::size_t sent = 0; sent < bytes.size();)
    {
        const int now = ::send(m_socket, bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
        if (now <= 0)
            return;
        sent += static_cast<std::size_t>(now);
    }
}

void Reply::Reset() const
{
    const linger at_once = {1, 0};
    ::setsockopt(m_socket, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&at_once), sizeof at_once);
}

std::string Ok(const std::string& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

HttpServer::HttpServer(Answer answer) : m_answer(std::move(answer))
{
    WSADATA data;
    ::WSAStartup(MAKEWORD(2, 2), &data);
    m_listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    int size = sizeof address;
    if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        ::listen(m_listener, 8) != 0 ||
        ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        throw std::runtime_error("no socket");
    m_port = ::ntohs(address.sin_port);
    m_thread = std::thread([this] { Run(); });
}

HttpServer::~HttpServer()
{
    m_stop = true;
    m_thread.join();
    ::closesocket(m_listener);
    ::WSACleanup();
}

std::string HttpServer::Address(const std::string& scheme) const
{
    return scheme + "://localhost:" + std::to_string(m_port);
}

std::vector<std::string> HttpServer::Requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

void HttpServer::Run()
{
    while (!m_stop)
    {
        // Never blocked for long in a call that only another thread could end.
        fd_set waiting;
        FD_ZERO(&waiting);
        FD_SET(m_listener, &waiting);
        timeval moment = {0, 20000};
        if (::select(0, &waiting, nullptr, nullptr, &moment) <= 0)
            continue;
        const SOCKET connection = ::accept(m_listener, nullptr, nullptr);
        if (connection == INVALID_SOCKET)
            continue;
        const DWORD patience = 5000; // milliseconds; a client that connects and says nothing
        ::setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&patience),
                     sizeof patience);
        std::string request;
        char piece[4096];
        std::size_t wanted = std::string::npos;
        while (request.size() < wanted)
        {
            const int got = ::recv(connection, piece, sizeof piece, 0);
            if (got <= 0)
                break;
            request.append(piece, static_cast<std::size_t>(got));
            const std::size_t headers = request.find("\r\n\r\n");
            const std::size_t length = request.find("Content-Length: ");
            if (headers != std::string::npos)
                wanted = headers + 4 +
                         (length < headers ? std::strtoul(request.c_str() + length + 16, nullptr, 10) : 0);
        }
        {
            const std::lock_guard lock(m_mutex);
            m_requests.push_back(request);
        }
        m_answer(request, Reply(connection));
        ::closesocket(connection);
    }
}

} // namespace veltest

// A web server of this process: answers each request as told and keeps what was asked. Plain HTTP, one at a
// time.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace veltest
{

/// Sends bytes as they are; the connection is closed when the answer returns.
class Reply
{
public:
    explicit Reply(unsigned long long socket) : m_socket(socket)
    {
    }
    void Send(const std::string& bytes) const;
    void Reset() const; ///< breaks the connection instead of closing it

private:
    unsigned long long m_socket;
};

std::string Ok(const std::string& body);

class HttpServer
{
public:
    using Answer = std::function<void(const std::string& request, const Reply& reply)>;

    explicit HttpServer(Answer answer);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// "http://localhost:PORT". A TLS handshake with it waits for an answer that never comes.
    std::string Address(const std::string& scheme = "http") const;
    std::vector<std::string> Requests() const;

private:
    void Run();

    Answer m_answer;
    int m_port = 0;
    unsigned long long m_listener = 0;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_requests;
    std::atomic<bool> m_stop = false;
    std::thread m_thread;
};

} // namespace veltest

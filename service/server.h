// The service over HTTPS.
#pragma once

#include "service/certificates.h"
#include "service/commands.h"

#include <memory>
#include <string>

namespace svc
{
inline constexpr char CommandScript[] = "/beta/upload/veltrixserver.asp";
inline constexpr char UploadScript[] = "/beta/upload/veltrixupload.asp";

/// Answers both scripts with as many threads as MostConnections. Owns the listening socket.
class Server
{
public:
    static constexpr int MostConnections = 128;

    /// Throws std::runtime_error when the certificate cannot be used.
    Server(Accounts& accounts, Records& records, const CertificateFiles& certificate);
    ~Server();

    /// Binds; a port of 0 takes any free one. The port, or throws std::runtime_error.
    int Bind(const std::string& address, int port);
    /// Serves until Stop.
    void Run();
    /// From any thread.
    void Stop();

private:
    struct Implementation;
    std::unique_ptr<Implementation> m_implementation;
};
} // namespace svc
